// How SpringBoard finds the host's container among every app's, and keeps
// what it found: the gate read again when it changes, a lookup again when
// nothing was found (not more than once a minute) or the container vanished.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "core/config.hpp"
#include "notify/container_lookup.hpp"
#include "notify/springboard_gate.hpp"
#include "springboard_world.hpp"

namespace {

namespace fs = std::filesystem;
constexpr char kHost[] = "com.example.messenger";

class Lookup : public qbtest::SpringBoardWorld {
 protected:
  std::string root() const { return device.dataContainersPath(); }
  // Another app's container with the gate file in it, and metadata as given.
  std::string otherContainer(const std::string& name, const std::string& metadataBytes) {
    std::string at = root() + "/" + name;
    fs::create_directories(at + "/Documents/Quenby");
    std::ofstream(core::gateFilePathIn(at)) << "x";
    if (!metadataBytes.empty())
      std::ofstream(at + "/" + sys::kContainerMetadataFile) << metadataBytes;
    return at;
  }
};

TEST_F(Lookup, FindsTheContainersHoldingTheGateAndNamesTheirBundles) {
  sim::Process p(device);
  EXPECT_TRUE(notify::findHostContainers(root()).empty()) << "no gate written yet";
  EXPECT_GE(sys::directoryEntries(root()).size(), 3u) << "other apps' containers";
  writeGate(0, {"bob"});
  otherContainer("NO-METADATA", "");
  otherContainer("DAMAGED-METADATA", "<plist><dict>");
  std::vector<notify::HostContainer> found = notify::findHostContainers(root());
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].path, device.containerPath());
  EXPECT_EQ(found[0].bundleIdentifier, kHost);
}

TEST_F(Lookup, TheGateIsReadAgainWhenItChanges) {
  writeGate(0, {"bob"});
  startSpringBoard();
  EXPECT_FALSE(post(kHost, "bob"));
  EXPECT_TRUE(post(kHost, "alice"));
  writeGate(0, {"alice"});
  EXPECT_TRUE(post(kHost, "bob")) << "cached answers belong to the old version";
  EXPECT_FALSE(post(kHost, "alice"));
  // A change is seen once the pause since the last look has passed.
  core::GateRecord open;
  open.salt = "00";
  open.notifyMode = 2;
  writeGateValue(core::gateValue(open));
  springBoard->advance(notify::kGateRecheckInterval_s * 0.9);
  EXPECT_FALSE(post(kHost, "alice")) << "not looked at again yet";
  springBoard->advance(notify::kGateRecheckInterval_s * 0.2);
  EXPECT_TRUE(post(kHost, "alice"));
  EXPECT_EQ(countLog("[QB] lock-screen guard: host container of com.example.messenger"), 1)
      << "looked up once";
}

// The app says when it wrote the gate: SpringBoard reads it at once, without
// waiting for its next look at the stamp.
TEST_F(Lookup, AGateTheAppAnnouncesIsReadAtOnce) {
  writeGate(0, {"bob"});
  startSpringBoard();
  EXPECT_FALSE(post(kHost, "bob"));
  {
    sim::Process app(device);
    core::QBConfig c;
    c.load();
    c.addSecretUser("bob");
    c.setSecretNotifyMode(2);
    c.save();
  }
  EXPECT_TRUE(post(kHost, "bob"));
}

TEST_F(Lookup, NothingFoundIsLookedForAgainAtMostOnceAMinute) {
  startSpringBoard();
  EXPECT_TRUE(post(kHost, "bob"));
  springBoard->advance(notify::kContainerRescanInterval_s + 1);
  EXPECT_TRUE(post(kHost, "bob"));
  EXPECT_EQ(countLog("[QB] lock-screen guard: no host container"), 1) << "said once, looked twice";
  writeGate(0, {"bob"});
  springBoard->advance(notify::kContainerRescanInterval_s - 2);
  EXPECT_TRUE(post(kHost, "bob")) << "too soon to look again";
  springBoard->advance(2);
  EXPECT_FALSE(post(kHost, "bob"));
}

TEST_F(Lookup, AVanishedContainerIsLookedForAgainAtOnce) {
  writeGate(0, {"bob"});
  startSpringBoard();
  EXPECT_FALSE(post(kHost, "bob"));
  // The app reinstalled: its data in a container of a new name.
  std::string moved = root() + "/0000-MOVED";
  fs::rename(device.containerPath(), moved);
  settle();
  EXPECT_FALSE(post(kHost, "bob"));
  EXPECT_EQ(countLog("[QB] lock-screen guard: host container of"), 2);
  // Deleted: everything passes, and the next look waits its minute.
  fs::remove_all(moved);
  settle();
  EXPECT_TRUE(post(kHost, "bob"));
  EXPECT_EQ(countLog("[QB] lock-screen guard: no host container"), 1);
}

// The app writes the gate; SpringBoard, started after a restart and before
// the first unlock, reads it.
TEST_F(Lookup, TheAppsOwnGateIsReadBeforeTheFirstUnlock) {
  {
    sim::Process app(device);
    sim::currentProcess().platform().bundleInfo["CFBundleIdentifier"] = kHost;
    core::QBConfig c;
    c.load();
    c.addSecretUser("bob");
    c.setSecretNotifyMode(1);
    c.save();
  }
  device.setLockedSinceRestart(true);
  startSpringBoard();
  std::optional<qbtest::Presented> p = post(kHost, "bob");
  ASSERT_TRUE(p);
  EXPECT_FALSE(p->sound);
  EXPECT_EQ(vibrations(), 1);
}

TEST(DeviceContainers, TheMetadataSurvivesARestoreAndAGivenContainerGetsOne) {
  {
    sim::Device device;
    sim::Process p(device);
    std::string metadata = device.containerPath() + "/" + sys::kContainerMetadataFile;
    device.takeBackup();
    device.restoreBackup();
    EXPECT_EQ(notify::containerBundleIdentifier(device.containerPath()), kHost);
    device.setLockedSinceRestart(true);
    EXPECT_TRUE(sys::readPropertyList(metadata)) << "readable before the first unlock";
  }
  std::string given = (fs::temp_directory_path() / "quenby-given-XXXXXX").string();
  ASSERT_TRUE(mkdtemp(given.data()));
  {
    sim::DeviceOptions o;
    o.container = given + "/APP";
    o.bundleIdentifier = "com.example.other";
    sim::Device device(o);
    sim::Process p(device);
    EXPECT_EQ(device.dataContainersPath(), given);
    EXPECT_EQ(sys::documentsDirectory(), given + "/APP/Documents");
    EXPECT_EQ(notify::containerBundleIdentifier(device.containerPath()), "com.example.other");
  }
  fs::remove_all(given);
}

}  // namespace
