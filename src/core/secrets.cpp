// The secret set and the hidden/revealed state: the password check that
// reveals, and the one deferred notification by which every hook learns that
// the state changed.
#include "core/config.hpp"
#include "core/gate_file.hpp"
#include "sys/guarded.hpp"
#include "sys/notifications.hpp"
#include "sys/queue.hpp"

namespace core {
namespace {

// Long enough for the transition under way (an alert closing, a view
// appearing) to finish before the lists are rebuilt.
constexpr double kStateChangedDelay_s = 0.35;

}  // namespace

constexpr std::size_t kGateAnswersKept = 10000;

bool QBConfig::isSecretUser(std::string_view username) const {
  if (username.empty()) return false;
  std::lock_guard lock(lock_);
  // Before the first unlock only the hashes are known.
  if (waitingForFile_) {
    std::string name(username);
    auto known = gateAnswers_.find(name);
    if (known != gateAnswers_.end()) return known->second;
    // A host with more names than this is not worth remembering them all for.
    if (gateAnswers_.size() >= kGateAnswersKept) gateAnswers_.clear();
    bool secret = gateHashes_.count(gateHash(gateSalt_, name)) != 0;
    gateAnswers_.emplace(std::move(name), secret);
    return secret;
  }
  return secrets_.count(std::string(username)) != 0;
}

void QBConfig::addSecretUser(std::string_view username) {
  if (username.empty()) return;
  {
    std::lock_guard lock(lock_);
    secrets_.insert(std::string(username));
    recountLocked();
  }
  changed();
  save();
}

void QBConfig::removeSecretUser(std::string_view username) {
  if (username.empty()) return;
  {
    std::lock_guard lock(lock_);
    secrets_.erase(std::string(username));
    recountLocked();
  }
  changed();
  save();
}

void QBConfig::clearAllSecretUsers() {
  {
    std::lock_guard lock(lock_);
    secrets_.clear();
    recountLocked();
  }
  changed();
  save();
}

std::unordered_set<std::string> QBConfig::secretSnapshot() const {
  std::lock_guard lock(lock_);
  return secrets_;
}

long QBConfig::secretCount() const { return secretCount_.load(std::memory_order_acquire); }

bool QBConfig::shouldHideSecrets() const { return secretCount() > 0 && !unlocked(); }

void QBConfig::lock() {
  if (!unlocked()) return;
  setUnlocked(false);
  notifyStateChangedDeferred();
}

bool QBConfig::tryUnlockSilentWithPassword(std::string_view entered) {
  std::string expected = password();
  if (expected.empty()) expected = kDefaultPassword;
  if (entered != expected) return false;
  setUnlocked(true);
  return true;
}

bool QBConfig::tryUnlockWithPassword(std::string_view entered) {
  if (!tryUnlockSilentWithPassword(entered)) return false;
  notifyStateChangedDeferred();
  return true;
}

void QBConfig::requestVisibilitySync() { notifyStateChangedDeferred(); }

void QBConfig::notifyStateChangedDeferred() {
  // The hop and the delay let the transition under way finish. Never coalesced.
  sys::async([] {
    sys::after(kStateChangedDelay_s, [] {
      sys::guarded("[QB] notify ex: %@", [] { sys::postNotification(kSecretStateChanged); });
    });
  });
}

}  // namespace core
