#include "notify/springboard_gate.hpp"

#include <algorithm>

#include "notify/container_lookup.hpp"
#include "sys/clock.hpp"
#include "sys/darwin_notify.hpp"
#include "sys/log.hpp"

namespace notify {
namespace {

// Message texts reach the cache too; past this it starts again.
constexpr std::size_t kAnswersKept = 10000;

}  // namespace

bool SpringBoardGate::Host::isSecret(std::string_view username) {
  if (username.empty() || !record) return false;
  std::string name(username);
  auto known = answers.find(name);
  if (known != answers.end()) return known->second;
  if (answers.size() >= kAnswersKept) answers.clear();
  bool secret = record->hashes.count(core::gateHash(record->salt, name)) != 0;
  answers.emplace(std::move(name), secret);
  return secret;
}

void SpringBoardGate::scan(double now) {
  scanned_ = true;
  lastScan_ = now;
  std::vector<HostContainer> found = findHostContainers(sys::dataContainersDirectory());
  hosts_.clear();
  for (HostContainer& c : found) {
    Host h;
    h.gatePath = core::gateFilePathIn(c.path);
    h.stamp = std::nullopt;
    h.container = std::move(c.path);
    h.bundleIdentifier = std::move(c.bundleIdentifier);
    // One container per bundle: of two, the one whose gate was written last.
    auto same = std::find_if(hosts_.begin(), hosts_.end(), [&](const Host& o) {
      return o.bundleIdentifier == h.bundleIdentifier;
    });
    if (same == hosts_.end()) {
      hosts_.push_back(std::move(h));
      continue;
    }
    std::optional<sys::FileStamp> mine = sys::fileStamp(h.gatePath),
                                  theirs = sys::fileStamp(same->gatePath);
    if (mine && (!theirs || std::pair(mine->modified, mine->modifiedNanoseconds) >
                                std::pair(theirs->modified, theirs->modifiedNanoseconds)))
      *same = std::move(h);
  }
  if (hosts_.empty()) {
    if (!reportedNone_) sys::log("[QB] lock-screen guard: no host container, everything passes");
    reportedNone_ = true;
    return;
  }
  reportedNone_ = false;
  for (const Host& h : hosts_)
    sys::log("[QB] lock-screen guard: host container of %@", h.bundleIdentifier);
}

SpringBoardGate::Host* SpringBoardGate::find(std::string_view bundleIdentifier) {
  for (Host& h : hosts_)
    if (h.bundleIdentifier == bundleIdentifier) return &h;
  return nullptr;
}

bool SpringBoardGate::refresh(Host& host, double now) {
  if (host.checkedAt && now - *host.checkedAt < kGateRecheckInterval_s) return true;
  std::optional<sys::FileStamp> stamp = sys::fileStamp(host.gatePath);
  if (!stamp) return false;
  host.checkedAt = now;
  if (host.stamp == stamp) return true;
  // The stamp before the read: a write in between is caught by the next request.
  host.stamp = stamp;
  host.answers.clear();
  sys::PlistFile file = sys::readPropertyListFile(host.gatePath);
  host.record =
      file.status == sys::ReadStatus::Read ? core::gateFromValue(file.value) : std::nullopt;
  if (host.record) {
    host.reportedUnusable = false;
  } else if (!host.reportedUnusable) {
    host.reportedUnusable = true;
    sys::log("[QB] lock-screen guard: gate unreadable, everything passes");
  }
  return true;
}

SpringBoardGate::Host* SpringBoardGate::gateFor(std::string_view bundleIdentifier) {
  double now = sys::mediaTime();
  if (!changeWatch_) changeWatch_ = sys::watchDarwinNotification(core::kGateChangedNotification);
  // Checked for every request, whichever bundle: a post is seen once.
  if (sys::darwinNotificationPosted(*changeWatch_)) {
    for (Host& h : hosts_) h.checkedAt = std::nullopt;
    // A host's first gate: its container is one to find now.
    if (hosts_.empty()) scanned_ = false;
  }
  if (!scanned_ || (hosts_.empty() && now - lastScan_ >= kContainerRescanInterval_s)) scan(now);
  Host* host = find(bundleIdentifier);
  if (!host) return nullptr;
  if (!refresh(*host, now)) {
    if (!sys::fileExists(host->container)) {
      // Gone (the app deleted, or moved to a new container): look again now.
      scan(now);
      host = find(bundleIdentifier);
      if (!host || !refresh(*host, now)) return nullptr;
    } else {
      host->stamp = std::nullopt;
      host->checkedAt = now;  // looked for again after the same pause
      host->record = std::nullopt;
      host->answers.clear();
      if (!host->reportedUnusable)
        sys::log("[QB] lock-screen guard: gate missing, everything passes");
      host->reportedUnusable = true;
      return nullptr;
    }
  }
  return host->record ? host : nullptr;
}

}  // namespace notify
