// The secret set, the password rules and the deferred state-change
// notification: one posting per call, 0.35 s after its main-queue hop.
#include <gtest/gtest.h>

#include "core/config.hpp"
#include "rt/exception.hpp"
#include "support/sim_world.hpp"
#include "sys/files.hpp"
#include "sys/notifications.hpp"

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
