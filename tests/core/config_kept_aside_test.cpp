// A settings file that cannot be used is kept aside, never overwritten, and a
// save that cannot be written says so: what is on disk afterwards, and the log.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <thread>

#include "core/config.hpp"
#include "core/kept_aside.hpp"
#include "sim/codec/atomic_file.hpp"
#include "sim/codec/plist_codec.hpp"
#include "support/sim_world.hpp"
#include "sys/files.hpp"

namespace {

namespace fs = std::filesystem;
using core::QBConfig;

class KeptAside : public qbtest::SimWorld {
 protected:
  std::string folder() { return device.documentsPath() + "/Quenby"; }
  std::string path() { return folder() + "/config.plist"; }
  void writeRaw(const std::string& bytes) {
    fs::create_directories(folder());
    std::ofstream(path(), std::ios::binary) << bytes;
  }
  std::unique_ptr<QBConfig> loaded() {
    auto c = std::make_unique<QBConfig>();
    c->load();
    return c;
  }
  // Every item in the folder but the settings file: name → bytes ("" for
  // what is not a regular file).
  std::map<std::string, std::string> others() {
    std::map<std::string, std::string> out;
    for (const auto& e : fs::directory_iterator(folder()))
      if (e.path().filename() != "config.plist" && e.path().filename() != "gate.plist")
        out[e.path().filename().string()] = fs::is_regular_file(e.symlink_status())
                                                ? sim::readWholeFile(e.path().string()).value_or("")
                                                : "";
    return out;
  }
  std::vector<std::string> logLines() {
    std::vector<std::string> out;
    for (const auto& l : device.log()) out.push_back(l.text);
    return out;
  }
  std::string keptLine(const std::string& name) {
    return "[QB] config unreadable, kept aside as " + folder() + "/" + name;
  }
  // The name of the one kept-aside item, after checking there is one.
  std::string onlyOther() {
    auto items = others();
    EXPECT_EQ(items.size(), 1u);
    return items.empty() ? "" : items.begin()->first;
  }
  std::string stampNow() {
    return core::keptAsideName("config.plist", device.absoluteTime(), 1).substr(7, 17);
  }
};

TEST(KeptAsideName, TheUtcDateAndTimeThenACountWithinTheSecond) {
  EXPECT_EQ(core::keptAsideName("/a/b/config.plist", 0, 1), "/a/b/config-2001-01-01-000000.plist");
  const double newYear2025 = 757382400;
  EXPECT_EQ(core::keptAsideName("/c/config.plist", newYear2025 + 13 * 3600 + 5 * 60 + 9.99, 1),
            "/c/config-2025-01-01-130509.plist");
  EXPECT_EQ(core::keptAsideName("/c/config.plist", 730857600 + 86399, 2),
            "/c/config-2024-02-29-235959-2.plist");
  EXPECT_EQ(core::keptAsideName("/c/config.plist", -0.5, 12),
            "/c/config-2000-12-31-235959-12.plist");
}

TEST_F(KeptAside, DamagedFilesKeepTheirBytesUnderDistinctNames) {
  const std::string binary = sim::encodePlist(
      base::Value(base::Dictionary{{"password", base::Value("1111")}}), sys::PlistFormat::Binary);
  std::string brokenOffsets = binary;
  for (std::size_t i = brokenOffsets.size() - 26; i < brokenOffsets.size(); ++i)
    brokenOffsets[i] = '\xff';
  const std::string cases[] = {
      "",
      "garbage that is not a property list",
      binary.substr(0, binary.size() / 2),
      brokenOffsets,
      "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>password</key><string>9",
      sim::encodePlist(base::Value(base::Array{base::Value("7351")}), sys::PlistFormat::Xml),
      sim::encodePlist(base::Value("a string root"), sys::PlistFormat::Binary),
  };
  std::map<std::string, std::string> kept;
  int n = 0;
  for (const std::string& bytes : cases) {
    writeRaw(bytes);
    auto c = loaded();
    EXPECT_EQ(c->password(), "7351");
    EXPECT_EQ(c->dailyWindows(), QBConfig::defaultDailyWindows());
    EXPECT_FALSE(fs::exists(path())) << "moved at load, before any save";
    // All in the same second: the first name, then -2, -3, …
    std::string name = "config-" + stampNow() + (n++ ? "-" + std::to_string(n) : "") + ".plist";
    kept[name] = bytes;
    EXPECT_EQ(others(), kept) << "earlier ones untouched";
    EXPECT_EQ(logLines().back(), keptLine(name));
  }
  auto c = loaded();
  c->addSecretUser("wxid_new");
  EXPECT_EQ(sys::readPropertyList(path())->find("secrets")->asArray()->size(), 1u);
  EXPECT_EQ(others(), kept) << "a save writes only the settings file";
}

TEST_F(KeptAside, WronglyTypedValuesAreRepairedInPlace) {
  std::string bytes = sim::encodePlist(
      base::Value(base::Dictionary{{"password", base::Value(7)},
                                   {"secrets", base::Value("alice")},
                                   {"dailyWindows", base::Value(base::Array{base::Value(3)})}}),
      sys::PlistFormat::Xml);
  writeRaw(bytes);
  auto c = loaded();
  EXPECT_EQ(c->password(), "7351");
  EXPECT_EQ(sim::readWholeFile(path()), bytes);
  EXPECT_TRUE(others().empty());
  EXPECT_TRUE(logLines().empty());
}

TEST_F(KeptAside, AFifoIsNotWaitedOnAndIsMovedAside) {
  fs::create_directories(folder());
  ASSERT_EQ(::mkfifo(path().c_str(), 0644), 0);
  // Should the load block on the FIFO, a writer that opens and closes it
  // ends the wait, and the test fails instead of hanging.
  std::atomic<bool> done{false}, rescued{false};
  std::thread watchdog([&] {
    for (int i = 0; i < 500 && !done; ++i)
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    while (!done) {
      int fd = ::open(path().c_str(), O_WRONLY | O_NONBLOCK);
      if (fd >= 0) rescued = true, ::close(fd);
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
  });
  auto c = loaded();
  done = true;
  watchdog.join();
  EXPECT_FALSE(rescued) << "the load waited on the FIFO";
  std::string name = onlyOther();
  EXPECT_TRUE(fs::is_fifo(folder() + "/" + name)) << name;
  EXPECT_EQ(logLines(), std::vector<std::string>{keptLine(name)});
  c->addSecretUser("wxid_a");
  EXPECT_TRUE(fs::is_regular_file(path()));
  EXPECT_TRUE(sys::readPropertyList(path()));
}

TEST_F(KeptAside, AFolderAtThePathIsMovedWithItsContent) {
  fs::create_directories(path());
  std::ofstream(path() + "/note.txt") << "mine";
  auto c = loaded();
  std::string name = onlyOther();
  EXPECT_EQ(sim::readWholeFile(folder() + "/" + name + "/note.txt"), "mine");
  EXPECT_EQ(logLines(), std::vector<std::string>{keptLine(name)});
  c->addSecretUser("wxid_a");
  EXPECT_TRUE(sys::readPropertyList(path()));
  EXPECT_EQ(logLines().size(), 1u) << "the save wrote without a word";
}

TEST_F(KeptAside, AReadOnlyContainerFailsEachSaveAloudAndKeepsTheSettings) {
  sys::createDirectories(folder());
  base::Value good(base::Dictionary{{"password", base::Value("2468")}});
  ASSERT_TRUE(sys::writePropertyList(path(), good));
  auto c = loaded();
  device.faults().readOnlyContainer = true;
  c->addSecretUser("wxid_secret");
  c->removeSecretUser("wxid_secret");
  c->addSecretUser("wxid_secret");
  const std::string failed = "[QB] config save failed: " + path() + ": Read-only file system";
  EXPECT_EQ(logLines(), std::vector<std::string>(3, failed));
  EXPECT_TRUE(c->isSecretUser("wxid_secret")) << "kept in memory";
  EXPECT_EQ(sys::readPropertyList(path()), good);
  EXPECT_TRUE(others().empty()) << "no temporary file left";
}

TEST_F(KeptAside, AFileThatCannotBeMovedIsNeverWrittenOver) {
  writeRaw("damaged");
  device.faults().readOnlyContainer = true;
  auto c = loaded();
  EXPECT_EQ(c->password(), "7351");
  ASSERT_EQ(logLines().size(), 1u);
  EXPECT_EQ(logLines()[0],
            "[QB] config unreadable, left in place: " + path() + ": Read-only file system");
  c->addSecretUser("wxid_secret");
  EXPECT_EQ(logLines().back(), "[QB] config save failed: " + path() + ": Read-only file system");
  EXPECT_EQ(sim::readWholeFile(path()), "damaged");
  EXPECT_TRUE(others().empty());

  // Once the container can be written, the next save keeps the file aside first.
  device.faults().readOnlyContainer = false;
  c->setPassword("1357");
  c->save();
  std::string name = onlyOther();
  EXPECT_EQ(sim::readWholeFile(folder() + "/" + name), "damaged");
  EXPECT_EQ(logLines().back(), keptLine(name));
  base::Value now = *sys::readPropertyList(path());
  EXPECT_EQ(*now.find("password"), base::Value("1357"));
  EXPECT_EQ(*now.find("secrets"), base::Value(base::Array{base::Value("wxid_secret")}));
  for (const std::string& line : logLines())
    EXPECT_EQ(line.find("wxid_secret"), std::string::npos) << line;
}

TEST_F(KeptAside, AFileGoneBeforeItCouldBeMovedNeedsNoMove) {
  writeRaw("damaged");
  device.faults().readOnlyContainer = true;
  auto c = loaded();
  device.faults().readOnlyContainer = false;
  fs::remove(path());
  c->addSecretUser("wxid_a");
  EXPECT_TRUE(sys::readPropertyList(path()));
  EXPECT_TRUE(others().empty());
  EXPECT_EQ(logLines().size(), 1u) << "only the load's line";
}

TEST_F(KeptAside, AFolderThatCannotBeMovedFailsEverySave) {
  fs::create_directories(path());
  device.faults().readOnlyContainer = true;
  auto c = loaded();
  c->addSecretUser("wxid_a");
  c->addSecretUser("wxid_b");
  const std::string failed = "[QB] config save failed: " + path() + ": Read-only file system";
  EXPECT_EQ(logLines().size(), 3u);
  EXPECT_EQ(logLines()[1], failed);
  EXPECT_EQ(logLines()[2], failed);
  EXPECT_TRUE(fs::is_directory(path()));
  EXPECT_TRUE(others().empty());
  EXPECT_EQ(c->secretCount(), 2);
}

}  // namespace
