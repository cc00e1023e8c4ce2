// The files facade on the simulated device's container: plain files on the
// Linux disk, property lists through libplist.
#include <filesystem>
#include <system_error>

#include "sim/atomic_file.hpp"
#include "sim/plist_codec.hpp"
#include "sim/process.hpp"
#include "sys/files.hpp"

namespace sys {

std::string documentsDirectory() { return sim::currentProcess().device().documentsPath(); }

bool createDirectories(const std::string& path) {
  std::error_code ec;
  std::filesystem::create_directories(path, ec);
  return std::filesystem::is_directory(path, ec);
}

bool fileExists(const std::string& path) {
  std::error_code ec;
  return std::filesystem::exists(path, ec);
}

std::optional<base::Value> readPropertyList(const std::string& path) {
  auto bytes = sim::readWholeFile(path);
  if (!bytes) return std::nullopt;
  return sim::decodePlist(*bytes);
}

bool writePropertyList(const std::string& path, const base::Value& value, PlistFormat format) {
  sim::WriteFault fault = sim::WriteFault::None;
  if (sim::hasCurrentProcess()) {
    sim::Faults& faults = sim::currentProcess().device().faults();
    if (faults.crashBeforeRename) {
      faults.crashBeforeRename = false;
      fault = sim::WriteFault::CrashBeforeRename;
    }
  }
  return sim::writeFileAtomically(path, sim::encodePlist(value, format), fault);
}

}  // namespace sys
