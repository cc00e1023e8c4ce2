// Moving an unusable settings file aside: its dated name and the move.
#include "core/kept_aside.hpp"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <string_view>

#include "sys/clock.hpp"
#include "sys/files.hpp"
#include "sys/log.hpp"

namespace core {
namespace {

// Names tried within one second before giving up: no user makes that many.
constexpr int kMaxAttempts = 100;

}  // namespace

std::string keptAsideName(const std::string& path, double absoluteTime, int attempt) {
  using namespace std::chrono;
  // Absolute time counts from 2001-01-01 00:00 UTC.
  sys_seconds at = sys_days{year{2001} / January / 1} +
                   seconds{static_cast<long long>(std::floor(absoluteTime))};
  sys_days day = floor<days>(at);
  year_month_day date{day};
  long long second = (at - day).count();
  char stamp[48];
  std::snprintf(stamp, sizeof stamp, "-%04d-%02u-%02u-%02lld%02lld%02lld", int(date.year()),
                unsigned(date.month()), unsigned(date.day()), second / 3600, second / 60 % 60,
                second % 60);
  std::string_view stem = path;
  if (stem.ends_with(".plist")) stem.remove_suffix(6);
  std::string name = std::string(stem) + stamp;
  if (attempt > 1) name += "-" + std::to_string(attempt);
  return name + ".plist";
}

bool keepAside(const std::string& path, std::string* error) {
  double now = sys::absoluteTime();
  for (int attempt = 1; attempt <= kMaxAttempts; ++attempt) {
    std::string aside = keptAsideName(path, now, attempt);
    switch (sys::moveItem(path, aside, error)) {
      case sys::MoveResult::Moved:
        sys::log("[QB] config unreadable, kept aside as %@", aside);
        return true;
      case sys::MoveResult::SourceMissing:
        return true;
      case sys::MoveResult::TargetExists:
        continue;
      case sys::MoveResult::Failed:
        return false;
    }
  }
  if (error) *error = "no free name to keep " + path + " aside";
  return false;
}

}  // namespace core
