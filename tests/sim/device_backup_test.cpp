// The device's backup and restore: what a phone's backup holds and leaves
// out, and a restore that puts back exactly that.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "sim/device/device.hpp"
#include "sys/files.hpp"

namespace {

namespace fs = std::filesystem;

class DeviceBackup : public ::testing::Test {
 protected:
  sim::Device device;
  std::string at(const std::string& relative) { return device.containerPath() + "/" + relative; }
  void put(const std::string& relative, const std::string& bytes) {
    fs::create_directories(fs::path(at(relative)).parent_path());
    std::ofstream(at(relative), std::ios::binary) << bytes;
  }
  std::string read(const std::string& relative) {
    std::ifstream in(at(relative), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
};

TEST_F(DeviceBackup, ARestoreBringsBackWhatTheBackupHeldAndNothingElse) {
  EXPECT_FALSE(device.restoreBackup()) << "no backup yet";
  put("Documents/Quenby/config.plist", "settings");
  put("Documents/kept/a.txt", "a");
  put("Documents/excluded/b.txt", "b");
  put("Library/Caches/c.bin", "c");
  put("Library/Preferences/p.plist", "p");
  put("tmp/t.txt", "t");
  fs::create_directories(at("Documents/empty"));
  device.excludeFromBackup(at("Documents/excluded"));
  device.noteProtection(at("Documents/Quenby/config.plist"), sys::FileProtection::None);
  device.takeBackup();
  put("Documents/Quenby/config.plist", "changed after the backup");
  put("Documents/later.txt", "later");
  device.noteProtection(at("Documents/Quenby/config.plist"), sys::FileProtection::UntilFirstUnlock);
  ASSERT_TRUE(device.restoreBackup());
  EXPECT_EQ(read("Documents/Quenby/config.plist"), "settings");
  EXPECT_EQ(read("Documents/kept/a.txt"), "a");
  EXPECT_EQ(read("Library/Preferences/p.plist"), "p");
  EXPECT_TRUE(fs::is_directory(at("Documents/empty")));
  for (const char* gone : {"Documents/excluded", "Library/Caches", "tmp", "Documents/later.txt"})
    EXPECT_FALSE(fs::exists(at(gone))) << gone;
  EXPECT_EQ(device.protectionOf(at("Documents/Quenby/config.plist")), sys::FileProtection::None)
      << "the class it had when backed up";
  EXPECT_FALSE(device.excludedFromBackup(at("Documents/excluded")));
  // The same backup restores again; a new one replaces it.
  put("Documents/kept/a.txt", "edited");
  device.takeBackup();
  put("Documents/kept/a.txt", "edited again");
  ASSERT_TRUE(device.restoreBackup());
  EXPECT_EQ(read("Documents/kept/a.txt"), "edited");
}

}  // namespace
