#include "sim/device/device.hpp"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

#include "sim/codec/atomic_file.hpp"
#include "sim/codec/plist_codec.hpp"

namespace sim {
namespace {

// 2026-11-23 12:00:00 UTC in seconds since 2001-01-01.
constexpr double kStartAbsolute = 817128000.0;

std::string makeTemporaryRoot() {
  std::string pattern = (std::filesystem::temp_directory_path() / "quenby-device-XXXXXX").string();
  if (!mkdtemp(pattern.data())) {
    std::perror("mkdtemp");
    std::abort();
  }
  return pattern;
}

// An upper-case UUID, as the container manager names containers.
std::string makeUuid(std::mt19937_64& random) {
  unsigned long long hi = random(), lo = random();
  char text[40];
  std::snprintf(text, sizeof text, "%08llX-%04llX-%04llX-%04llX-%012llX", hi >> 32,
                (hi >> 16) & 0xffff, hi & 0xffff, lo >> 48, lo & 0xffffffffffffULL);
  return text;
}

bool isMetadata(const std::filesystem::path& p) {
  return p.filename() == sys::kContainerMetadataFile;
}

}  // namespace

Device::Device(DeviceOptions options)
    : options_(std::move(options)), wallOffset_(kStartAbsolute), random_(options_.seed) {
  std::error_code ec;
  if (options_.container.empty()) {
    makeContainers();
  } else {
    container_ = std::filesystem::absolute(options_.container).lexically_normal().string();
    if (container_.size() > 1 && container_.back() == '/') container_.pop_back();
    dataContainers_ = std::filesystem::path(container_).parent_path().string();
    std::filesystem::create_directories(documentsPath(), ec);
    writeMetadata(container_, options_.bundleIdentifier);
  }
  std::filesystem::create_directories(documentsPath(), ec);
}

Device::~Device() {
  if (!ownedRoot_.empty()) {
    std::error_code ec;
    std::filesystem::remove_all(ownedRoot_, ec);
  }
}

void Device::makeContainers() {
  ownedRoot_ = makeTemporaryRoot();
  dataContainers_ = ownedRoot_ + "/Containers/Data/Application";
  // Names of their own, so the device's random source gives what it gave before.
  std::mt19937_64 names(options_.seed ^ 0x9e3779b97f4a7c15ULL);
  std::error_code ec;
  auto make = [&](const std::string& bundleIdentifier) {
    std::string at = dataContainers_ + "/" + makeUuid(names);
    std::filesystem::create_directories(at + "/Documents", ec);
    std::filesystem::create_directories(at + "/Library/Preferences", ec);
    writeMetadata(at, bundleIdentifier);
    return at;
  };
  make("com.example.notes");
  container_ = make(options_.bundleIdentifier);
  // Another app that keeps a folder of the same name, without the gate.
  std::string mail = make("com.example.mail");
  std::filesystem::create_directories(mail + "/Documents/Quenby", ec);
}

void Device::writeMetadata(const std::string& container, const std::string& bundleIdentifier) {
  std::string path = container + "/" + sys::kContainerMetadataFile;
  std::error_code ec;
  if (!std::filesystem::exists(path, ec)) {
    base::Value metadata(base::Dictionary{
        {sys::kContainerMetadataIdentifier, base::Value(bundleIdentifier)},
        {"MCMMetadataContentClass", base::Value(2L)},
        {"MCMMetadataUUID", base::Value(std::filesystem::path(container).filename().string())},
    });
    std::string error;
    if (!writeFileAtomically(path, encodePlist(metadata, sys::PlistFormat::Binary),
                             WriteFault::None, &error))
      std::fprintf(stderr, "container metadata: %s\n", error.c_str());
  }
  // The system's file: readable before the first unlock, whenever it was written.
  noteProtection(path, sys::FileProtection::None);
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
    bool neverBackedUp =
        relative == "tmp" || relative == "Library/Caches" || isMetadata(it->path());
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
  for (const auto& entry : fs::directory_iterator(container_, ec))
    if (!isMetadata(entry.path())) wiped.push_back(entry.path());
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
  std::string metadata = container_ + "/" + sys::kContainerMetadataFile;
  if (std::optional<sys::FileProtection> kept = protectionOf(metadata))
    protection[metadata] = *kept;
  std::lock_guard lock(protectionMutex_);
  protection_ = std::move(protection);
  return true;
}

void Device::postDarwinNotification(const std::string& name) {
  std::lock_guard lock(logMutex_);
  ++darwinPosts_[name];
}

int Device::watchDarwinNotification(const std::string& name) {
  std::lock_guard lock(logMutex_);
  darwinWatches_.push_back({name, std::nullopt});
  return int(darwinWatches_.size()) - 1;
}

bool Device::darwinNotificationPosted(int token) {
  std::lock_guard lock(logMutex_);
  if (token < 0 || std::size_t(token) >= darwinWatches_.size()) return true;
  DarwinWatch& w = darwinWatches_[std::size_t(token)];
  auto it = darwinPosts_.find(w.name);
  std::uint64_t now = it == darwinPosts_.end() ? 0 : it->second;
  bool posted = !w.seen || *w.seen != now;
  w.seen = now;
  return posted;
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
