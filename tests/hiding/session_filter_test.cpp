// The main-list filter: unchanged answers when nothing is hidden, row
// remapping and counts, the count cache, re-entrancy, canShowInMainFrame:,
// listing, and failing host getters.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "core/config.hpp"
#include "hiding/session_hooks.hpp"
#include "host/runtime_toolkit.hpp"
#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "support/host_world.hpp"

namespace {

using core::QBConfig;
using hiding::QBSessionHooks;
using rt::Id;

std::string nameOf(Id session) { return host::QBRuntime::usernameFrom(session); }

class SessionFilter : public qbtest::HostWorld {
 protected:
  void SetUp() override {
    for (const char* u : {"a", "S", "b"}) addFriend(u);
    host.model.sessions = {"a", "S", "b"};
  }
  // The host built its list before S became secret, so S is in it.
  void hideS() {
    QBConfig::shared().addSecretUser("S");
    QBSessionHooks::refreshFilterCache();
  }
  Id logic() { return rt::send<Id>(rt::getClass("MainFrameLogicController"), "new"); }
  Id frame() { return host.mainFrame(); }
  long count(Id obj, const char* sel, long section = 0) {
    return rt::send<long>(obj, sel, section);
  }
  Id row(Id obj, const char* sel, long r, long section = 0) {
    return rt::send<Id>(obj, sel, rt::indexPath(r, section));
  }
};

TEST_F(SessionFilter, NothingHiddenMeansTheHostsOwnAnswers) {
  launchWithLibrary();
  Id l = logic();
  Id mgrSessionS =
      rt::elements(rt::send<Id>(QBSessionHooks::mainSessionMgr(), "normalSessions"))[1];
  EXPECT_EQ(count(l, "getSessionCountForSection:"), 3);
  EXPECT_EQ(row(l, "getSessionInfoAtIndexPath:", 1), mgrSessionS) << "the same object";
  QBConfig::shared().addSecretUser("S");
  QBConfig::shared().setUnlocked(true);
  QBSessionHooks::refreshFilterCache();
  EXPECT_FALSE(QBSessionHooks::filterActive());
  EXPECT_EQ(count(frame(), "logicGetCountForSection:"), 3);
  EXPECT_EQ(row(frame(), "logicGetSessionAtIndexPath:", 1), mgrSessionS);
  EXPECT_EQ(
      rt::send<long>(frame(), "tableView:numberOfRowsInSection:", static_cast<Id>(nullptr), 0L), 3);
  EXPECT_TRUE(rt::send<bool>(rt::getClass("MainSessionMgr"), "canShowInMainFrame:", rt::str("S")));
}

// A logic controller without the session getter: its cell data walks the
// host's rows with its own original.
TEST_F(SessionFilter, CellDataWalksWithItsOwnOriginalWithoutTheSessionGetter) {
  host.build.lackingMethods.insert({"MainFrameLogicController", "getSessionInfoAtIndexPath:"});
  launchWithLibrary();
  hideS();
  Id l = logic();
  EXPECT_EQ(nameOf(row(l, "getCellDataAtIndexPath:", 0)), "a");
  EXPECT_EQ(nameOf(row(l, "getCellDataAtIndexPath:", 1)), "b") << "visible row 1 is host row 2";
  EXPECT_EQ(row(l, "getCellDataAtIndexPath:", 2), nullptr);
  EXPECT_EQ(countLog(" ex: "), 0);
}

TEST_F(SessionFilter, SecretRowsAreSkippedAndRowsRemapped) {
  launchWithLibrary();
  hideS();
  Id l = logic();
  EXPECT_EQ(count(l, "getSessionCountForSection:"), 2);
  EXPECT_EQ(nameOf(row(l, "getSessionInfoAtIndexPath:", 0)), "a");
  EXPECT_EQ(nameOf(row(l, "getSessionInfoAtIndexPath:", 1)), "b") << "visible row 1 is host row 2";
  EXPECT_EQ(row(l, "getSessionInfoAtIndexPath:", 2), nullptr) << "beyond the filtered end";
  EXPECT_EQ(nameOf(row(l, "getCellDataAtIndexPath:", 1)), "b");
  EXPECT_EQ(count(frame(), "logicGetCountForSection:"), 2);
  EXPECT_EQ(nameOf(row(frame(), "logicGetCellDataAtIndexPath:", 1)), "b");
  EXPECT_EQ(
      rt::send<long>(frame(), "tableView:numberOfRowsInSection:", static_cast<Id>(nullptr), 0L), 2);
  EXPECT_EQ(rt::send<Id>(l, "getSessionInfoAtIndexPath:", rt::str("not a path")), nullptr)
      << "a non-index-path goes to the host unchanged";
}

TEST_F(SessionFilter, MappingOfEmptyAndNegativeCounts) {
  launchWithLibrary();
  hideS();
  auto none = [](long) -> Id { return nullptr; };
  EXPECT_EQ(QBSessionHooks::mapRow(0, 0, none), -1);
  EXPECT_EQ(QBSessionHooks::mapRow(0, -4, none), -1);
  EXPECT_EQ(QBSessionHooks::filteredCount(-4, none), 0);
  std::vector<Id> s = {rt::str("S"), rt::str("S")};
  EXPECT_EQ(QBSessionHooks::mapRow(0, 2, [&](long i) { return s[std::size_t(i)]; }), -1)
      << "all secret";
  EXPECT_EQ(count(logic(), "getSessionCountForSection:", 1), 0)
      << "the host has nothing in section 1";
}

TEST_F(SessionFilter, TheCountIsCachedForAFewTenthsOfASecond) {
  launchWithLibrary();
  wait(5);  // past start-up's re-applies, whose refreshes drop the cache
  hideS();
  Id l = logic();
  EXPECT_EQ(count(l, "getSessionCountForSection:"), 2);
  host.model.sessions.insert(host.model.sessions.begin(), "c");
  addFriend("c");
  process->runGuarded([&] { host.sessionsChanged(); });
  EXPECT_EQ(count(l, "getSessionCountForSection:"), 2) << "within 0.45 s: the cached value";
  wait(0.46);
  EXPECT_EQ(count(l, "getSessionCountForSection:"), 3);
  host.model.sessions.insert(host.model.sessions.begin(), "d");
  addFriend("d");
  process->runGuarded([&] { host.sessionsChanged(); });
  QBSessionHooks::refreshFilterCache();
  EXPECT_EQ(count(l, "getSessionCountForSection:"), 4) << "a refresh drops the cache";
  EXPECT_EQ(count(l, "getSessionCountForSection:", 1), 0)
      << "another section replaces the one entry";
  host.model.sessions.insert(host.model.sessions.begin(), "e");
  addFriend("e");
  process->runGuarded([&] { host.sessionsChanged(); });
  EXPECT_EQ(count(l, "getSessionCountForSection:"), 5) << "section 0 was no longer cached";
}

TEST_F(SessionFilter, TheViewControllersCountIsNeverCached) {
  launchWithLibrary();
  wait(5);
  hideS();
  EXPECT_EQ(count(logic(), "getSessionCountForSection:"), 2);
  host.model.sessions.insert(host.model.sessions.begin(), "c");
  addFriend("c");
  process->runGuarded([&] { host.sessionsChanged(); });
  EXPECT_EQ(count(frame(), "logicGetCountForSection:"), 3)
      << "counted again at once, not read from the logic controller's cache";
}

// In this build the list's view controller reads its rows through the logic
// controller's hooked getters: inside the outer remapping they must answer as
// the host would, or the rows are remapped twice.
TEST_F(SessionFilter, NestedGettersAnswerAsTheHostInside) {
  host.model.sessions = {"a", "S", "b", "c"};
  addFriend("c");
  host.build.variants = {"list-through-logic"};
  launchWithLibrary();
  hideS();
  for (int twice = 0; twice < 2; ++twice) {
    EXPECT_EQ(count(frame(), "logicGetCountForSection:"), 3);
    EXPECT_EQ(nameOf(row(frame(), "logicGetSessionAtIndexPath:", 1)), "b");
    EXPECT_EQ(nameOf(row(frame(), "logicGetSessionAtIndexPath:", 2)), "c");
    EXPECT_EQ(nameOf(row(frame(), "logicGetCellDataAtIndexPath:", 2)), "c");
  }
  EXPECT_EQ(nameOf(row(logic(), "getSessionInfoAtIndexPath:", 1)), "b")
      << "asked directly, the logic controller filters too";
  process->runGuarded([&] { rt::send<void>(frame(), "reloadSessions"); });
  EXPECT_EQ(host.mainListShown(), (std::vector<std::string>{"a", "b", "c"}));
}

TEST_F(SessionFilter, CanShowInMainFrameVetoesSecrets) {
  launchWithLibrary();
  hideS();
  rt::Class mgr = rt::getClass("MainSessionMgr");
  EXPECT_FALSE(rt::send<bool>(mgr, "canShowInMainFrame:", rt::str("S")));
  EXPECT_TRUE(rt::send<bool>(mgr, "canShowInMainFrame:", rt::str("a")));
  EXPECT_TRUE(rt::send<bool>(mgr, "canShowInMainFrame:", rt::str(""))) << "the host's answer";
  Id session = rt::elements(rt::send<Id>(QBSessionHooks::mainSessionMgr(), "normalSessions"))[1];
  EXPECT_FALSE(rt::send<bool>(mgr, "canShowInMainFrame:", session)) << "objects by their username";
}

TEST_F(SessionFilter, ListingTheHostsSessions) {
  launchWithLibrary();
  EXPECT_EQ(QBSessionHooks::listSessionUsernames(), (std::vector<std::string>{"a", "S", "b"}));
  std::vector<hiding::SessionItem> items = QBSessionHooks::listSessionItems();
  ASSERT_EQ(items.size(), 3u);
  EXPECT_EQ(items[1].displayName, "S");
  EXPECT_NE(items[1].avatar, nullptr);
}

class SessionListingFallBacks : public SessionFilter {};

Id emptySessions(Id, rt::SEL) { return rt::array({}); }

TEST_F(SessionListingFallBacks, FromTheIndexGetterWhenTheKeysHoldNothing) {
  launchWithLibrary();
  rt::setImplementation(
      rt::getInstanceMethod(rt::getClass("MainSessionMgr"), rt::sel("normalSessions")),
      reinterpret_cast<rt::IMP>(emptySessions));
  EXPECT_EQ(QBSessionHooks::listSessionUsernames(), (std::vector<std::string>{"a", "S", "b"}));
}

// A session manager whose keys hold nothing, answering the index getter from
// `gIndexed` (nil past its end or for an empty name) and counting the calls.
std::vector<std::string> gIndexed;
long gVisible = 0, gAsked = 0;
long visibleCount(Id, rt::SEL) { return gVisible; }
Id sessionAt(Id, rt::SEL, long i) {
  ++gAsked;
  return std::size_t(i) < gIndexed.size() && !gIndexed[std::size_t(i)].empty()
             ? rt::str(gIndexed[std::size_t(i)])
             : nullptr;
}

class SessionListingLimits : public SessionFilter {
 protected:
  void SetUp() override {
    SessionFilter::SetUp();
    gIndexed.clear();
    for (int i = 0; i < 500; ++i) gIndexed.push_back("u" + std::to_string(i));
    gVisible = 0;
  }
  void useIndexGetter() {
    rt::Class mgr = rt::getClass("MainSessionMgr");
    rt::setImplementation(rt::getInstanceMethod(mgr, rt::sel("normalSessions")),
                          reinterpret_cast<rt::IMP>(emptySessions));
    rt::setImplementation(rt::getInstanceMethod(mgr, rt::sel("getNormalSessionAtIndex:")),
                          reinterpret_cast<rt::IMP>(sessionAt));
    if (rt::Method m = rt::getInstanceMethod(mgr, rt::sel("visibleNormalSessionCount")))
      rt::setImplementation(m, reinterpret_cast<rt::IMP>(visibleCount));
  }
  std::size_t listed(long visible) {
    gVisible = visible;
    gAsked = 0;
    return QBSessionHooks::listSessionUsernames().size();
  }
};

TEST_F(SessionListingLimits, TenPastTheVisibleCountAtMostFourHundred) {
  launchWithLibrary();
  useIndexGetter();
  EXPECT_EQ(listed(3), 13u);
  EXPECT_EQ(listed(0), 210u) << "no visible count: 210";
  EXPECT_EQ(listed(-5), 210u);
  EXPECT_EQ(listed(1000), 400u);
  gIndexed.resize(20);
  EXPECT_EQ(listed(100), 20u) << "nil rows after some were found do not stop the walk";
  EXPECT_EQ(gAsked, 110);
}

TEST_F(SessionListingLimits, WithoutAVisibleCount210) {
  host.build.lackingMethods.insert({"MainSessionMgr", "visibleNormalSessionCount"});
  launchWithLibrary();
  useIndexGetter();
  EXPECT_EQ(listed(5), 210u);
}

TEST_F(SessionListingLimits, SevenEmptyRowsFirstStopTheWalk) {
  launchWithLibrary();
  useIndexGetter();
  gIndexed.assign(8, "");
  gIndexed.push_back("late");
  listed(100);
  EXPECT_EQ(gAsked, 7) << "indices 0 to 6";
  gIndexed.assign(6, "");
  gIndexed.push_back("sixth");
  EXPECT_EQ(listed(100), 1u) << "found at index 6: no stop";
  EXPECT_EQ(gAsked, 110);
}

TEST_F(SessionListingFallBacks, AnUndefinedKeyEndsTheListingWithItsException) {
  host.build.lackingMethods.insert({"MainSessionMgr", "topSessions"});
  launchWithLibrary();
  EXPECT_EQ(QBSessionHooks::listSessionUsernames(), (std::vector<std::string>{"a", "S", "b"}))
      << "what the first key collected stands";
}

TEST_F(SessionListingFallBacks, TheSessionArrayWhenTheMainManagerIsMissing) {
  host.build.lackingClasses.insert("MainSessionMgr");
  launchWithLibrary();
  EXPECT_EQ(QBSessionHooks::listSessionUsernames(), (std::vector<std::string>{"a", "S", "b"}));
}

TEST_F(SessionListingFallBacks, NoManagersAtAll) {
  host.build.lackingClasses.insert("MainSessionMgr");
  host.build.lackingClasses.insert("MMNewSessionMgr");
  launchWithLibrary();
  EXPECT_TRUE(QBSessionHooks::listSessionUsernames().empty());
}

TEST_F(SessionListingFallBacks, ARaisingManagerNamesTheException) {
  host.build.raisingMethods.insert({"MainSessionMgr", "getNormalSessionAtIndex:"});
  launchWithLibrary();
  rt::setImplementation(
      rt::getInstanceMethod(rt::getClass("MainSessionMgr"), rt::sel("normalSessions")),
      reinterpret_cast<rt::IMP>(emptySessions));
  EXPECT_TRUE(QBSessionHooks::listSessionUsernames().empty());
}

// When a host getter the filter relies on fails, the list falls open: the
// host's own rows, secrets included, and nothing escapes into the host.
TEST_F(SessionFilter, ARaisingGetterLeavesTheHostsRows) {
  host.build.raisingMethods.insert({"NewMainFrameViewController", "logicGetSessionAtIndexPath:"});
  launchWithLibrary();
  hideS();
  process->runGuarded([&] { rt::send<void>(frame(), "reloadSessions"); });
  EXPECT_FALSE(process->crashed()) << process->crashReason();
  EXPECT_EQ(host.mainListShown(), (std::vector<std::string>{"a", "S", "b"}));
}

TEST_F(SessionFilter, MissingHookGroupsAreSkippedAndTheRestStillFilters) {
  host.build.lackingClasses.insert("MainFrameLogicController");
  host.build.lackingMethods.insert({"NewMainFrameViewController", "logicGetSessionAtIndexPath:"});
  launchWithLibrary();
  EXPECT_EQ(
      countLog(
          "[QB][stable] replace missing NewMainFrameViewController logicGetSessionAtIndexPath:"),
      1);
  EXPECT_EQ(countLog("[QB][stable] replace getSessionInfoAtIndexPath:"), 0)
      << "the missing class's group is skipped";
  hideS();
  // Rows fall back to the cell-data getter for the walk; the count needs the
  // session getter and so stays the host's.
  EXPECT_EQ(nameOf(row(frame(), "logicGetCellDataAtIndexPath:", 1)), "b");
  EXPECT_EQ(row(frame(), "logicGetCellDataAtIndexPath:", 2), nullptr);
  EXPECT_EQ(count(frame(), "logicGetCountForSection:"), 3);
}

}  // namespace

namespace {

class FilterThreads : public SessionFilter {};

// The host asks its class-level "can show" test from other threads while the
// main thread publishes new filters: each answer comes from one whole filter.
TEST_F(FilterThreads, CanShowFromOtherThreadsWhileTheMainThreadRefreshes) {
  launchWithLibrary();
  hideS();
  Id mgr = rt::toId(rt::getClass("MainSessionMgr"));
  Id a = rt::str("a"), s = rt::str("S");
  std::atomic<int> aRefused{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < 3; ++t)
    threads.emplace_back([&] {
      for (int i = 0; i < 200; ++i) {
        if (!rt::send<bool>(mgr, "canShowInMainFrame:", a)) ++aRefused;
        rt::send<bool>(mgr, "canShowInMainFrame:", s);
      }
    });
  for (long i = 0; i < 300; ++i) {
    QBConfig::shared().setUnlocked(i % 2);
    QBSessionHooks::refreshFilterCache();
  }
  for (auto& th : threads) th.join();
  EXPECT_EQ(aRefused, 0) << "a non-secret is never refused";
}

// Before the first unlock the filter asks the gate's hashes, whose answers the
// settings remember per name: threads asking for many names at once share that.
TEST_F(FilterThreads, CanShowFromOtherThreadsBeforeTheFirstUnlockAsksTheGate) {
  launchWithLibrary();
  QBConfig::shared().addSecretUser("S");
  process.reset();
  device.setLockedSinceRestart(true);
  launchWithLibrary();
  wait(2);
  ASSERT_TRUE(QBConfig::shared().waitingForProtectedData());
  Id mgr = rt::toId(rt::getClass("MainSessionMgr"));
  std::vector<Id> names;
  for (int i = 0; i < 40; ++i) names.push_back(rt::str("n" + std::to_string(i)));
  Id s = rt::str("S");
  std::atomic<int> refused{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < 3; ++t)
    threads.emplace_back([&] {
      for (int i = 0; i < 100; ++i) {
        for (Id n : names) refused += !rt::send<bool>(mgr, "canShowInMainFrame:", n);
        rt::send<bool>(mgr, "canShowInMainFrame:", s);
      }
    });
  for (long i = 0; i < 200; ++i) {
    QBConfig::shared().setUnlocked(i % 2);
    QBSessionHooks::refreshFilterCache();
  }
  for (auto& th : threads) th.join();
  EXPECT_EQ(refused, 0) << "a non-secret is never refused";
  QBConfig::shared().setUnlocked(false);
  QBSessionHooks::refreshFilterCache();
  EXPECT_FALSE(rt::send<bool>(mgr, "canShowInMainFrame:", s));
  EXPECT_TRUE(rt::send<bool>(mgr, "canShowInMainFrame:", names[0]));
}

}  // namespace
