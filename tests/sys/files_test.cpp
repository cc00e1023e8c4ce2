// The container's files through the facade: the Documents folder, property
// lists written atomically and read in either form.
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

TEST_F(ContainerFiles, ADamagedFileReadsAsNothing) {
  sys::createDirectories(folder());
  ASSERT_TRUE(sys::writePropertyList(file(), settings("x"), sys::PlistFormat::Binary));
  std::filesystem::resize_file(file(), std::filesystem::file_size(file()) / 2);
  EXPECT_EQ(sys::readPropertyList(file()), std::nullopt);
  std::ofstream(file()) << "not a property list";
  EXPECT_EQ(sys::readPropertyList(file()), std::nullopt);
}

}  // namespace
