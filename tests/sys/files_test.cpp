// The container's files through the facade: the Documents folder, and how
// the device's faults and the file system's answers reach the caller. The
// codec and the atomic write themselves are tested in tests/sim.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "support/sim_world.hpp"
#include "sys/files.hpp"

namespace {

class ContainerFiles : public qbtest::SimWorld {
 protected:
  std::string folder() { return sys::documentsDirectory() + "/Quenby"; }
  std::string file() { return folder() + "/config.plist"; }
  base::Value settings(const char* password) {
    base::Dictionary d;
    d.emplace_back("password", base::Value(password));
    d.emplace_back("secrets", base::Value(base::Array{base::Value("alice")}));
    return base::Value(d);
  }
};

TEST_F(ContainerFiles, DocumentsIsInsideTheDevicesContainer) {
  EXPECT_EQ(sys::documentsDirectory(), device.containerPath() + "/Documents");
  EXPECT_TRUE(std::filesystem::is_directory(sys::documentsDirectory()));
  EXPECT_TRUE(sys::createDirectories(folder() + "/a/b"));
  EXPECT_TRUE(sys::createDirectories(folder() + "/a/b")) << "again is fine";
}

TEST_F(ContainerFiles, WrittenListsReadBackInBothForms) {
  sys::createDirectories(folder());
  for (sys::PlistFormat f : {sys::PlistFormat::Xml, sys::PlistFormat::Binary}) {
    ASSERT_TRUE(sys::writePropertyList(file(), settings("1234"), f));
    EXPECT_EQ(sys::readPropertyList(file()), settings("1234"));
  }
  EXPECT_EQ(sys::readPropertyList(folder() + "/missing.plist"), std::nullopt);
  EXPECT_FALSE(sys::writePropertyList(folder() + "/no/such/dir/x.plist", settings("1")));
}

TEST_F(ContainerFiles, ACrashDuringAWriteLeavesTheOldFileWhole) {
  sys::createDirectories(folder());
  ASSERT_TRUE(sys::writePropertyList(file(), settings("old")));
  device.faults().crashBeforeRename = true;
  EXPECT_FALSE(sys::writePropertyList(file(), settings("new")));
  EXPECT_EQ(sys::readPropertyList(file()), settings("old"));
  EXPECT_FALSE(device.faults().crashBeforeRename) << "the fault fires once";
  EXPECT_TRUE(sys::writePropertyList(file(), settings("new")));
  EXPECT_EQ(sys::readPropertyList(file()), settings("new"));
}

TEST_F(ContainerFiles, AReadTellsMissingFromUnreadableFromDamaged) {
  sys::createDirectories(folder());
  EXPECT_EQ(sys::readPropertyListFile(file()).status, sys::ReadStatus::Missing);
  ASSERT_TRUE(sys::writePropertyList(file(), base::Value("a string root")));
  sys::PlistFile read = sys::readPropertyListFile(file());
  EXPECT_EQ(read.status, sys::ReadStatus::Read);
  EXPECT_EQ(read.value, base::Value("a string root")) << "any root: the caller judges it";
  std::ofstream(file()) << "not a property list";
  EXPECT_EQ(sys::readPropertyListFile(file()).status, sys::ReadStatus::Damaged);
  EXPECT_EQ(sys::readPropertyListFile(folder()).status, sys::ReadStatus::Unreadable);
}

TEST_F(ContainerFiles, MovesKeepWhatIsAlreadyThere) {
  sys::createDirectories(folder());
  ASSERT_TRUE(sys::writePropertyList(file(), settings("a")));
  ASSERT_TRUE(sys::writePropertyList(folder() + "/b.plist", settings("b")));
  EXPECT_EQ(sys::moveItem(file(), folder() + "/b.plist"), sys::MoveResult::TargetExists);
  EXPECT_EQ(sys::readPropertyList(folder() + "/b.plist"), settings("b"));
  EXPECT_EQ(sys::moveItem(folder() + "/none", folder() + "/c.plist"),
            sys::MoveResult::SourceMissing);
  EXPECT_EQ(sys::moveItem(file(), folder() + "/c.plist"), sys::MoveResult::Moved);
  EXPECT_EQ(sys::readPropertyList(folder() + "/c.plist"), settings("a"));
  EXPECT_FALSE(std::filesystem::exists(file()));
}

TEST_F(ContainerFiles, AReadOnlyContainerChangesNothing) {
  sys::createDirectories(folder());
  ASSERT_TRUE(sys::writePropertyList(file(), settings("old")));
  device.faults().readOnlyContainer = true;
  std::string error;
  EXPECT_FALSE(sys::writePropertyList(file(), settings("new"), sys::PlistFormat::Xml, &error));
  EXPECT_EQ(error, file() + ": Read-only file system");
  EXPECT_EQ(sys::moveItem(file(), folder() + "/b.plist"), sys::MoveResult::Failed);
  EXPECT_FALSE(sys::createDirectories(folder() + "/sub"));
  EXPECT_EQ(sys::readPropertyList(file()), settings("old")) << "still readable";
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder()), {}), 1);
}

}  // namespace
