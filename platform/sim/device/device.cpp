#include "sim/device/device.hpp"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace sim {
namespace {

// 2026-11-23 12:00:00 UTC in seconds since 2001-01-01.
constexpr double kStartAbsolute = 817128000.0;

std::string makeTemporaryContainer() {
  std::string pattern = (std::filesystem::temp_directory_path() / "quenby-device-XXXXXX").string();
  if (!mkdtemp(pattern.data())) {
    std::perror("mkdtemp");
    std::abort();
  }
  return pattern;
}

}  // namespace

Device::Device(DeviceOptions options)
    : options_(std::move(options)), wallOffset_(kStartAbsolute), random_(options_.seed) {
  if (options_.container.empty()) {
    container_ = makeTemporaryContainer();
    ownsContainer_ = true;
  } else {
    container_ = std::filesystem::absolute(options_.container).lexically_normal().string();
    if (container_.size() > 1 && container_.back() == '/') container_.pop_back();
  }
  std::error_code ec;
  std::filesystem::create_directories(documentsPath(), ec);
}

Device::~Device() {
  if (ownsContainer_) {
    std::error_code ec;
    std::filesystem::remove_all(container_, ec);
  }
}

double Device::absoluteTime() const { return wallOffset_ + elapsed_; }

double Device::localSecondOfDay() const {
  double s = std::fmod(absoluteTime(), 86400.0);
  return s < 0 ? s + 86400.0 : s;
}

void Device::setLocalTime(int hour, int minute) {
  double dayStart = absoluteTime() - localSecondOfDay();
  wallOffset_ = dayStart + hour * 3600.0 + minute * 60.0 - elapsed_;
}

void Device::writeLog(const std::vector<std::string>& segments) {
  std::lock_guard lock(logMutex_);
  LogLine l;
  for (std::size_t i = 0; i < segments.size(); ++i) {
    l.text += segments[i];
    l.kept += i % 2 ? "<private>" : segments[i];
  }
  l.elapsed = elapsed_;
  double sod = localSecondOfDay();
  l.secondOfDay = int(std::floor(sod));
  l.fraction = sod - std::floor(sod);
  log_.push_back(std::move(l));
  if (logListener_) logListener_(log_.back());
}

void Device::takeBackup() {
  namespace fs = std::filesystem;
  std::vector<BackupItem> items;
  std::error_code ec;
  const fs::path root(container_);
  for (auto it = fs::recursive_directory_iterator(root, ec); !ec && it != fs::end(it);
       it.increment(ec)) {
    std::string relative = it->path().lexically_relative(root).generic_string();
    bool neverBackedUp = relative == "tmp" || relative == "Library/Caches";
    if (neverBackedUp || excludedFromBackup(it->path().string())) {
      it.disable_recursion_pending();
      continue;
    }
    BackupItem item;
    item.relativePath = relative;
    if (it->is_symlink(ec)) {
      continue;  // links, FIFOs and sockets are not backed up
    } else if (it->is_directory(ec)) {
      item.folder = true;
    } else if (it->is_regular_file(ec)) {
      std::ifstream in(it->path(), std::ios::binary);
      item.bytes.assign(std::istreambuf_iterator<char>(in), {});
      item.protection = protectionOf(it->path().string());
    } else {
      continue;
    }
    items.push_back(std::move(item));
  }
  backup_ = std::move(items);
}

bool Device::restoreBackup() {
  namespace fs = std::filesystem;
  if (!backup_) return false;
  std::error_code ec;
  std::vector<fs::path> wiped;
  for (const auto& entry : fs::directory_iterator(container_, ec)) wiped.push_back(entry.path());
  for (const fs::path& p : wiped) fs::remove_all(p, ec);
  {
    std::lock_guard lock(logMutex_);
    backupExcluded_.clear();
  }
  std::map<std::string, sys::FileProtection> protection;
  for (const BackupItem& item : *backup_) {
    fs::path at = fs::path(container_) / item.relativePath;
    if (item.folder) {
      fs::create_directories(at, ec);
      continue;
    }
    fs::create_directories(at.parent_path(), ec);
    std::ofstream(at, std::ios::binary) << item.bytes;
    if (item.protection) protection[at.string()] = *item.protection;
  }
  fs::create_directories(documentsPath(), ec);
  std::lock_guard lock(protectionMutex_);
  protection_ = std::move(protection);
  return true;
}

bool Device::lockedSinceRestart() const {
  std::lock_guard lock(protectionMutex_);
  return lockedSinceRestart_;
}

void Device::setLockedSinceRestart(bool locked) {
  std::lock_guard lock(protectionMutex_);
  lockedSinceRestart_ = locked;
}

void Device::noteProtection(const std::string& path, sys::FileProtection protection) {
  std::lock_guard lock(protectionMutex_);
  protection_[path] = protection;
}

void Device::noteMoved(const std::string& from, const std::string& to) {
  std::lock_guard lock(protectionMutex_);
  auto it = protection_.find(from);
  if (it == protection_.end()) {
    protection_.erase(to);
    return;
  }
  protection_[to] = it->second;
  protection_.erase(from);
}

std::optional<sys::FileProtection> Device::protectionOf(const std::string& path) const {
  std::lock_guard lock(protectionMutex_);
  auto it = protection_.find(path);
  if (it == protection_.end()) return std::nullopt;
  return it->second;
}

bool Device::mayRead(const std::string& path) const {
  std::lock_guard lock(protectionMutex_);
  if (!lockedSinceRestart_) return true;
  auto it = protection_.find(path);
  return it != protection_.end() && it->second == sys::FileProtection::None;
}

}  // namespace sim
