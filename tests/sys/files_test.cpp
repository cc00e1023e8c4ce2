// The container's files through the facade: the Documents folder, property
// lists written atomically and read in either form.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "sim/plist_codec.hpp"
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

TEST(PlistCodec, TextThatIsNotUtf8IsNotAPropertyList) {
  std::string xml = sim::encodePlist(
      base::Value(base::Dictionary{{"password", base::Value("alice")}}), sys::PlistFormat::Xml);
  ASSERT_TRUE(sim::decodePlist(xml));
  std::string broken = xml;
  broken[broken.find("alice")] = '\xff';
  EXPECT_EQ(sim::decodePlist(broken), std::nullopt) << "Foundation refuses it; so do we";
}

TEST(PlistCodec, AStringWithANulInsideDoesNotCrashTheReader) {
  // A binary list whose string holds "a\0b" (as a damaged or hostile file can).
  const unsigned char bytes[] = {'b',  'p',  'l',  'i', 's', 't', '0', '0', 0xd1, 0x01, 0x02, 0x58,
                                 'p',  'a',  's',  's', 'w', 'o', 'r', 'd', 0x53, 'a',  0x00, 'b',
                                 0x08, 0x0b, 0x14, 0,   0,   0,   0,   0,   0,    1,    1,    0,
                                 0,    0,    0,    0,   0,   0,   3,   0,   0,    0,    0,    0,
                                 0,    0,    0,    0,   0,   0,   0,   0,   0,    0,    0x18};
  auto v = sim::decodePlist(std::string_view(reinterpret_cast<const char*>(bytes), sizeof bytes));
  ASSERT_TRUE(v);
  ASSERT_TRUE(v->find("password"));
  EXPECT_EQ(*v->find("password")->asString(), std::string("a\0b", 3));
}

TEST(PlistCodec, DamagedBinaryListsAreRefusedNotFollowed) {
  std::string good = sim::encodePlist(
      base::Value(base::Dictionary{
          {"secrets", base::Value(base::Array{base::Value("a"), base::Value("密友")})}}),
      sys::PlistFormat::Binary);
  ASSERT_TRUE(sim::decodePlist(good));
  for (std::size_t cut = 0; cut < good.size(); ++cut)
    EXPECT_EQ(sim::decodePlist(good.substr(0, cut)), std::nullopt) << cut;
  std::string selfReference = good;
  // Point the array's first element at the top object: a cycle.
  std::size_t arrayAt = selfReference.find('\xA2');
  ASSERT_NE(arrayAt, std::string::npos);
  selfReference[arrayAt + 1] = 0;
  EXPECT_EQ(sim::decodePlist(selfReference), std::nullopt);
}

TEST(PlistCodec, EveryTypeRoundTripsInBothForms) {
  base::Value v(base::Dictionary{
      {"b", base::Value(true)},
      {"i", base::Value(-42)},
      {"big", base::Value(9223372036854775807LL)},
      {"r", base::Value(0.25)},
      {"s", base::Value("密友 ✓")},
      {"d", base::Value(base::Data{0, 1, 255})},
      {"t", base::Value(base::Date{817128000})},
      {"a", base::Value(base::Array{base::Value(1), base::Value(base::Array{}),
                                    base::Value(base::Dictionary{})})},
  });
  for (sys::PlistFormat f : {sys::PlistFormat::Xml, sys::PlistFormat::Binary})
    EXPECT_EQ(sim::decodePlist(sim::encodePlist(v, f)), v);
  base::Value withNull(base::Array{base::Value(1), base::Value(), base::Value(2)});
  EXPECT_EQ(sim::decodePlist(sim::encodePlist(withNull, sys::PlistFormat::Binary)),
            base::Value(base::Array{base::Value(1), base::Value(2)}))
      << "property lists have no null";
}

}  // namespace
