// The files facade on the simulated device's container: plain files on the
// Linux disk, property lists through the codec (codec/plist_codec), written
// atomically. A container the device's
// faults make read-only refuses every change, as the phone's volume would.
// While the device is locked since a restart, files with data protection can
// neither be read nor written, as on the phone.
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "sim/codec/atomic_file.hpp"
#include "sim/codec/plist_codec.hpp"
#include "sim/process.hpp"
#include "sys/files.hpp"

namespace sys {
namespace {

sim::Faults* deviceFaults() {
  return sim::hasCurrentProcess() ? &sim::currentProcess().device().faults() : nullptr;
}

bool readOnly() {
  sim::Faults* faults = deviceFaults();
  return faults && faults->readOnlyContainer;
}

void describe(std::string* error, const std::string& path, int code) {
  if (error) *error = path + ": " + std::strerror(code);
}

}  // namespace

std::string documentsDirectory() { return sim::currentProcess().device().documentsPath(); }

std::string dataContainersDirectory() {
  return sim::currentProcess().device().dataContainersPath();
}

std::vector<std::string> directoryEntries(const std::string& path) {
  std::vector<std::string> names;
  std::error_code ec;
  for (auto it = std::filesystem::directory_iterator(path, ec);
       !ec && it != std::filesystem::directory_iterator(); it.increment(ec))
    names.push_back(it->path().filename().string());
  return names;
}

std::optional<FileStamp> fileStamp(const std::string& path) {
  struct stat st {};
  if (::stat(path.c_str(), &st) != 0) return std::nullopt;
  return FileStamp{st.st_mtim.tv_sec, st.st_mtim.tv_nsec, st.st_ino, st.st_size};
}

bool createDirectories(const std::string& path) {
  std::error_code ec;
  if (!readOnly()) std::filesystem::create_directories(path, ec);
  return std::filesystem::is_directory(path, ec);
}

bool fileExists(const std::string& path) {
  std::error_code ec;
  return std::filesystem::exists(path, ec);
}

PlistFile readPropertyListFile(const std::string& path) {
  sim::FileBytes file = sim::readRegularFile(path);
  if (file.status == sim::ReadStatus::Read && sim::hasCurrentProcess() &&
      !sim::currentProcess().device().mayRead(path))
    return {ReadStatus::NotYetReadable, {}};
  switch (file.status) {
    case sim::ReadStatus::Missing:
      return {ReadStatus::Missing, {}};
    case sim::ReadStatus::Unreadable:
      return {ReadStatus::Unreadable, {}};
    case sim::ReadStatus::Read:
      break;
  }
  std::optional<base::Value> root = sim::decodePlist(file.bytes);
  if (!root) return {ReadStatus::Damaged, {}};
  return {ReadStatus::Read, std::move(*root)};
}

MoveResult moveItem(const std::string& from, const std::string& to, std::string* error) {
  int code = readOnly() ? EROFS : sim::renameWithoutReplacing(from, to);
  if (code == 0) {
    if (sim::hasCurrentProcess()) sim::currentProcess().device().noteMoved(from, to);
    return MoveResult::Moved;
  }
  describe(error, from, code);
  if (code == EEXIST) return MoveResult::TargetExists;
  return code == ENOENT ? MoveResult::SourceMissing : MoveResult::Failed;
}

bool writePropertyList(const std::string& path, const base::Value& value, PlistFormat format,
                       std::string* error, FileProtection protection) {
  if (readOnly()) {
    describe(error, path, EROFS);
    return false;
  }
  bool unprotected = protection == FileProtection::None;
  bool locked = sim::hasCurrentProcess() && sim::currentProcess().device().lockedSinceRestart();
  if (locked && !unprotected) {
    describe(error, path, EPERM);  // no class key to write with until the first unlock
    return false;
  }
  sim::WriteFault fault = sim::WriteFault::None;
  if (sim::Faults* faults = deviceFaults(); faults && faults->crashBeforeRename) {
    faults->crashBeforeRename = false;
    fault = sim::WriteFault::CrashBeforeRename;
  }
  if (!sim::writeFileAtomically(path, sim::encodePlist(value, format), fault, error)) return false;
  if (sim::hasCurrentProcess()) sim::currentProcess().device().noteProtection(path, protection);
  return true;
}

}  // namespace sys
