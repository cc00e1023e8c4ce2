// The contact directory against the simulated host: lookups, names, avatars,
// the friend list, and every host piece it uses missing or raising.
#include <gtest/gtest.h>

#include <algorithm>

#include "host/contact_info.hpp"
#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/frameworks/uikit/uikit.hpp"
#include "support/host_world.hpp"

namespace {

using host::QBContactInfo;
using rt::Id;

std::vector<std::string> usernames(const std::vector<QBContactInfo::ListItem>& items) {
  std::vector<std::string> out;
  for (const auto& i : items) out.push_back(i.username);
  return out;
}

class ContactDirectory : public qbtest::HostWorld {
 protected:
  void SetUp() override {
    addFriend("alice", "Alice N", "Ally");
    addFriend("bob", "Bob");
    addFriend("wxid_zed", "", "", "zed_alias");
    addFriend("item10", "item10");
    addFriend("item2", "item2");
    addFriend("张三", "张三");
    addFriend("filehelper", "File Transfer");
    addFriend("gh_news", "News");
    host.model.rooms.push_back({"team@chatroom", "Team"});
  }
};

TEST_F(ContactDirectory, SelectableUsernames) {
  start();
  for (const char* no :
       {"", "12345@chatroom", "gh_abcdef", "filehelper", "weixin", "conversation_folder"})
    EXPECT_FALSE(QBContactInfo::isSelectableFriendUsername(std::string_view(no))) << no;
  EXPECT_TRUE(QBContactInfo::isSelectableFriendUsername(std::string_view("alice_01")));
  EXPECT_FALSE(QBContactInfo::isSelectableFriendUsername(rt::number(1)));
  EXPECT_TRUE(QBContactInfo::isSelectableFriendUsername(rt::str("alice_01")));
}

TEST_F(ContactDirectory, DisplayNamePrecedence) {
  host.build.lackingMethods.insert({"CContact", "getContactDisplayName"});
  addFriend("only_alias", "", "", "A");
  addFriend("nothing");
  addFriend("rna", "N", "R", "A");
  start();
  auto display = [](const char* u) {
    return QBContactInfo::displayNameFromContact(QBContactInfo::contactForUsername(u), u);
  };
  EXPECT_EQ(display("rna"), "R");
  EXPECT_EQ(display("only_alias"), "A");
  EXPECT_EQ(display("nothing"), "nothing");
  EXPECT_EQ(QBContactInfo::displayNameFromContact(nullptr, "x"), "x");
  EXPECT_EQ(QBContactInfo::displayNameForUsername("bob"), "Bob");
  EXPECT_EQ(QBContactInfo::displayNameForUsername("stranger"), "stranger");
}

TEST_F(ContactDirectory, APoorCacheEntryGivesWayToTheDatabase) {
  host.model.findFriend("alice")->cacheComplete = false;
  start();
  Id cached = rt::send<Id>(QBContactInfo::contactMgr(), "getContactByName:", rt::str("alice"));
  Id found = QBContactInfo::contactForUsername("alice");
  ASSERT_NE(found, nullptr);
  EXPECT_NE(found, cached) << "the database's record, not the empty cache entry";
  EXPECT_EQ(QBContactInfo::propertyString(found, host::kRemarkKeys), "Ally");
  QBContactInfo info = QBContactInfo::infoForUsername("alice");
  EXPECT_EQ(info.displayName, "Ally");
  EXPECT_EQ(info.nickname, "Alice N");
}

long gDatabaseReads = 0;
Id databaseRecord(Id, rt::SEL, Id) {
  ++gDatabaseReads;
  return rt::dictionary({{rt::str("m_nsRemark"), rt::str("from the database")}});
}

// Only a record with neither name (or one showing just the username) is read
// again from the database.
TEST_F(ContactDirectory, ARecordWithANameIsNotReadAgain) {
  addFriend("nameless");
  start();
  rt::setImplementation(
      rt::getInstanceMethod(rt::getClass("CContactMgr"), rt::sel("getContactByNameFromDB:")),
      reinterpret_cast<rt::IMP>(databaseRecord));
  gDatabaseReads = 0;
  QBContactInfo bob = QBContactInfo::infoForUsername("bob");
  EXPECT_EQ(gDatabaseReads, 0) << "a nickname is enough";
  EXPECT_EQ(bob.remark, "");
  EXPECT_EQ(bob.displayName, "Bob");
  QBContactInfo nameless = QBContactInfo::infoForUsername("nameless");
  EXPECT_GT(gDatabaseReads, 0);
  EXPECT_EQ(nameless.remark, "from the database");
  EXPECT_EQ(nameless.displayName, "from the database");
}

long gHeadImageAsks = 0;
Id countedHeadImage(Id, rt::SEL, Id, unsigned) {
  ++gHeadImageAsks;
  return nullptr;
}

// The name alone is the record's name, found without making a picture.
TEST_F(ContactDirectory, TheNameAloneIsTheRecordsNameWithoutAPicture) {
  host.model.findFriend("alice")->cacheComplete = false;
  addFriend("nameless");
  start();
  rt::setImplementation(
      rt::getInstanceMethod(rt::getClass("MMHeadImageMgr"), rt::sel("getHeadImage:withCategory:")),
      reinterpret_cast<rt::IMP>(countedHeadImage));
  const char* names[] = {"alice", "bob", "wxid_zed", "张三", "nameless", "stranger"};
  gHeadImageAsks = 0;
  for (const char* u : names) QBContactInfo::displayNameForUsername(u);
  EXPECT_EQ(gHeadImageAsks, 0);
  for (const char* u : names)
    EXPECT_EQ(QBContactInfo::displayNameForUsername(u),
              QBContactInfo::infoForUsername(u).displayName)
        << u;
  EXPECT_GT(gHeadImageAsks, 0) << "the full record does ask";
  EXPECT_EQ(QBContactInfo::displayNameForUsername("alice"), "Ally");
  EXPECT_EQ(QBContactInfo::displayNameForUsername("wxid_zed"), "zed_alias");
}

Id emptyDatabaseRecord(Id, rt::SEL, Id) { return rt::dictionary({}); }
Id emptyList(Id, rt::SEL, unsigned, unsigned, bool) { return rt::array({}); }

// A poor entry is read again from the database for the record and the
// picker's list alike. The record keeps a name the database cannot better;
// the list names the row as the database's record does, whatever it says.
TEST_F(ContactDirectory, TheListTakesTheDatabasesNameTheRecordOnlyABetterOne) {
  addFriend("nameless");
  start();
  rt::Method fromDB =
      rt::getInstanceMethod(rt::getClass("CContactMgr"), rt::sel("getContactByNameFromDB:"));
  auto listed = [](const std::string& username) {
    for (const auto& item : QBContactInfo::listNormalContactItems())
      if (item.username == username) return item;
    return QBContactInfo::ListItem{};
  };
  rt::setImplementation(fromDB, reinterpret_cast<rt::IMP>(databaseRecord));
  EXPECT_EQ(listed("nameless").remark, "from the database");
  EXPECT_EQ(listed("nameless").displayName, "from the database");
  // A nickname that is just the username is no name: the database is asked.
  EXPECT_EQ(listed("item2").remark, "from the database");
  EXPECT_EQ(listed("item2").nickname, "item2");
  EXPECT_EQ(QBContactInfo::infoForUsername("item2").remark, "from the database");
  rt::setImplementation(fromDB, reinterpret_cast<rt::IMP>(emptyDatabaseRecord));
  EXPECT_EQ(QBContactInfo::infoForUsername("wxid_zed").displayName, "zed_alias");
  EXPECT_EQ(listed("wxid_zed").displayName, "wxid_zed");
  EXPECT_EQ(listed("nameless").displayName, "nameless");
}

TEST_F(ContactDirectory, AvatarsAndThePlaceholder) {
  host.model.findFriend("alice")->headImage = true;
  host.model.findFriend("bob")->oldHeadImage = true;
  start();
  Id a = QBContactInfo::infoForUsername("alice").avatar;
  EXPECT_EQ(sim::imageState(a)->drawing, (std::vector<std::string>{"head image of alice"}));
  Id b = QBContactInfo::infoForUsername("bob").avatar;
  EXPECT_EQ(sim::imageState(b)->source.rfind("file:", 0), 0u) << sim::imageState(b)->source;
  Id z = QBContactInfo::infoForUsername("wxid_zed").avatar;
  const sim::ImageState& p = *sim::imageState(z);
  EXPECT_EQ(p.size, (rt::CGSize{80, 80}));
  EXPECT_TRUE(p.opaque);
  ASSERT_EQ(p.drawing.size(), 2u);
  EXPECT_EQ(p.drawing[0], "fill 0,0 80x80 radius 0 rgba(0.75,0.78,0.82,1)");
  EXPECT_EQ(p.drawing[1].rfind("text \"Z\" at ", 0), 0u)
      << p.drawing[1] << " (display name zed_alias)";
  EXPECT_NE(p.drawing[1].find("system 36 medium rgba(1,1,1,1)"), std::string::npos);
  EXPECT_EQ(
      sim::imageState(QBContactInfo::placeholderAvatar(""))->drawing[1].rfind("text \"?\"", 0), 0u);
  EXPECT_EQ(sim::imageState(QBContactInfo::avatarForUsername("", nullptr))
                ->drawing[1]
                .rfind("text \"?\"", 0),
            0u);
  EXPECT_EQ(
      sim::imageState(QBContactInfo::placeholderAvatar("ñandu"))->drawing[1].rfind("text \"Ñ\"", 0),
      0u);
}

TEST_F(ContactDirectory, SelfAndTheFriendList) {
  start();
  EXPECT_EQ(QBContactInfo::selfUsername(), "wxid_me");
  std::vector<QBContactInfo::ListItem> items = QBContactInfo::listNormalContactItems();
  // Sorted by display name in the zh locale: Han by pinyin first, then Latin, digits by value.
  EXPECT_EQ(usernames(items),
            (std::vector<std::string>{"张三", "alice", "bob", "item2", "item10", "wxid_zed"}));
  auto alice =
      std::find_if(items.begin(), items.end(), [](const auto& i) { return i.username == "alice"; });
  EXPECT_EQ(*alice, (QBContactInfo::ListItem{"alice", "Ally", "Alice N", "Ally"}));
}

std::vector<unsigned> gTypesAsked;
rt::IMP gHostList = nullptr;
Id recordingList(Id self, rt::SEL cmd, unsigned list, unsigned type, bool loadExt) {
  gTypesAsked.push_back(type);
  return rt::call<Id>(gHostList, self, cmd, list, type, loadExt);
}
Id recordingShortList(Id self, rt::SEL cmd, unsigned list, unsigned type) {
  gTypesAsked.push_back(type);
  return rt::call<Id>(gHostList, self, cmd, list, type);
}

// The contact types are asked in their order up to the first that lists
// anyone: a host that keeps its contacts under type 3 is asked for 1, -1 and
// 3, and no more, through either list selector.
TEST_F(ContactDirectory, ContactTypesAreWalkedInOrderUpToTheFirstNonEmptyList) {
  host.build.variants.insert("contacts-type-3");
  host.build.lackingClasses.insert("ContactsDataLogic");  // no other source stands in
  start();
  rt::Class mgr = rt::getClass("CContactMgr");
  rt::Method full = rt::getInstanceMethod(mgr, rt::sel("getContactList:contactType:needLoadExt:"));
  rt::Method shortForm = rt::getInstanceMethod(mgr, rt::sel("getContactList:contactType:"));
  gHostList = rt::methodImplementation(full);
  rt::setImplementation(full, reinterpret_cast<rt::IMP>(recordingList));
  gTypesAsked.clear();
  EXPECT_EQ(usernames(QBContactInfo::listNormalContactItems()).size(), 6u);
  EXPECT_EQ(gTypesAsked, (std::vector<unsigned>{1, 0xFFFFFFFFu, 3}));
  // Without a list under the full selector, the short one is walked alike.
  rt::setImplementation(full, reinterpret_cast<rt::IMP>(emptyList));
  gHostList = rt::methodImplementation(shortForm);
  rt::setImplementation(shortForm, reinterpret_cast<rt::IMP>(recordingShortList));
  gTypesAsked.clear();
  EXPECT_EQ(usernames(QBContactInfo::listNormalContactItems()).size(), 6u);
  EXPECT_EQ(gTypesAsked, (std::vector<unsigned>{1, 0xFFFFFFFFu, 3}));
}

TEST_F(ContactDirectory, FriendsFromBothDataLogicListsAppearOnce) {
  host.model.findFriend("bob")->favourite = true;
  host.build.lackingMethods.insert({"CContactMgr", "getContactList:contactType:needLoadExt:"});
  host.build.lackingMethods.insert({"CContactMgr", "getContactList:contactType:"});
  start();
  std::vector<std::string> names = usernames(QBContactInfo::listNormalContactItems());
  EXPECT_EQ(std::count(names.begin(), names.end(), "bob"), 1);
  EXPECT_EQ(names.size(), 6u);
}

// Every host piece the directory uses, each missing and each raising: the
// operations still answer with their documented fallbacks and nothing escapes.
struct Piece {
  const char* cls;
  const char* sel;  // nullptr: the whole class
};
const Piece kPieces[] = {
    {"CContactMgr", nullptr},
    {"CContactMgr", "getContactByName:"},
    {"CContactMgr", "getContactByNameFromCache:"},
    {"CContactMgr", "getContactByNameFromDB:"},
    {"CContactMgr", "getSelfContact"},
    {"CContactMgr", "getSelfUserName"},
    {"CContactMgr", "getContactList:contactType:needLoadExt:"},
    {"CContactMgr", "getContactList:contactType:"},
    {"CContactMgr", "getAllContactUserName"},
    {"MMHeadImageMgr", nullptr},
    {"MMHeadImageMgr", "getHeadImage:withCategory:"},
    {"MMHeadImageMgr", "getOriginalHeadImage:withCategory:"},
    {"MMHeadImageMgr", "getHeadImgPathForOldVersion:isHD:"},
    {"ContactsDataLogic", nullptr},
    {"ContactsDataLogic", "initWithScene:delegate:sort:"},
    {"ContactsDataLogic", "reloadContacts"},
    {"ContactsDataLogic", "getAllNormalContact"},
    {"ContactsDataLogic", "getFavourContactArray"},
    {"CContact", "getContactDisplayName"},
    {"CContact", "getContactHeadImage"},
    {"CContact", "getContactHeadImage:"},
    {"MMServiceCenter", "getService:"},
    {"MMContext", "serviceCenter"},
};

const std::vector<std::string> kDocumentedLines = {
    "[QB] contactForUsername ex: ", "[QB] headMgr ex: ", "[QB] contactInfo ex: ",
    "[QB] CContactMgr list ex: ", "[QB] ContactsDataLogic list ex: ", "[QB][stable] serviceNamed ",
    "[QB][stable] serviceCenter ex: ", "[QB][stable] mmContext ex: ",
    // the other steps, in the one short form
    "[QB] QBContactInfo ", "[QB][stable] QBRuntime "};

class ContactDirectoryFaults : public ContactDirectory,
                               public ::testing::WithParamInterface<std::tuple<Piece, bool>> {};

TEST_P(ContactDirectoryFaults, OperationsFallBackAndNeverThrow) {
  auto [piece, raises] = GetParam();
  host.model.findFriend("alice")->headImage = true;
  host.model.findFriend("bob")->oldHeadImage = true;
  if (raises && piece.sel)
    host.build.raisingMethods.insert({piece.cls, piece.sel});
  else if (piece.sel)
    host.build.lackingMethods.insert({piece.cls, piece.sel});
  else if (!raises)
    host.build.lackingClasses.insert(piece.cls);
  else
    GTEST_SKIP() << "a whole class cannot raise";
  start();
  QBContactInfo alice, stranger;
  std::vector<QBContactInfo::ListItem> items;
  std::string me;
  ASSERT_NO_THROW({
    alice = QBContactInfo::infoForUsername("alice");
    stranger = QBContactInfo::infoForUsername("stranger");
    items = QBContactInfo::listNormalContactItems();
    me = QBContactInfo::selfUsername();
    QBContactInfo::contactForUsername("bob");
    QBContactInfo::avatarForUsername("bob", nullptr);
  });
  EXPECT_EQ(alice.username, "alice");
  EXPECT_FALSE(alice.displayName.empty());
  EXPECT_EQ(QBContactInfo::displayNameForUsername("alice"), alice.displayName);
  EXPECT_EQ(QBContactInfo::displayNameForUsername("stranger"), "stranger");
  ASSERT_NE(alice.avatar, nullptr) << "an avatar is never missing";
  EXPECT_EQ(stranger.displayName, "stranger");
  EXPECT_NE(stranger.avatar, nullptr);
  for (const auto& i : items) {
    EXPECT_TRUE(QBContactInfo::isSelectableFriendUsername(std::string_view(i.username)))
        << i.username;
    // Self is excluded when it is known; a raising self lookup ends the search
    // with nothing (deliberately), and then self cannot be told apart.
    if (!me.empty()) {
      EXPECT_NE(i.username, "wxid_me");
    }
    EXPECT_FALSE(i.displayName.empty());
  }
  EXPECT_TRUE(me.empty() || me == "wxid_me");
  for (const std::string& line : logLines()) {
    bool documented = std::any_of(kDocumentedLines.begin(), kDocumentedLines.end(),
                                  [&](const std::string& p) { return line.rfind(p, 0) == 0; });
    EXPECT_TRUE(documented) << "undocumented log line: " << line;
  }
}

std::string pieceName(const ::testing::TestParamInfo<std::tuple<Piece, bool>>& info) {
  auto [piece, raises] = info.param;
  std::string s = std::string(piece.cls) + "_" + (piece.sel ? piece.sel : "class") +
                  (raises ? "_raises" : "_missing");
  for (char& c : s)
    if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
  return s;
}

INSTANTIATE_TEST_SUITE_P(EveryPiece, ContactDirectoryFaults,
                         ::testing::Combine(::testing::ValuesIn(kPieces), ::testing::Bool()),
                         pieceName);

TEST_F(ContactDirectory, SpecificFallBacks) {
  host.build.raisingMethods.insert({"CContactMgr", "getContactList:contactType:needLoadExt:"});
  start();
  std::vector<std::string> names = usernames(QBContactInfo::listNormalContactItems());
  EXPECT_EQ(names.size(), 6u) << "the data logic's lists stand in";
  std::vector<std::string> log = logLines();
  EXPECT_TRUE(std::any_of(log.begin(), log.end(), [](const std::string& l) {
    return l.rfind("[QB] CContactMgr list ex: ", 0) == 0;
  }));
}

TEST_F(ContactDirectory, ALookupThatRaisesKeepsWhatItHad) {
  host.model.findFriend("alice")->cacheComplete = false;
  host.build.raisingMethods.insert({"CContactMgr", "getContactByNameFromDB:"});
  start();
  Id found = QBContactInfo::contactForUsername("alice");
  ASSERT_NE(found, nullptr) << "the poor cache entry kept as the fallback";
  EXPECT_EQ(logLines().front().rfind("[QB] contactForUsername ex: ", 0), 0u);
  QBContactInfo info = QBContactInfo::infoForUsername("alice");
  EXPECT_EQ(info.displayName, "alice") << "the database re-read raised: the username stands";
}

}  // namespace
