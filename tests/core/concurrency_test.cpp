// The secret set and load/save share one lock: adds, removes, snapshots and
// saves from several threads at once. Run under ThreadSanitizer by CI.
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "core/config.hpp"
#include "support/sim_world.hpp"
#include "sys/files.hpp"

namespace {

using core::QBConfig;

class ConfigConcurrency : public qbtest::SimWorld {};

TEST_F(ConfigConcurrency, SetOperationsAndSavesFromManyThreads) {
  QBConfig& c = QBConfig::shared();
  constexpr int kThreads = 4, kRounds = 40;
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&c, t] {
      for (int i = 0; i < kRounds; ++i) {
        std::string mine = "t" + std::to_string(t) + "_" + std::to_string(i);
        c.addSecretUser(mine);
        c.addSecretUser("shared");
        if (i % 2) c.removeSecretUser(mine);
        auto snapshot = c.secretSnapshot();
        EXPECT_TRUE(snapshot.count("shared"));
        EXPECT_GE(c.secretCount(), 1);
        c.setShakeHideEnabled(i % 3 == 0);
        (void)c.shouldHideSecrets();
        if (i % 10 == 0) c.save();
      }
    });
  }
  for (auto& th : threads) th.join();
  EXPECT_EQ(c.secretCount(), 1 + kThreads * kRounds / 2);
  c.save();
  auto file = sys::readPropertyList(c.configURL());
  ASSERT_TRUE(file);
  EXPECT_EQ(long(file->find("secrets")->asArray()->size()), c.secretCount());
}

}  // namespace
