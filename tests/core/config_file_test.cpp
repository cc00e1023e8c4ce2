// Loading and saving the settings file: defaults, every migration and repair
// step, and the exact keys written (damaged files: config_kept_aside_test).
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "core/config.hpp"
#include "sim/codec/plist_codec.hpp"
#include "support/sim_world.hpp"
#include "sys/files.hpp"

namespace {

using core::DailyWindow;
using core::DailyWindows;
using core::QBConfig;

class ConfigFile : public qbtest::SimWorld {
 protected:
  std::string path() { return device.documentsPath() + "/Quenby/config.plist"; }
  void writeFile(const base::Dictionary& d, sys::PlistFormat f = sys::PlistFormat::Xml) {
    std::filesystem::create_directories(device.documentsPath() + "/Quenby");
    ASSERT_TRUE(sys::writePropertyList(path(), base::Value(d), f));
  }
  void writeRaw(const std::string& bytes) {
    std::filesystem::create_directories(device.documentsPath() + "/Quenby");
    std::ofstream(path(), std::ios::binary) << bytes;
  }
  // A fresh object loading the file, as the singleton does at start-up.
  std::unique_ptr<QBConfig> loaded() {
    auto c = std::make_unique<QBConfig>();
    c->load();
    return c;
  }
  base::Value onDisk() { return sys::readPropertyList(path()).value_or(base::Value()); }
};

void expectDefaults(const QBConfig& c) {
  EXPECT_EQ(c.password(), "7351");
  EXPECT_TRUE(c.shakeHideEnabled());
  EXPECT_TRUE(c.shakeShowEnabled());
  EXPECT_TRUE(c.showNeedsAuth());
  EXPECT_TRUE(c.longPressUnlockEnabled());
  EXPECT_TRUE(c.passwordFallbackEnabled());
  EXPECT_FALSE(c.voipVoiceNotifyEnabled());
  EXPECT_FALSE(c.voipVideoNotifyEnabled());
  EXPECT_EQ(c.panelAuthMode(), 0);
  EXPECT_EQ(c.revealAuthMode(), 0);
  EXPECT_EQ(c.secretNotifyMode(), 0);
  EXPECT_FALSE(c.backgroundNotifyEnabled());
  EXPECT_EQ(c.visibilityControlMode(), 0);
  EXPECT_EQ(c.dailyWindows(), (DailyWindows{{480, 1320, 0}}));
  EXPECT_EQ(c.secretCount(), 0);
  EXPECT_FALSE(c.unlocked());
  EXPECT_FALSE(c.suppressAutoLock());
  EXPECT_FALSE(c.suppressSessionApply());
}

TEST_F(ConfigFile, NoFileGivesEveryDefaultAndWritesNothing) {
  auto c = loaded();
  expectDefaults(*c);
  EXPECT_FALSE(std::filesystem::exists(path())) << "load never saves";
  EXPECT_TRUE(std::filesystem::is_directory(device.documentsPath() + "/Quenby"))
      << "configURL makes the folder";
}

// The settings and the gate file are in the phone's backups: a restore, or a
// move to a new phone, keeps the secrets and the password.
TEST_F(ConfigFile, ARestoredBackupKeepsTheSecretsAndThePassword) {
  {
    auto c = loaded();
    c->setPassword("2468");
    c->setSecretNotifyMode(1);
    c->addSecretUser("bob");
  }
  device.takeBackup();
  loaded()->clearAllSecretUsers();
  ASSERT_TRUE(device.restoreBackup());
  auto c = loaded();
  EXPECT_EQ(c->password(), "2468");
  EXPECT_EQ(c->secretSnapshot(), (std::unordered_set<std::string>{"bob"}));
  EXPECT_EQ(c->secretNotifyMode(), 1);
  // Restored with their protection classes: the gate still answers before
  // the first unlock, with the settings closed.
  device.setLockedSinceRestart(true);
  auto early = loaded();
  EXPECT_TRUE(early->waitingForProtectedData());
  EXPECT_TRUE(early->isSecretUser("bob"));
}

TEST_F(ConfigFile, WronglyTypedAndOutOfRangeValues) {
  writeFile({
      {"password", base::Value(1234)},
      {"shakeHide", base::Value("YES")},
      {"shakeShow", base::Value(base::Array{})},
      {"showNeedsAuth", base::Value(0)},
      {"voipVoiceNotify", base::Value(" 7")},
      {"secretNotifyMode", base::Value(5)},
      {"panelAuthMode", base::Value(-1)},
      {"revealAuthMode", base::Value("1")},
      {"visibilityControl", base::Value(2)},
      {"backgroundNotify", base::Value(true)},
  });
  auto c = loaded();
  EXPECT_EQ(c->password(), "7351") << "a non-string password gives the default";
  EXPECT_TRUE(c->shakeHideEnabled());
  EXPECT_TRUE(c->shakeShowEnabled()) << "a value that does not answer boolValue counts as absent";
  EXPECT_FALSE(c->showNeedsAuth());
  EXPECT_TRUE(c->voipVoiceNotifyEnabled());
  EXPECT_EQ(c->secretNotifyMode(), 0);
  EXPECT_FALSE(c->backgroundNotifyEnabled()) << "always derived from the notify mode";
  EXPECT_EQ(c->panelAuthMode(), 0) << "negative is out of range when compared unsigned";
  EXPECT_EQ(c->revealAuthMode(), 1);
  EXPECT_EQ(c->visibilityControlMode(), 0);
  writeFile({{"secretNotifyMode", base::Value(-1)}});
  EXPECT_EQ(loaded()->secretNotifyMode(), 0);
  writeFile({{"secretNotifyMode", base::Value(2)}});
  EXPECT_TRUE(loaded()->backgroundNotifyEnabled());
}

TEST_F(ConfigFile, LegacyKeysMigrate) {
  writeFile({{"shakeToggle", base::Value(false)}});
  auto c = loaded();
  EXPECT_FALSE(c->shakeHideEnabled());
  EXPECT_FALSE(c->shakeShowEnabled());
  c->save();
  base::Value d = onDisk();
  for (const char* k : {"shakeToggle", "shakeHide", "shakeShow"})
    EXPECT_EQ(*d.find(k), base::Value(false)) << k;

  writeFile({{"shakeToggle", base::Value(false)}, {"shakeShow", base::Value(true)}});
  c = loaded();
  EXPECT_FALSE(c->shakeHideEnabled());
  EXPECT_TRUE(c->shakeShowEnabled());

  writeFile({{"authMode", base::Value(1)}});
  c = loaded();
  EXPECT_EQ(c->panelAuthMode(), 1);
  EXPECT_EQ(c->revealAuthMode(), 1);
  writeFile({{"authMode", base::Value(1)}, {"revealAuthMode", base::Value(0)}});
  c = loaded();
  EXPECT_EQ(c->panelAuthMode(), 1);
  EXPECT_EQ(c->revealAuthMode(), 0);
  c->setPanelAuthMode(0);
  c->save();
  EXPECT_EQ(*onDisk().find("authMode"), base::Value(0)) << "the old key holds the panel mode";
  writeFile({{"authMode", base::Value(7)}});
  EXPECT_EQ(loaded()->panelAuthMode(), 0);
}

TEST_F(ConfigFile, LegacyShowAndHideMinutesBecomeOneWindow) {
  writeFile({{"dailyShowMinute", base::Value(600)}});
  EXPECT_EQ(loaded()->dailyWindows(), (DailyWindows{{600, 1320, 0}}));
  writeFile({{"dailyHideMinute", base::Value(360)}, {"dailyShowMinute", base::Value(1320)}});
  EXPECT_EQ(loaded()->dailyWindows(), (DailyWindows{{1320, 360, 0}}));
  writeFile({{"dailyShowMinute", base::Value(700)}, {"dailyHideMinute", base::Value(700)}});
  EXPECT_EQ(loaded()->dailyWindows(), QBConfig::defaultDailyWindows());
  writeFile({{"dailyShowMinute", base::Value(-50)}, {"dailyHideMinute", base::Value(99999)}});
  EXPECT_EQ(loaded()->dailyWindows(), (DailyWindows{{0, 1439, 0}}));
  // Windows present but unusable are as good as none: the legacy keys decide.
  for (base::Value unusable : {base::Value("08:00-22:00"), base::Value(base::Array{}),
                               base::Value(base::Array{base::Value(3)})}) {
    writeFile({{"dailyWindows", unusable}, {"dailyShowMinute", base::Value(600)}});
    EXPECT_EQ(loaded()->dailyWindows(), (DailyWindows{{600, 1320, 0}})) << base::describe(unusable);
  }
  // Windows that sanitise take precedence over the legacy keys.
  writeFile({{"dailyShowMinute", base::Value(600)},
             {"dailyWindows", base::Value(base::Array{DailyWindow{60, 120, 1}.toValue()})}});
  EXPECT_EQ(loaded()->dailyWindows(), (DailyWindows{{60, 120, 1}}));
}

base::Value window(base::Value start, base::Value end, base::Value mode = base::Value()) {
  base::Dictionary d{{"start", std::move(start)}, {"end", std::move(end)}};
  if (!mode.isNull()) d.emplace_back("mode", std::move(mode));
  return base::Value(std::move(d));
}

TEST_F(ConfigFile, StoredWindowsAreSanitisedAndRepaired) {
  writeFile({{"dailyWindows", base::Value(base::Array{window(0, 60), window(60, 120, 1),
                                                      window(120, 180), window(180, 240)})}});
  EXPECT_EQ(loaded()->dailyWindows(), (DailyWindows{{0, 60, 0}, {60, 120, 1}, {120, 180, 0}}))
      << "first three";

  writeFile({{"dailyWindows", base::Value(base::Array{window(480, 780), window(600, 900, 1),
                                                      window(900, 960, 1)})}});
  EXPECT_EQ(loaded()->dailyWindows(), (DailyWindows{{480, 780, 0}, {900, 960, 1}}))
      << "greedy: the overlapping one goes";

  writeFile({{"dailyWindows",
              base::Value(base::Array{base::Value("x"), window(base::Value("90"), 100, 7),
                                      window(5, base::Value(base::Array{})), window(10, 10)})}});
  EXPECT_EQ(loaded()->dailyWindows(), (DailyWindows{{90, 100, 0}}))
      << "non-dictionaries and unreadable ends skipped; mode 7 reads as show; the empty window "
         "repaired away";

  writeFile({{"dailyWindows", base::Value(base::Array{window(10, 10)})}});
  EXPECT_EQ(loaded()->dailyWindows(), QBConfig::defaultDailyWindows()) << "nothing usable left";
  writeFile({{"dailyWindows", base::Value("08:00-22:00")}});
  EXPECT_EQ(loaded()->dailyWindows(), QBConfig::defaultDailyWindows());
}

// A list written in another order reads in start order, and window indices
// count in that order.
TEST_F(ConfigFile, AStoredUnsortedListIsUsedInStartOrder) {
  writeFile({{"dailyWindows",
              base::Value(base::Array{window(1200, 1260, 1), window(60, 120), window(600, 700)})}});
  auto c = loaded();
  EXPECT_EQ(c->normalizedDailyWindows(),
            (DailyWindows{{60, 120, 0}, {600, 700, 0}, {1200, 1260, 1}}));
  ASSERT_TRUE(c->removeDailyWindowAtIndex(0, nullptr));
  EXPECT_EQ(c->normalizedDailyWindows(), (DailyWindows{{600, 700, 0}, {1200, 1260, 1}}));
}

TEST_F(ConfigFile, SecretsKeepOnlyNonEmptyStrings) {
  base::Array big;
  for (int i = 0; i < 20000; ++i) big.push_back(base::Value("user" + std::to_string(i % 15000)));
  writeFile(
      {{"secrets", base::Value(base::Array{base::Value("alice"), base::Value(""), base::Value(42),
                                           base::Value("bob"), base::Value("alice")})}});
  auto c = loaded();
  EXPECT_EQ(c->secretSnapshot(), (std::unordered_set<std::string>{"alice", "bob"}));
  writeFile({{"secrets", base::Value(std::move(big))}}, sys::PlistFormat::Binary);
  EXPECT_EQ(loaded()->secretCount(), 15000);
  writeFile({{"secrets", base::Value("alice")}});
  EXPECT_EQ(loaded()->secretCount(), 0);
}

TEST_F(ConfigFile, EveryLoadStartsHidden) {
  writeFile({{"unlocked", base::Value(true)},
             {"secrets", base::Value(base::Array{base::Value("alice")})}});
  auto c = loaded();
  EXPECT_FALSE(c->unlocked());
  EXPECT_TRUE(c->shouldHideSecrets());
}

TEST_F(ConfigFile, SaveWritesExactlyTheSeventeenKeysInOrder) {
  writeFile({{"dailyShowMinute", base::Value(600)},
             {"backgroundNotify", base::Value(true)},
             {"unknownKey", base::Value(1)}});
  auto c = loaded();
  c->addSecretUser("wxid_a");
  base::Value d = onDisk();
  ASSERT_TRUE(d.isDictionary());
  std::vector<std::string> keys;
  for (const auto& [k, v] : *d.asDictionary()) keys.push_back(k);
  EXPECT_EQ(keys, (std::vector<std::string>{
                      "password", "secrets", "shakeToggle", "shakeHide", "shakeShow",
                      "showNeedsAuth", "longPressUnlock", "passwordFallback", "panelAuthMode",
                      "revealAuthMode", "authMode", "secretNotifyMode", "backgroundNotify",
                      "voipVoiceNotify", "voipVideoNotify", "visibilityControl", "dailyWindows"}));
  EXPECT_EQ(*d.find("backgroundNotify"), base::Value(false));
  EXPECT_EQ(*d.find("dailyWindows"), core::windowsValue({{600, 1320, 0}}));
  EXPECT_EQ(*d.find("secrets"), base::Value(base::Array{base::Value("wxid_a")}));
  EXPECT_TRUE(d.find("panelAuthMode")->isInteger());
  EXPECT_TRUE(d.find("shakeHide")->isBool());
}

TEST_F(ConfigFile, SaveReplacesAnInvalidListWithTheDefault) {
  auto c = loaded();
  c->setDailyWindowsField({{60, 60, 0}});
  EXPECT_EQ(c->normalizedDailyWindows(), QBConfig::defaultDailyWindows());
  c->save();
  EXPECT_EQ(*onDisk().find("dailyWindows"), core::windowsValue(QBConfig::defaultDailyWindows()));
}

TEST_F(ConfigFile, ReadsWhatItWroteInBothForms) {
  auto c = loaded();
  c->setPassword("");
  c->setSecretNotifyMode(1);
  c->setVisibilityControlMode(1);
  c->setDailyWindowsField({{1320, 360, 1}, {480, 600, 0}});
  c->addSecretUser("密友");
  base::Value written = onDisk();
  writeRaw(sim::encodePlist(written, sys::PlistFormat::Binary));
  auto again = loaded();
  EXPECT_EQ(again->password(), "") << "an empty string is kept";
  EXPECT_EQ(again->secretNotifyMode(), 1);
  EXPECT_TRUE(again->usesScheduleVisibility());
  EXPECT_EQ(again->dailyWindows(), (DailyWindows{{1320, 360, 1}, {480, 600, 0}}));
  EXPECT_TRUE(again->isSecretUser("密友"));
}

}  // namespace
