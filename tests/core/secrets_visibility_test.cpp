// The secret set, the password rules and the deferred state-change
// notification: one posting per call, 0.35 s after its main-queue hop.
#include <gtest/gtest.h>

#include <thread>

#include "core/config.hpp"
#include "rt/exception.hpp"
#include "support/sim_world.hpp"
#include "sys/files.hpp"
#include "sys/notifications.hpp"
#include "sys/queue.hpp"

namespace {

using core::QBConfig;

class SecretState : public qbtest::SimWorld {
 protected:
  void SetUp() override {
    sys::addObserver(core::kSecretStateChanged, [this](const sys::Notification& n) {
      EXPECT_EQ(n.object, nullptr);
      EXPECT_EQ(n.userInfo, nullptr);
      postedAt.push_back(device.elapsed());
    });
  }
  std::vector<std::string> secretsOnDisk() {
    std::vector<std::string> out;
    if (auto d = sys::readPropertyList(c.configURL()))
      for (const base::Value& v : *d->find("secrets")->asArray()) out.push_back(*v.asString());
    std::sort(out.begin(), out.end());
    return out;
  }
  QBConfig& c = QBConfig::shared();
  std::vector<double> postedAt;
};

TEST_F(SecretState, TheSetSavesButNeverNotifies) {
  EXPECT_FALSE(c.isSecretUser("alice"));
  c.addSecretUser("alice");
  c.addSecretUser("alice");
  c.addSecretUser("");
  c.addSecretUser("team@chatroom");
  EXPECT_EQ(c.secretCount(), 2);
  EXPECT_EQ(secretsOnDisk(), (std::vector<std::string>{"alice", "team@chatroom"}));
  EXPECT_TRUE(c.isSecretUser("alice"));
  EXPECT_FALSE(c.isSecretUser("Alice")) << "case-sensitive";
  EXPECT_FALSE(c.isSecretUser(""));
  auto snapshot = c.secretSnapshot();
  c.removeSecretUser("alice");
  EXPECT_EQ(c.secretCount(), 1);
  EXPECT_EQ(snapshot.size(), 2u) << "a snapshot is a copy";
  EXPECT_EQ(secretsOnDisk(), (std::vector<std::string>{"team@chatroom"}));
  c.clearAllSecretUsers();
  EXPECT_EQ(c.secretCount(), 0);
  EXPECT_TRUE(secretsOnDisk().empty());
  process.advance(5);
  EXPECT_TRUE(postedAt.empty());
}

TEST_F(SecretState, ShouldHideNeedsSecretsAndTheLockedState) {
  EXPECT_FALSE(c.shouldHideSecrets()) << "nothing to hide";
  c.addSecretUser("alice");
  EXPECT_TRUE(c.shouldHideSecrets());
  c.setUnlocked(true);
  EXPECT_FALSE(c.shouldHideSecrets());
  c.setVisibilityControlMode(1);
  EXPECT_FALSE(c.shouldHideSecrets()) << "the mode is not consulted";
}

TEST_F(SecretState, PasswordRules) {
  EXPECT_FALSE(c.tryUnlockSilentWithPassword(""));
  EXPECT_FALSE(c.tryUnlockSilentWithPassword("7351 "));
  EXPECT_TRUE(c.tryUnlockSilentWithPassword("7351"));
  EXPECT_TRUE(c.unlocked());
  c.setUnlocked(false);
  c.setPassword("");
  EXPECT_TRUE(c.tryUnlockSilentWithPassword("7351"))
      << "an empty stored password means the default";
  EXPECT_FALSE(c.tryUnlockSilentWithPassword(""));
  c.setUnlocked(false);
  c.setPassword("密码abc");
  EXPECT_FALSE(c.tryUnlockSilentWithPassword("7351"));
  EXPECT_FALSE(c.tryUnlockSilentWithPassword("密码ABC"));
  EXPECT_FALSE(c.unlocked()) << "a wrong password changes nothing";
  EXPECT_TRUE(c.tryUnlockSilentWithPassword("密码abc"));
  process.advance(1);
  EXPECT_TRUE(postedAt.empty()) << "the silent form never notifies";
}

TEST_F(SecretState, NotificationsArriveOnePerCallAfterTheHopAndDelay) {
  device.setElapsed(10);
  EXPECT_TRUE(c.tryUnlockWithPassword("7351"));
  c.lock();
  c.lock();  // already hidden: nothing
  c.requestVisibilitySync();
  EXPECT_FALSE(c.tryUnlockWithPassword("nope"));
  process.advance(0.349);
  EXPECT_TRUE(postedAt.empty());
  process.advance(0.001);
  EXPECT_EQ(postedAt, (std::vector<double>{10.35, 10.35, 10.35}))
      << "unlock, lock, sync; never coalesced";
  EXPECT_FALSE(c.unlocked());
}

// Window edits save by themselves but, like the secret set, leave the
// notifying to their caller.
TEST_F(SecretState, WindowEditsSaveButNeverNotify) {
  std::string error;
  ASSERT_TRUE(c.addDailyWindowWithStart(1380, 60, 1, &error)) << error;
  ASSERT_TRUE(c.updateDailyWindowAtIndex(1, 1380, 120, 1, &error)) << error;
  ASSERT_TRUE(c.removeDailyWindowAtIndex(1, &error)) << error;
  ASSERT_TRUE(c.setDailyWindows(core::windowsValue({{600, 700, 1}}), &error)) << error;
  EXPECT_EQ(sys::readPropertyList(c.configURL())->find("dailyWindows")->asArray()->size(), 1u);
  process.advance(5);
  EXPECT_TRUE(postedAt.empty());
}

// Called from another thread, lock and the sync still post on the main
// thread, where the lists' observers reload.
TEST_F(SecretState, LockAndSyncFromAnotherThreadPostOnTheMainThread) {
  std::vector<bool> onMain;
  sys::addObserver(core::kSecretStateChanged,
                   [&onMain](const sys::Notification&) { onMain.push_back(sys::isMainThread()); });
  c.setUnlocked(true);
  std::thread([this] {
    c.lock();
    c.requestVisibilitySync();
  }).join();
  EXPECT_FALSE(c.unlocked());
  EXPECT_TRUE(onMain.empty()) << "nothing is posted on the calling thread";
  process.advance(1);
  EXPECT_EQ(onMain, (std::vector<bool>{true, true}));
}

TEST_F(SecretState, AnObserverThatRaisesIsLogged) {
  sys::addObserver(core::kSecretStateChanged,
                   [](const sys::Notification&) { rt::raise("NSGenericException", "boom"); });
  c.requestVisibilitySync();
  process.advance(1);
  EXPECT_FALSE(process.crashed());
  ASSERT_FALSE(device.log().empty());
  EXPECT_EQ(device.log().back().text, "[QB] notify ex: boom");
}

}  // namespace
