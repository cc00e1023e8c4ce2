// The settings file between a restart and the first unlock: closed, not
// damaged. It is neither kept aside nor written over, the gating knows the
// secrets by their salted hashes meanwhile, and the file is read when the
// system says protected data is available.
#include <gtest/gtest.h>

#include <filesystem>

#include "core/config.hpp"
#include "core/gate_file.hpp"
#include "sim/codec/atomic_file.hpp"
#include "support/sim_world.hpp"
#include "sys/files.hpp"
#include "sys/notifications.hpp"

namespace {

namespace fs = std::filesystem;
using core::QBConfig;

class Protected : public qbtest::SimWorld {
 protected:
  std::string folder() { return device.documentsPath() + "/Quenby"; }
  std::string bytes(const std::string& name) {
    return sim::readWholeFile(folder() + "/" + name).value_or("");
  }
  // A first run that saved bob and team@chatroom as secrets, mode 1, video on.
  void savedBefore() {
    QBConfig c;
    c.load();
    c.setPassword("2468");
    c.setSecretNotifyMode(1);
    c.setVoipVideoNotifyEnabled(true);
    c.addSecretUser("bob");
    c.addSecretUser("team@chatroom");
  }
  bool logged(const std::string& text) {
    for (const auto& l : device.log())
      if (l.text.find(text) != std::string::npos) return true;
    return false;
  }
};

TEST_F(Protected, TheGateFileNamesNoSecretAndOnlyItIsReadableBeforeTheFirstUnlock) {
  savedBefore();
  std::string gate = bytes("gate.plist");
  ASSERT_FALSE(gate.empty());
  // Readable from the first unlock on whatever the host's default; the
  // gate file at any time.
  EXPECT_EQ(device.protectionOf(folder() + "/config.plist"), sys::FileProtection::UntilFirstUnlock);
  EXPECT_EQ(device.protectionOf(core::gateFilePath()), sys::FileProtection::None);
  EXPECT_EQ(gate.find("bob"), std::string::npos);
  EXPECT_EQ(gate.find("team"), std::string::npos);
  device.setLockedSinceRestart(true);
  EXPECT_EQ(sys::readPropertyListFile(folder() + "/config.plist").status,
            sys::ReadStatus::NotYetReadable);
  sys::PlistFile g = sys::readPropertyListFile(core::gateFilePath());
  ASSERT_EQ(g.status, sys::ReadStatus::Read);
  std::optional<core::GateRecord> record = core::gateFromValue(g.value);
  ASSERT_TRUE(record);
  EXPECT_EQ(record->hashes.size(), 2u);
  EXPECT_TRUE(record->hashes.count(core::gateHash(record->salt, "bob")));
  EXPECT_FALSE(record->hashes.count(core::gateHash("another salt", "bob")));
}

TEST_F(Protected, BeforeTheFirstUnlockTheGatingKnowsTheSecretsByHashAndNothingIsWritten) {
  savedBefore();
  std::string settings = bytes("config.plist"), gate = bytes("gate.plist");
  device.setLockedSinceRestart(true);
  QBConfig c;
  c.load();
  EXPECT_TRUE(c.waitingForProtectedData());
  EXPECT_TRUE(c.isSecretUser("bob"));
  EXPECT_TRUE(c.isSecretUser("team@chatroom"));
  EXPECT_FALSE(c.isSecretUser("alice"));
  EXPECT_FALSE(c.isSecretUser(""));
  EXPECT_EQ(c.secretCount(), 2);
  EXPECT_TRUE(c.shouldHideSecrets());
  EXPECT_TRUE(c.secretSnapshot().empty()) << "no name is known";
  EXPECT_EQ(c.secretNotifyMode(), 1);
  EXPECT_TRUE(c.backgroundNotifyEnabled());
  EXPECT_TRUE(c.voipVideoNotifyEnabled());
  EXPECT_FALSE(c.voipVoiceNotifyEnabled());
  // The panel's changes meanwhile are refused, not written over the list.
  c.addSecretUser("carol");
  c.setPassword("0000");
  c.save();
  EXPECT_TRUE(logged("[QB] config save refused"));
  EXPECT_FALSE(logged("kept aside"));
  EXPECT_EQ(bytes("config.plist"), settings);
  EXPECT_EQ(bytes("gate.plist"), gate);
  EXPECT_EQ(std::distance(fs::directory_iterator(folder()), fs::directory_iterator()), 2);
  // The first unlock: the file is read, and saves work again.
  device.setLockedSinceRestart(false);
  sys::postNotification(sys::kProtectedDataDidBecomeAvailable);
  EXPECT_FALSE(c.waitingForProtectedData());
  EXPECT_EQ(c.password(), "2468");
  EXPECT_EQ(c.secretSnapshot(), (std::unordered_set<std::string>{"bob", "team@chatroom"}));
  EXPECT_FALSE(c.isSecretUser("carol"));
  EXPECT_EQ(c.secretCount(), 2);
  c.addSecretUser("carol");
  EXPECT_EQ(c.secretCount(), 3);
  QBConfig again;
  again.load();
  EXPECT_EQ(again.secretCount(), 3);
  EXPECT_EQ(again.password(), "2468");
}

// A gate file one save did not reach (it still holds the set before) answers
// until the first unlock; from then on the settings' own set counts.
TEST_F(Protected, AtTheFirstUnlockTheSettingsSetReplacesAnOlderGate) {
  {
    QBConfig first;
    first.load();
    first.addSecretUser("bob");
  }
  std::string olderGate = bytes("gate.plist");
  {
    QBConfig second;
    second.load();
    second.addSecretUser("team@chatroom");
  }
  ASSERT_TRUE(sim::writeFileAtomically(core::gateFilePath(), olderGate));
  device.setLockedSinceRestart(true);
  QBConfig c;
  c.load();
  ASSERT_TRUE(c.waitingForProtectedData());
  EXPECT_EQ(c.secretCount(), 1);
  EXPECT_FALSE(c.isSecretUser("team@chatroom"));
  device.setLockedSinceRestart(false);
  sys::postNotification(sys::kProtectedDataDidBecomeAvailable);
  ASSERT_FALSE(c.waitingForProtectedData());
  EXPECT_EQ(c.secretCount(), 2);
  EXPECT_TRUE(c.isSecretUser("team@chatroom"));
}

TEST_F(Protected, AnUnlockBeforeTheFileCanBeReadKeepsWaiting) {
  savedBefore();
  device.setLockedSinceRestart(true);
  QBConfig c;
  c.load();
  sys::postNotification(sys::kProtectedDataDidBecomeAvailable);  // still closed
  EXPECT_TRUE(c.waitingForProtectedData());
  EXPECT_TRUE(c.isSecretUser("bob"));
  device.setLockedSinceRestart(false);
  sys::postNotification(sys::kProtectedDataDidBecomeAvailable);
  EXPECT_FALSE(c.waitingForProtectedData());
  EXPECT_TRUE(c.isSecretUser("bob"));
}

// The device is unlocked, but the settings are not read yet: before the
// system's notification arrives, or after a read at a notification that came
// too early. A save then would replace the user's file with the defaults.
TEST_F(Protected, WhileStillWaitingASaveIsRefusedEvenOnAnUnlockedDevice) {
  savedBefore();
  std::string settings = bytes("config.plist"), gate = bytes("gate.plist");
  device.setLockedSinceRestart(true);
  QBConfig c;
  c.load();
  sys::postNotification(sys::kProtectedDataDidBecomeAvailable);  // the read fails
  device.setLockedSinceRestart(false);                           // no notification yet
  c.addSecretUser("carol");
  c.setPassword("0000");
  c.save();
  EXPECT_TRUE(logged("[QB] config save refused"));
  EXPECT_EQ(bytes("config.plist"), settings);
  EXPECT_EQ(bytes("gate.plist"), gate);
  sys::postNotification(sys::kProtectedDataDidBecomeAvailable);
  EXPECT_EQ(c.password(), "2468");
  EXPECT_EQ(c.secretSnapshot(), (std::unordered_set<std::string>{"bob", "team@chatroom"}));
}

// The late read replaces the settings, not what the running process did
// meanwhile: a reveal, or an authentication screen that is up.
TEST_F(Protected, TheLateReadKeepsTheProcesssRevealAndSuppressFlags) {
  savedBefore();
  device.setLockedSinceRestart(true);
  for (bool state : {true, false}) {
    QBConfig c;
    c.load();
    c.setUnlocked(state);
    c.setSuppressAutoLock(state);
    c.setSuppressSessionApply(state);
    device.setLockedSinceRestart(false);
    sys::postNotification(sys::kProtectedDataDidBecomeAvailable);
    ASSERT_FALSE(c.waitingForProtectedData());
    EXPECT_EQ(c.password(), "2468");
    EXPECT_EQ(c.unlocked(), state);
    EXPECT_EQ(c.suppressAutoLock(), state);
    EXPECT_EQ(c.suppressSessionApply(), state);
    device.setLockedSinceRestart(true);
  }
}

TEST_F(Protected, WithoutAGateFileNothingIsKnownAndTheSettingsStillWait) {
  savedBefore();
  fs::remove(folder() + "/gate.plist");
  device.setLockedSinceRestart(true);
  QBConfig c;
  c.load();
  EXPECT_TRUE(c.waitingForProtectedData());
  EXPECT_FALSE(c.isSecretUser("bob"));
  EXPECT_EQ(c.secretNotifyMode(), 0);
  EXPECT_FALSE(c.shouldHideSecrets());
}

TEST_F(Protected, ALoadedFileWithoutAGateFileGetsOneAndASaveKeepsTheSalt) {
  savedBefore();
  fs::remove(folder() + "/gate.plist");
  QBConfig c;
  c.load();
  std::optional<core::GateRecord> first =
      core::gateFromValue(*sys::readPropertyList(core::gateFilePath()));
  ASSERT_TRUE(first);
  EXPECT_EQ(first->hashes.size(), 2u);
  c.removeSecretUser("bob");
  std::optional<core::GateRecord> second =
      core::gateFromValue(*sys::readPropertyList(core::gateFilePath()));
  ASSERT_TRUE(second);
  EXPECT_EQ(second->salt, first->salt);
  EXPECT_EQ(second->hashes,
            (std::unordered_set<std::string>{core::gateHash(first->salt, "team@chatroom")}));
}

TEST(GateRecord, MalformedRecordsAreRefused) {
  core::GateRecord r;
  r.salt = "00ff";
  r.hashes = {core::gateHash("00ff", "bob")};
  r.notifyMode = 2;
  base::Value good = core::gateValue(r);
  EXPECT_EQ(core::gateFromValue(good), r);
  auto changed = [&](const char* key, std::optional<base::Value> value) {
    base::Dictionary d;
    for (const auto& [k, v] : *good.asDictionary())
      if (k != key) d.emplace_back(k, v);
    if (value) d.emplace_back(key, *value);
    return base::Value(d);
  };
  for (const char* key :
       {"salt", "secretHashes", "secretNotifyMode", "voipVoiceNotify", "voipVideoNotify"})
    EXPECT_FALSE(core::gateFromValue(changed(key, std::nullopt))) << key;
  EXPECT_FALSE(
      core::gateFromValue(changed("secretHashes", base::Value(base::Array{base::Value("bob")}))))
      << "a name where a hash belongs";
  EXPECT_FALSE(core::gateFromValue(changed("secretNotifyMode", base::Value(3L))));
  EXPECT_FALSE(core::gateFromValue(changed("salt", base::Value(""))));
  EXPECT_FALSE(core::gateFromValue(base::Value("text")));
}

}  // namespace

namespace {

// SpringBoard reads the visibility mode and the windows from the gate: a
// change of either writes it again, and a file from before they were kept
// still reads (manual mode, no windows).
TEST_F(Protected, TheGateFollowsTheVisibilityModeAndTheWindows) {
  savedBefore();
  auto gate = [] { return core::gateFromValue(*sys::readPropertyList(core::gateFilePath())); };
  ASSERT_TRUE(gate());
  EXPECT_EQ(gate()->visibilityControl, 0);
  EXPECT_EQ(gate()->windows, QBConfig::defaultDailyWindows());
  QBConfig c;
  c.load();
  c.setVisibilityControlMode(1);
  c.save();
  EXPECT_EQ(gate()->visibilityControl, 1);
  std::string error;
  ASSERT_TRUE(c.addDailyWindowWithStart(60, 120, 1, &error)) << error;
  EXPECT_EQ(gate()->windows,
            (core::DailyWindows{QBConfig::QBWindow(60, 120, 1), QBConfig::QBWindow(480, 1320, 0)}))
      << "sorted by start";
  EXPECT_NE(bytes("gate.plist").find("dailyWindows"), std::string::npos);
}

TEST(GateRecord, OlderFilesReadAndMalformedVisibilityKeysAreRefused) {
  core::GateRecord r;
  r.salt = "00ff";
  r.visibilityControl = 1;
  r.windows = {QBConfig::QBWindow(480, 1320, 0)};
  base::Value good = core::gateValue(r);
  EXPECT_EQ(core::gateFromValue(good), r);
  auto with = [&](const char* key, std::optional<base::Value> value) {
    base::Dictionary d;
    for (const auto& [k, v] : *good.asDictionary())
      if (k != key) d.emplace_back(k, v);
    if (value) d.emplace_back(key, *value);
    return core::gateFromValue(base::Value(d));
  };
  std::optional<core::GateRecord> old = with("visibilityControl", std::nullopt);
  ASSERT_TRUE(old);
  EXPECT_EQ(old->visibilityControl, 0);
  old = with("dailyWindows", std::nullopt);
  ASSERT_TRUE(old);
  EXPECT_TRUE(old->windows.empty());
  EXPECT_FALSE(with("visibilityControl", base::Value(2L)));
  EXPECT_FALSE(with("visibilityControl", base::Value(base::Array{})));
  EXPECT_FALSE(with("dailyWindows", base::Value("08:00")));
  EXPECT_FALSE(with("dailyWindows", base::Value(base::Array{})));
  EXPECT_FALSE(with("dailyWindows", core::windowsValue({QBConfig::QBWindow(480, 1320, 0),
                                                        QBConfig::QBWindow(600, 700, 1)})))
      << "overlapping";
  // Stored unsorted, read sorted.
  std::optional<core::GateRecord> sorted =
      with("dailyWindows",
           core::windowsValue({QBConfig::QBWindow(600, 700, 1), QBConfig::QBWindow(60, 120, 0)}));
  ASSERT_TRUE(sorted);
  EXPECT_EQ(sorted->windows.front().start, 60);
}

}  // namespace
