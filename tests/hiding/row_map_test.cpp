// The row maps behind the main list's and the Moments' filters: every answer
// is the walk's, over random lists and secret sets with the host changing its
// list between calls, and no map outlives a change it can be told of (a
// refresh, a soft reload, a new count, a moved or raising entry, the settings
// for Moments) or its lifetime.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "core/config.hpp"
#include "hiding/session_hooks.hpp"
#include "host/runtime_toolkit.hpp"
#include "rt/foundation.hpp"
#include "rt/kvc.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "support/host_world.hpp"

namespace {

using core::QBConfig;
using hiding::QBSessionHooks;
using rt::Id;

std::string nameOf(Id obj) { return obj ? host::QBRuntime::usernameFrom(obj) : "(nil)"; }

// The host keeps one session object per chat, as the real one does, and the
// test sets the manager's list of them directly: what the host shows and in
// which order, with no reload the hooks could see.
class RowMaps : public qbtest::HostWorld {
 protected:
  std::map<std::string, Id> sessions;
  std::vector<std::string> list;
  Id logic = nullptr;

  void SetUp() override {
    for (int i = 0; i < 60; ++i) addFriend("u" + std::to_string(i));
    for (const char* u : {"a", "b", "c", "x", "S"}) addFriend(u);
    launchWithLibrary();
    wait(5);  // past start-up's own refreshes and reloads
    logic = rt::send<Id>(rt::getClass("MainFrameLogicController"), "new");
  }
  Id session(const std::string& u) {
    Id& s = sessions[u];
    if (!s) {
      s = rt::send<Id>(rt::getClass("MMSessionInfo"), "new");
      rt::setIvarObject(s, rt::getInstanceVariable(rt::classOf(s), "m_nsUserName"), rt::str(u));
    }
    return s;
  }
  void setList(std::vector<std::string> names) {
    list = std::move(names);
    std::vector<Id> objects;
    for (const std::string& u : list) objects.push_back(session(u));
    Id mgr = QBSessionHooks::mainSessionMgr();
    rt::setIvarObject(mgr, rt::getInstanceVariable(rt::classOf(mgr), "m_arrNormalSessions"),
                      rt::array(objects));
  }
  void hide(std::initializer_list<const char*> names) {
    for (const char* u : names) QBConfig::shared().addSecretUser(u);
    QBSessionHooks::refreshFilterCache();
  }
  Id frame() { return host.mainFrame(); }
  long viewCount() { return rt::send<long>(frame(), "logicGetCountForSection:", 0L); }
  std::string viewRow(long r) {
    return nameOf(rt::send<Id>(frame(), "logicGetCellDataAtIndexPath:", rt::indexPath(r, 0)));
  }
  std::vector<std::string> viewRows() {
    std::vector<std::string> out;
    for (long r = 0, n = viewCount(); r < n; ++r) out.push_back(viewRow(r));
    return out;
  }
  // The walk's answers over the host's list now.
  std::vector<std::string> walked() {
    std::vector<std::string> out;
    std::vector<Id> objects;
    for (const std::string& u : list) objects.push_back(session(u));
    auto at = [&](long i) { return objects[std::size_t(i)]; };
    long n = long(objects.size());
    for (long r = 0; r < QBSessionHooks::filteredCount(n, at); ++r)
      out.push_back(nameOf(at(QBSessionHooks::mapRow(r, n, at))));
    return out;
  }
};

using Names = std::vector<std::string>;

TEST_F(RowMaps, AnswerAsTheWalkOverRandomListsSecretsAndHostChanges) {
  for (unsigned seed = 1; seed <= 6; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 rng(seed);
    auto pick = [&](std::size_t n) { return std::size_t(rng() % n); };
    QBConfig::shared().clearAllSecretUsers();
    Names names;
    for (int i = 0; i < 60; ++i)
      if (rng() % 3) names.push_back("u" + std::to_string(i));
    std::shuffle(names.begin(), names.end(), rng);
    setList(names);
    for (const std::string& u : names)
      if (rng() % 4 == 0) QBConfig::shared().addSecretUser(u);
    QBConfig::shared().addSecretUser("u0");  // at least one secret: the filter is on
    QBSessionHooks::refreshFilterCache();
    // The logic controller's count is cached for 0.45 s by design; the rest is live.
    long cachedCount = -1;
    double cachedAt = -1, now = 0;
    for (int step = 0; step < 40; ++step) {
      Names l = list;
      switch (rng() % 6) {
        case 0:  // a message brings a chat to the top
          if (!l.empty()) {
            std::string u = l[pick(l.size())];
            std::erase(l, u);
            l.insert(l.begin(), u);
          }
          break;
        case 1:  // a chat deleted
          if (!l.empty()) l.erase(l.begin() + long(pick(l.size())));
          break;
        case 2: {  // a new chat at the top
          std::string u = "u" + std::to_string(pick(60));
          if (std::find(l.begin(), l.end(), u) == l.end()) l.insert(l.begin(), u);
          break;
        }
        case 3: {  // a secret more or fewer, then the refresh that follows every change
          std::string u = "u" + std::to_string(1 + pick(59));
          if (QBConfig::shared().isSecretUser(u))
            QBConfig::shared().removeSecretUser(u);
          else
            QBConfig::shared().addSecretUser(u);
          QBSessionHooks::refreshFilterCache();
          cachedCount = -1;
          break;
        }
        case 4:
          wait(0.2);
          now += 0.2;
          break;
        default:
          break;
      }
      setList(l);
      Names want = walked();
      // Rows first, without a count in between: only the rows' own checks see the change.
      for (int q = 0; q < 6; ++q) {
        long r = long(pick(want.size() + 2)) - 1;
        std::string expect = r >= 0 && r < long(want.size()) ? want[std::size_t(r)] : "(nil)";
        ASSERT_EQ(viewRow(r), expect) << "view row " << r << " at step " << step;
        ASSERT_EQ(nameOf(rt::send<Id>(logic, "getSessionInfoAtIndexPath:", rt::indexPath(r, 0))),
                  expect)
            << "logic row " << r << " at step " << step;
      }
      ASSERT_EQ(viewCount(), long(want.size())) << "at step " << step;
      if (cachedCount < 0 || now - cachedAt >= 0.45)
        cachedCount = long(want.size()), cachedAt = now;
      ASSERT_EQ(rt::send<long>(logic, "getSessionCountForSection:", 0L), cachedCount);
      ASSERT_EQ(viewRows(), want) << "a full pass at step " << step;
    }
  }
}

// Each kind of change a map can be told of, with the host's list changed so
// that the map's own checks would not see it: S replaced by x under the same
// row, the count and the first and last chats as they were.
TEST_F(RowMaps, NoMapOutlivesARefreshAReloadOrItsLifetime) {
  setList({"a", "S", "b", "c"});
  hide({"S"});
  ASSERT_EQ(viewRows(), (Names{"a", "b", "c"}));
  setList({"a", "x", "b", "c"});
  QBSessionHooks::refreshFilterCache();
  EXPECT_EQ(viewRows(), (Names{"a", "x", "b", "c"})) << "a refresh";

  setList({"a", "S", "b", "c"});
  QBSessionHooks::refreshFilterCache();
  ASSERT_EQ(viewRows(), (Names{"a", "b", "c"}));
  setList({"a", "x", "b", "c"});
  process->runGuarded([] { QBSessionHooks::softReloadMainFrameForce(true); });
  EXPECT_EQ(host.mainListShown(), (Names{"a", "x", "b", "c"})) << "a soft reload";

  setList({"a", "S", "b", "c"});
  QBSessionHooks::refreshFilterCache();
  ASSERT_EQ(viewRows(), (Names{"a", "b", "c"}));
  setList({"a", "x", "b", "c"});
  wait(0.46);
  EXPECT_EQ(viewCount(), 4) << "past the lifetime";
  EXPECT_EQ(viewRow(1), "x");
}

TEST_F(RowMaps, ASecretChangeIsAnsweredAtTheNextRefresh) {
  setList({"a", "S", "b", "c"});
  hide({"S"});
  ASSERT_EQ(viewRows(), (Names{"a", "b", "c"}));
  QBConfig::shared().addSecretUser("b");
  EXPECT_EQ(viewRows(), (Names{"a", "b", "c"})) << "the snapshot is stale until a refresh";
  QBSessionHooks::refreshFilterCache();
  EXPECT_EQ(viewRow(1), "c");
  EXPECT_EQ(viewCount(), 2);
}

// What the map's checks see without any flush: a count that grew at the
// end, a chat moved to the top, a chat deleted.
TEST_F(RowMaps, TheHostsOwnChangesAreSeenBetweenCalls) {
  setList({"a", "S", "b"});
  hide({"S"});
  ASSERT_EQ(viewRows(), (Names{"a", "b"}));
  setList({"a", "S", "b", "c"});
  EXPECT_EQ(viewCount(), 3) << "a chat added at the end";
  setList({"c", "a", "S", "b"});
  EXPECT_EQ(viewRow(0), "c") << "moved to the top, asked without a count first";
  EXPECT_EQ(viewRow(2), "b");
  EXPECT_EQ(viewRow(3), "(nil)");
  setList({"c", "S", "b"});
  EXPECT_EQ(viewRow(1), "b") << "a deleted";
  EXPECT_EQ(viewRow(2), "(nil)");
  ASSERT_EQ(viewCount(), 2);
  setList({"x", "S", "b"});
  EXPECT_EQ(viewCount(), 2) << "the top chat replaced";
  setList({"S", "a", "b"});
  EXPECT_EQ(viewCount(), 2);
  setList({"x", "a", "b"});
  EXPECT_EQ(viewCount(), 3) << "a secret at the top replaced";
  setList({"x", "a", "S"});
  EXPECT_EQ(viewCount(), 2) << "the bottom chat replaced by a secret";
}

// The host's own paths: a message reorders the list and a deleted chat, each
// rebuilt and reloaded by the host.
TEST_F(RowMaps, TheHostsReloadsShowItsNewOrder) {
  host.model.sessions = {"a", "S", "b", "c"};
  process->runGuarded([&] { host.sessionsChanged(); });
  hide({"S"});
  process->runGuarded([&] { host.sessionsChanged(); });
  ASSERT_EQ(host.mainListShown(), (Names{"a", "b", "c"}));
  process->runGuarded([&] {
    host.model.bringSessionToTop("c");
    host.sessionsChanged();
    host.deliverMessage("c", "hi");
  });
  EXPECT_EQ(host.mainListShown(), (Names{"c", "a", "b"}));
  host.model.sessions = {"c", "S", "b"};
  process->runGuarded([&] { host.sessionsChanged(); });
  EXPECT_EQ(host.mainListShown(), (Names{"c", "b"}));
  EXPECT_EQ(host.mainListAnswer(), (Names{"c", "b"}));
}

// A getter that starts raising after the map was walked fails exactly as the
// walk did: the step's log line and the host's own row, secrets shown.
TEST_F(RowMaps, AGetterThatStartsRaisingFailsAsTheWalkDid) {
  setList({"a", "S", "b"});
  hide({"S"});
  ASSERT_EQ(viewRows(), (Names{"a", "b"}));
  host.makeRaising("NewMainFrameViewController", "logicGetSessionAtIndexPath:");
  std::size_t from = device.log().size();
  EXPECT_EQ(viewRow(1), "S") << "the host's row 1";
  EXPECT_EQ(viewCount(), 3) << "the host's count";
  EXPECT_EQ(countLog("logicGetCellDataAtIndexPath: ex:", from), 1);
  EXPECT_EQ(countLog("logicGetCountForSection: ex:", from), 1);
}

TEST_F(RowMaps, ACountGetterThatStartsRaisingFailsAsTheWalkDid) {
  setList({"a", "S", "b"});
  hide({"S"});
  ASSERT_EQ(nameOf(rt::send<Id>(logic, "getSessionInfoAtIndexPath:", rt::indexPath(1, 0))), "b");
  host.makeRaising("MainFrameLogicController", "getSessionCountForSection:");
  std::size_t from = device.log().size();
  EXPECT_EQ(nameOf(rt::send<Id>(logic, "getSessionInfoAtIndexPath:", rt::indexPath(1, 0))), "S");
  EXPECT_EQ(countLog("getSessionInfoAtIndexPath: ex:", from), 1);
}

// Moments follow the settings live, not the filter's snapshot: a secret
// added is left out at the next call, refresh or not.
class MomentsMap : public qbtest::HostWorld {
 protected:
  void SetUp() override {
    for (const char* u : {"a", "S", "b", "c"}) {
      addFriend(u);
      host.model.addMoment(u, "");
    }
    launchWithLibrary();
    wait(5);
    QBConfig::shared().addSecretUser("S");
    facade = hostapp::hostService("WCFacade");
  }
  std::vector<std::string> shown() {
    std::vector<std::string> out;
    unsigned long n = rt::send<unsigned long>(facade, "countOfTimelineDataItem");
    for (long i = 0; i < long(n); ++i)
      out.push_back(nameOf(rt::send<Id>(facade, "getTimelineDataItemOfIndex:", i)));
    return out;
  }
  Id facade = nullptr;
};

TEST_F(MomentsMap, FollowTheSettingsAndTheTimelineBetweenCalls) {
  // Newest first: c, b, S, a.
  ASSERT_EQ(shown(), (Names{"c", "b", "a"}));
  QBConfig::shared().addSecretUser("b");
  EXPECT_EQ(shown(), (Names{"c", "a"})) << "no refresh needed";
  QBConfig::shared().setUnlocked(true);
  EXPECT_EQ(shown(), (Names{"c", "b", "S", "a"}));
  QBConfig::shared().setUnlocked(false);
  ASSERT_EQ(shown(), (Names{"c", "a"}));
  host.model.addMoment("x", "");
  addFriend("x");
  EXPECT_EQ(shown(), (Names{"x", "c", "a"})) << "a new item at the top";
  EXPECT_EQ(nameOf(rt::send<Id>(facade, "getTimelineDataItemOfIndex:", 2L)), "a");
}

}  // namespace
