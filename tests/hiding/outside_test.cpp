// The records left with the system outside the app: the matching rules, the
// donation and index filters, and the clean-up when a contact becomes secret.
#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <random>

#include "core/config.hpp"
#include "hiding/outside_hooks.hpp"
#include "hiding/outside_match.hpp"
#include "hiding/session_hooks.hpp"
#include "rt/foundation.hpp"
#include "rt/send.hpp"
#include "sim/frameworks/user_notifications.hpp"
#include "support/host_world.hpp"
#include "sys/files.hpp"

namespace {

using hiding::ItemFields;
using hiding::namesUsername;
using rt::Id;

TEST(OutsideMatch, AnIdentifierNamesAUsernameOnlyBetweenNonUsernameCharacters) {
  struct Case {
    const char* identifier;
    const char* username;
    bool names;
  };
  for (Case c :
       {Case{"bob", "bob", true}, Case{"msg.session.bob", "bob", true},
        Case{"wx:bob/1", "bob", true}, Case{"bobby", "bob", false}, Case{"x_bob", "bob", false},
        Case{"bob-2", "bob", false}, Case{"team@chatroom", "team", false},
        Case{"s.team@chatroom", "team@chatroom", true}, Case{"bobby.bob", "bob", true},
        Case{"", "bob", false}, Case{"bob", "", false}})
    EXPECT_EQ(namesUsername(c.identifier, c.username), c.names)
        << c.identifier << " / " << c.username;
}

TEST(OutsideMatch, ItemsByIdentifierKeywordOrExactDisplayName) {
  hiding::SecretName bob{"bob", "Bob"};
  ItemFields plain{"chat.alice", "chats", "Alice", "", "", {}};
  EXPECT_FALSE(hiding::itemNames(plain, bob));
  ItemFields byId = plain, byDomain = plain, byKeyword = plain, byTitle = plain, byName = plain,
             partial = plain;
  byId.uniqueIdentifier = "chat.bob";
  byDomain.domainIdentifier = "chats.bob";
  byKeyword.keywords = {"x", "bob"};
  byTitle.title = "Bob";
  byName.displayName = "Bob";
  partial.title = "Bob (work)";
  for (const ItemFields& f : {byId, byDomain, byKeyword, byTitle, byName})
    EXPECT_TRUE(hiding::itemNames(f, bob)) << f.uniqueIdentifier << " " << f.title;
  EXPECT_FALSE(hiding::itemNames(partial, bob)) << "a display name among other words is not caught";
  EXPECT_FALSE(hiding::itemNames(byTitle, {"bob", ""})) << "no display name, no title match";
}

// The prepared set reads every field, as asking each secret in turn does: an
// item naming the secret in one field alone is caught by either.
TEST(OutsideMatch, ThePreparedSetReadsEveryFieldOfAnItem) {
  hiding::SecretName bob{"bob", "Bob"};
  hiding::SecretMatcher matcher({{"alice_w", "Alice"}, bob});
  ItemFields plain{"chat.carol", "chats", "Carol", "", "note about carol", {"carol"}};
  EXPECT_FALSE(matcher.itemNamesAny(plain));
  ItemFields byKeyword = plain, byDescription = plain, byId = plain, byDomain = plain,
             byTitle = plain, byName = plain;
  byKeyword.keywords = {"carol", "bob"};
  byDescription.description = "lunch with bob";
  byId.uniqueIdentifier = "chat/bob";
  byDomain.domainIdentifier = "chats.bob";
  byTitle.title = "Bob";
  byName.displayName = "Bob";
  for (const ItemFields* f : {&byKeyword, &byDescription, &byId, &byDomain, &byTitle, &byName}) {
    EXPECT_TRUE(matcher.itemNamesAny(*f)) << f - &byKeyword;
    EXPECT_TRUE(hiding::itemNames(*f, bob)) << f - &byKeyword;
  }
}

// The prepared set answers exactly as asking every secret in turn, on records
// built from the secrets' own pieces, other names' and separators.
TEST(OutsideMatch, ThePreparedSetAnswersAsEverySecretAskedInTurn) {
  std::vector<hiding::SecretName> secrets{
      {"bob", "Bob"}, {"team@chatroom", "Team"}, {"wxid_7", ""}, {"a.b", "A B"}, {"x y", "XY"}};
  hiding::SecretMatcher matcher(secrets);
  const char* pieces[] = {"bob", "bobby", "team", "@chatroom", "wxid_7", "a.b", "a",
                          "b",   "x y",   "x",    "y",         ".",      "/",   ":",
                          "-",   "_",     "Bob",  "Team",      "A B",    " "};
  std::mt19937 rng(7);
  for (int round = 0; round < 20000; ++round) {
    std::string text;
    for (int n = int(rng() % 5); n >= 0; --n) text += pieces[rng() % std::size(pieces)];
    ItemFields item;
    (round % 3 == 0   ? item.uniqueIdentifier
     : round % 3 == 1 ? item.title
                      : item.displayName) = text;
    bool any = false, anyItem = false;
    for (const auto& s : secrets) {
      any = any || namesUsername(text, s.username);
      anyItem = anyItem || hiding::itemNames(item, s);
    }
    ASSERT_EQ(matcher.identifierNamesAny(text), any) << '"' << text << '"';
    ASSERT_EQ(matcher.itemNamesAny(item), anyItem) << '"' << text << '"';
  }
}

class Outside : public qbtest::HostWorld {
 protected:
  void SetUp() override {
    addFriend("alice", "Alice");
    addFriend("bob", "Bob");
    addFriend("carol", "Carol");
    host.model.sessions = {"alice", "bob", "carol"};
  }
  core::QBConfig& config() { return core::QBConfig::shared(); }
  void makeSecret(const std::string& u) {
    process->runGuarded([&] {
      config().addSecretUser(u);
      hiding::QBSessionHooks::refreshFilterCache();
    });
    process->runDue();
  }
  void run(const std::function<void()>& f) {
    process->runGuarded(f);
    process->runDue();
  }
  std::vector<std::string> groups() {
    std::vector<std::string> g;
    for (const auto& d : device.records().donations()) g.push_back(d.groupIdentifier);
    return g;
  }
  std::vector<std::string> itemIds() {
    std::vector<std::string> ids;
    for (const auto& i : device.records().items()) ids.push_back(i.uniqueIdentifier);
    return ids;
  }
};

// A secret's donation is kept from the system but answered as a success,
// later and off the main thread, as the system answers.
TEST_F(Outside, ASecretsDonationIsDroppedAndItsCompletionSucceedsLater) {
  launchWithLibrary();
  makeSecret("bob");
  std::atomic<int> calls{0};
  std::atomic<bool> onMain{true};
  Id error = rt::str("not called");
  run([&] { host.donateMessage("alice", "hi", true); });
  run([&] {
    host.donateMessage("bob", "hi", true);   // bob as a recipient's custom identifier
    host.donateMessage("bob", "hi", false);  // bob as the sender's handle
    Id interaction = rt::send<Id>(
        rt::send<Id>(rt::getClass("INInteraction"), "alloc"),
        "initWithIntent:response:", rt::send<Id>(rt::getClass("INSendMessageIntent"), "new"),
        Id{nullptr});
    EXPECT_FALSE(hiding::QBOutsideHooks::donationNamesSecret(interaction));
  });
  EXPECT_EQ(groups(), std::vector<std::string>{"alice"});
  // The completion: not on the donating stack, later, off the main thread, without an error.
  Id intent = rt::send<Id>(
      rt::send<Id>(rt::getClass("INSendMessageIntent"), "alloc"),
      "initWithRecipients:outgoingMessageType:content:speakableGroupName:conversationIdentifier:"
      "serviceName:sender:attachments:",
      Id{nullptr}, 1L, Id{nullptr}, Id{nullptr}, rt::str("msg:bob"), Id{nullptr}, Id{nullptr},
      Id{nullptr});
  Id interaction = rt::send<Id>(rt::send<Id>(rt::getClass("INInteraction"), "alloc"),
                                "initWithIntent:response:", intent, Id{nullptr});
  process->runGuarded([&] {
    rt::send<void>(interaction,
                   "donateInteractionWithCompletion:", sim::makeCompletionBlock([&](Id e) {
                     ++calls;
                     error = e;
                     onMain = sys::isMainThread();
                   }));
  });
  EXPECT_EQ(calls, 0);
  process->runDue();
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(error, nullptr);
  EXPECT_FALSE(onMain);
  EXPECT_EQ(groups(), std::vector<std::string>{"alice"});
}

TEST_F(Outside, AContactMadeSecretLosesOnlyItsOwnGroupsWhenTheyAreKnown) {
  launchWithLibrary();
  run([&] {
    host.donateMessage("alice", "a", true);
    host.donateMessage("bob", "b", false);
    host.donateMessage("carol", "c", true);
  });
  makeSecret("bob");
  EXPECT_EQ(groups(), (std::vector<std::string>{"carol", "alice"}));
  EXPECT_EQ(countLog("[QB] outside records cleaned for 1 new secret(s)"), 1);
}

TEST_F(Outside, UnknownDonationsAreDeletedAllAtOnce) {
  launchWithLibrary();
  run([&] { host.donateMessage("alice", "a", true); });
  makeSecret("bob");  // nothing of bob's was seen: everything goes
  EXPECT_TRUE(groups().empty());
  // A donation without a group makes every later clean-up a full one too.
  run([&] {
    host.donateMessage("alice", "a", true);
    host.donateMessage("carol", "c", true);
    Id interaction = rt::send<Id>(
        rt::send<Id>(rt::getClass("INInteraction"), "alloc"),
        "initWithIntent:response:", rt::send<Id>(rt::getClass("INSendMessageIntent"), "new"),
        Id{nullptr});
    rt::send<void>(interaction, "donateInteractionWithCompletion:", Id{nullptr});
  });
  makeSecret("carol");
  EXPECT_TRUE(groups().empty());
}

TEST_F(Outside, SearchItemsByIdentifierThenDomainThenEverything) {
  launchWithLibrary();
  EXPECT_EQ(itemIds(), (std::vector<std::string>{"msg.session.alice", "msg.session.bob",
                                                 "msg.session.carol"}));
  makeSecret("bob");  // seen at launch: by identifier
  EXPECT_EQ(itemIds(), (std::vector<std::string>{"msg.session.alice", "msg.session.carol"}));
  makeSecret("dave");  // never seen: the host's domain goes
  EXPECT_TRUE(itemIds().empty());
  // No domain seen since: everything of the app's.
  device.records().index({{"other", "", "Other", "", "", {}}});
  makeSecret("erin");
  EXPECT_TRUE(itemIds().empty());
}

TEST_F(Outside, IndexedItemsThatNameASecretNeverReachTheIndex) {
  launchWithLibrary();
  makeSecret("carol");
  run([&] {
    Id same = rt::array({});
    EXPECT_EQ(hiding::QBOutsideHooks::itemsWithoutSecrets(same), same);
  });
  host.model.sessions.push_back("carol2");
  host.model.friends.push_back({"carol2", "Carol", "", ""});  // another contact of the same name
  host.model.sessions.push_back("dave");
  run([&] { host.sessionsChanged(); });
  EXPECT_EQ(itemIds(),
            (std::vector<std::string>{"msg.session.alice", "msg.session.bob", "msg.session.dave"}));
}

Id searchableItem(const char* id, const char* title, const char* description,
                  std::vector<Id> keywords) {
  Id attributes = rt::send<Id>(rt::send<Id>(rt::getClass("CSSearchableItemAttributeSet"), "alloc"),
                               "initWithItemContentType:", rt::str("public.text"));
  rt::send<void>(attributes, "setTitle:", rt::str(title));
  rt::send<void>(attributes, "setContentDescription:", rt::str(description));
  rt::send<void>(attributes, "setKeywords:", rt::array(keywords));
  return rt::send<Id>(rt::send<Id>(rt::getClass("CSSearchableItem"), "alloc"),
                      "initWithUniqueIdentifier:domainIdentifier:attributeSet:", rt::str(id),
                      rt::str("notes"), attributes);
}

// An item that names the secret only in its keywords, or only in its
// description, is kept out of the index like any other.
TEST_F(Outside, AnItemNamingASecretInOneFieldAloneIsKeptOut) {
  launchWithLibrary();
  makeSecret("carol");
  run([&] {
    Id plain = searchableItem("note.1", "Groceries", "milk", {rt::str("shopping")});
    Id byKeyword = searchableItem("note.2", "Lunch", "at noon", {rt::str("carol")});
    Id byDescription = searchableItem("note.3", "Dinner", "with carol", {rt::str("food")});
    Id kept =
        hiding::QBOutsideHooks::itemsWithoutSecrets(rt::array({plain, byKeyword, byDescription}));
    EXPECT_EQ(rt::elements(kept), (std::vector<Id>{plain}));
  });
}

// The index filter matches a title by the secret's name as the host shows it:
// a contact the host had not loaded when it became secret is looked up again
// at the next refresh, and one that had no name yet at the next change of the
// set. A refresh that only locks looks up neither again once known.
TEST_F(Outside, ASecretsNameIsLearnedOnceItsContactIsKnown) {
  launchWithLibrary();
  auto keptTitled = [&](const char* title) {
    bool kept = false;
    run([&] {
      Id item = searchableItem("note.x", title, "", {});
      kept = !rt::elements(hiding::QBOutsideHooks::itemsWithoutSecrets(rt::array({item}))).empty();
    });
    return kept;
  };
  auto lockOnly = [&] { run([] { hiding::QBSessionHooks::refreshFilterCache(); }); };
  addFriend("erin");  // known, but nothing to show but the username
  makeSecret("erin");
  makeSecret("dave");  // no contact yet
  EXPECT_TRUE(keptTitled("Dave"));
  host.model.findFriend("erin")->nickname = "Erin";
  lockOnly();
  EXPECT_TRUE(keptTitled("Erin")) << "a known contact is not looked up at every refresh";
  addFriend("dave", "Dave");
  lockOnly();
  EXPECT_FALSE(keptTitled("Dave")) << "an unknown contact is looked up again at a refresh";
  EXPECT_TRUE(keptTitled("Erin"));
  makeSecret("bob");
  EXPECT_FALSE(keptTitled("Erin")) << "a change of the set looks up the names again";
  EXPECT_FALSE(keptTitled("Dave"));
}

// A contact made secret while the library was not running is cleaned at the
// next start; a damaged record of what was cleaned means everything once.
TEST_F(Outside, TheNextStartCleansWhatChangedWhileNotRunning) {
  launchWithLibrary();
  run([&] { host.donateMessage("alice", "a", true); });
  process.reset();
  {
    sim::Process scratch(device);
    core::QBConfig::shared().addSecretUser("alice");
  }
  launchWithLibrary();
  EXPECT_TRUE(groups().empty());
  EXPECT_EQ(itemIds(), (std::vector<std::string>{"msg.session.bob", "msg.session.carol"}));
}

TEST_F(Outside, ADamagedRecordOfWhatWasCleanedCleansEverythingOnce) {
  launchWithLibrary();
  makeSecret("bob");
  run([&] { host.donateMessage("alice", "a", true); });
  std::string path = device.documentsPath() + hiding::kOutsideFile;
  process.reset();
  { std::ofstream(path) << "not a plist"; }
  launchWithLibrary();
  EXPECT_TRUE(groups().empty());
  run([&] { host.donateMessage("alice", "a", true); });
  process.reset();
  launchWithLibrary();
  EXPECT_EQ(groups(), std::vector<std::string>{"alice"}) << "cleaned once, not at every start";
}

}  // namespace
