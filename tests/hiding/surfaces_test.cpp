// The host's own screens with the extra hooks installed: the contacts list,
// search, Moments and the forward picker leave a hidden secret out and show
// it again once revealed; a host build without any one hooked method still
// draws every screen; failing host pieces show the secret instead of breaking.
#include "sim/hostapp/surfaces.hpp"

#include <gtest/gtest.h>

#include <algorithm>

#include "core/config.hpp"
#include "hiding/session_hooks.hpp"
#include "support/host_world.hpp"

namespace {

using core::QBConfig;
using hiding::QBSessionHooks;
using Names = std::vector<std::string>;

class Surfaces : public qbtest::HostWorld {
 protected:
  void SetUp() override {
    addFriend("alice", "Alice");
    addFriend("S", "Sam");
    addFriend("bob", "Bob", "Boss");
    host.model.rooms.push_back({"team@chatroom", "Team"});
    host.model.friends[1].favourite = true;
    host.model.friends[0].favourite = true;
    for (const char* u : {"team@chatroom", "bob", "S", "alice"}) host.model.bringSessionToTop(u);
    for (const char* u : {"alice", "S", "bob"}) host.model.addMoment(u, "");
  }
  void launchHidingS() {
    launchWithLibrary();
    QBConfig::shared().addSecretUser("S");
    QBSessionHooks::refreshFilterCache();
  }
  void openAll(const std::string& search = "a") {
    process->runGuarded([&] {
      host.selectTab(1);
      host.popToRoot();
      hostapp::openSearch(host, search);
      hostapp::openMoments(host);
      hostapp::openForward(host);
    });
    ASSERT_FALSE(process->crashed()) << process->crashReason();
  }
  void reloadContacts() {
    process->runGuarded([&] { QBSessionHooks::softReloadMainFrameForce(true); });
  }
  static bool has(const Names& names, const std::string& u) {
    return std::find(names.begin(), names.end(), u) != names.end();
  }
  // Every screen, with what it shows, for messages.
  std::string everything() {
    auto join = [](const Names& n) {
      std::string out;
      for (const auto& s : n) out += " " + s;
      return out;
    };
    return "contacts:" + join(hostapp::contactsShown(host)) +
           " starred:" + join(hostapp::contactsStarred(host)) +
           " search:" + join(hostapp::searchShown()) + " moments:" + join(hostapp::momentsShown()) +
           " forward:" + join(hostapp::forwardRowShown()) +
           " candidates:" + join(hostapp::forwardCandidatesShown());
  }
  bool secretAnywhere() {
    for (const Names& n :
         {hostapp::contactsShown(host), hostapp::contactsStarred(host), hostapp::searchShown(),
          hostapp::momentsShown(), hostapp::forwardRowShown(), hostapp::forwardCandidatesShown()})
      if (has(n, "S")) return true;
    return false;
  }
};

TEST_F(Surfaces, AHiddenSecretIsOnNoScreenAndComesBackOnReveal) {
  launchHidingS();
  reloadContacts();
  openAll();
  EXPECT_EQ(hostapp::contactsShown(host), (Names{"alice", "bob"}));
  EXPECT_EQ(hostapp::contactsStarred(host), (Names{"alice"}));
  EXPECT_EQ(hostapp::contactsFooterCount(host), 2);
  EXPECT_EQ(hostapp::searchShown(), (Names{"alice"}));
  EXPECT_EQ(hostapp::momentsShown(), (Names{"bob", "alice"}));
  EXPECT_EQ(hostapp::forwardRowShown(), (Names{"alice", "bob", "team@chatroom"}));
  EXPECT_EQ(hostapp::forwardCandidatesShown(), (Names{"alice", "bob", "team@chatroom"}));

  QBConfig::shared().setUnlocked(true);
  EXPECT_EQ(hostapp::contactsShown(host), (Names{"alice", "bob"}))
      << "a shown screen keeps what it loaded";
  QBSessionHooks::refreshFilterCache();
  QBSessionHooks::revealSecretsNow();
  wait(1);
  EXPECT_EQ(hostapp::contactsShown(host), (Names{"alice", "bob", "S"}))
      << "the reveal reloads the contacts list";
  openAll();
  EXPECT_EQ(hostapp::contactsStarred(host), (Names{"alice", "S"}));
  EXPECT_EQ(hostapp::contactsFooterCount(host), 3);
  EXPECT_EQ(hostapp::searchShown(), (Names{"alice", "S"}));
  EXPECT_EQ(hostapp::momentsShown(), (Names{"bob", "S", "alice"}));
  EXPECT_EQ(hostapp::forwardRowShown(), (Names{"alice", "S", "bob", "team@chatroom"}));
}

TEST_F(Surfaces, ContactsAreSectionedByFirstLatinLetterWithHashLast) {
  addFriend("zed", "zed");
  addFriend("x1", "张三");
  addFriend("item10", "item10");
  addFriend("item2", "item2");
  launchWithLibrary();
  process->runGuarded([&] { host.selectTab(1); });
  EXPECT_EQ(hostapp::contactsShown(host),
            (Names{"alice", "bob", "item2", "item10", "S", "zed", "x1"}));
}

// Each of the twelve hooked selectors missing from the host build.
struct Missing {
  const char* cls;
  const char* sel;
};
constexpr Missing kMissing[] = {
    {"SessionSelectController", "onShouldFilterContact:"},
    {"SessionSelectView", "onFilterContactCandidate:"},
    {"SessionSelectView", "recentForwardContacts"},
    {"RecentForwardScrollView", "contactsForRecentForwardMenu"},
    {"ContactsDataLogic", "getContactsArrayWith:"},
    {"ContactsDataLogic", "getAllNormalContact"},
    {"ContactsDataLogic", "getFavourContactArray"},
    {"ContactsDataLogic",
     "fillSectionResultForOption:arrSectionKey:dicSectionTitle:dicSearchResult:"},
    {"ContactTagSearchFromContactLogic", "fillSectionResultForDicSearchResult"},
    {"FTSContactDataProvider", "getDicContacts"},
    {"WCFacade", "countOfTimelineDataItem"},
    {"WCFacade", "getTimelineDataItemOfIndex:"},
};

class SurfacesWithoutOneMethod : public Surfaces, public ::testing::WithParamInterface<Missing> {};

TEST_P(SurfacesWithoutOneMethod, EveryScreenStillDrawsAndTheSecretStaysOut) {
  Missing m = GetParam();
  host.build.lackingMethods.insert({m.cls, m.sel});
  launchHidingS();
  reloadContacts();
  openAll();
  EXPECT_EQ(countLog(std::string("[QB][stable] replace missing ") + m.cls + " " + m.sel), 1);
  for (const Missing& other : kMissing)
    if (other.sel != m.sel) {
      EXPECT_EQ(countLog(std::string("[QB][stable] replace ") + other.sel + " types="), 1)
          << other.sel;
    }
  EXPECT_FALSE(secretAnywhere()) << everything();
  EXPECT_EQ(hostapp::contactsShown(host), (Names{"alice", "bob"}));
  EXPECT_EQ(hostapp::searchShown(), (Names{"alice"}));
  std::string sel = m.sel;
  Names moments = {"bob", "alice"}, row = {"alice", "bob", "team@chatroom"};
  if (sel == "countOfTimelineDataItem") moments = {};  // the screen cannot ask
  if (sel == "getTimelineDataItemOfIndex:") moments = {"(empty row)", "(empty row)", "(empty row)"};
  if (sel == "contactsForRecentForwardMenu") row = {};
  EXPECT_EQ(hostapp::momentsShown(), moments);
  EXPECT_EQ(hostapp::forwardRowShown(), row);
}

INSTANTIATE_TEST_SUITE_P(All, SurfacesWithoutOneMethod, ::testing::ValuesIn(kMissing));

TEST_F(Surfaces, FailingUsernameProbesShowTheSecretAndEveryScreenDraws) {
  host.build.raisingMethods.insert({"CContact", "m_nsUsrName"});
  host.build.raisingMethods.insert({"WCDataItem", "username"});
  launchHidingS();
  reloadContacts();
  openAll();
  EXPECT_EQ(hostapp::contactsShown(host), (Names{"alice", "bob", "S"}));
  EXPECT_EQ(hostapp::searchShown(), (Names{"alice", "S"}));
  EXPECT_EQ(hostapp::momentsShown(), (Names{"bob", "S", "alice"}));
  EXPECT_TRUE(has(hostapp::forwardRowShown(), "S"));
}

TEST_F(Surfaces, AnImmutableContactDictionaryIsRebuiltWithoutTheSecret) {
  for (bool immutable : {false, true}) {
    SCOPED_TRACE(immutable ? "fts-immutable" : "mutable");
    host.build.variants.clear();
    if (immutable) host.build.variants.insert("fts-immutable");
    // Only the data provider's part of the search is left.
    host.build.lackingClasses.insert("ContactTagSearchFromContactLogic");
    launchHidingS();
    openAll("b");
    EXPECT_EQ(hostapp::searchShown(), (Names{"bob"}));
    openAll("s");
    EXPECT_EQ(hostapp::searchShown(), (Names{"bob"})) << "Sam and Boss match; Sam is secret";
    QBConfig::shared().setUnlocked(true);
    openAll("s");
    EXPECT_EQ(hostapp::searchShown(), (Names{"bob", "S"}));
    process.reset();
  }
}

}  // namespace
