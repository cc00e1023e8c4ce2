// Keeping the main list in step with the state: start-up re-applies, the
// throttles, the scroll deferral, the two-phase reveal and the forced apply.
#include <gtest/gtest.h>

#include "core/config.hpp"
#include "startup/startup.hpp"
#include "hiding/session_hooks.hpp"
#include "rt/exception.hpp"
#include "rt/foundation.hpp"
#include "rt/kvc.hpp"
#include "rt/send.hpp"
#include "sim/frameworks/uikit/uikit.hpp"
#include "support/host_world.hpp"

namespace {

using core::QBConfig;
using hiding::QBSessionHooks;
using rt::Id;

const char* kMainReload = "[QB] softReload main force=";

class MainListRefresh : public qbtest::HostWorld {
 protected:
  void SetUp() override {
    for (const char* u : {"a", "S", "b"}) addFriend(u);
    host.model.sessions = {"a", "S", "b"};
  }
  // Times (seconds since launch) at which the main list was soft-reloaded.
  std::vector<double> reloadTimes() const {
    std::vector<double> out;
    for (const auto& l : device.log())
      if (l.text.find(kMainReload) != std::string::npos && (out.empty() || out.back() != l.elapsed))
        out.push_back(l.elapsed);
    return out;
  }
  sim::ViewState& table() {
    return *sim::viewState(rt::valueForKey(host.mainFrame(), "m_tableView"));
  }
};

TEST_F(MainListRefresh, StartUpWithHiddenSecretsReloadsAtOnceAndAfterTheHostSettles) {
  host.model.sessions = {"a", "b"};
  launchWithLibrary();  // no secrets yet: nothing to re-apply
  process.reset();
  EXPECT_EQ(countLog(kMainReload), 0);
  launchWithLibrary();
  QBConfig::shared().addSecretUser("S");
  process.reset();
  std::size_t before = device.log().size();
  launchWithLibrary();
  wait(2);
  std::vector<double> times;
  for (std::size_t i = before; i < device.log().size(); ++i)
    if (device.log()[i].text.find(kMainReload) != std::string::npos &&
        (times.empty() || times.back() != device.log()[i].elapsed))
      times.push_back(device.log()[i].elapsed);
  double t0 = device.log()[before].elapsed;
  // At once, then the 1.4 s re-apply; the 0.5 s one falls under the 0.75 s throttle.
  ASSERT_EQ(times.size(), 2u);
  EXPECT_DOUBLE_EQ(times[0] - t0, 0);
  EXPECT_NEAR(times[1] - t0, 1.4, 1e-9);
}

// The host builds its first list while the library loads, before anything
// queued on the main queue has run: the early step alone must filter it.
TEST_F(MainListRefresh, TheFirstListIsFilteredBeforeTheMainQueueRuns) {
  launchWithLibrary();
  QBConfig::shared().addSecretUser("S");
  process.reset();
  for (const char* variant : {"", "store-ignores-canshow"}) {
    host.build.variants.clear();
    if (*variant) host.build.variants.insert(variant);
    std::vector<std::string> firstList;
    process = std::make_unique<sim::Process>(device);
    sim::LaunchHooks hooks = host.launchHooks();
    hooks.libraryEntry = core::libraryEntry;
    hooks.hostDidFinishLaunching = [&, build = hooks.hostDidFinishLaunching] {
      build();
      firstList = host.mainListShown();
    };
    process->launch(hooks);
    EXPECT_EQ(firstList, (std::vector<std::string>{"a", "b"})) << variant;
    process.reset();
  }
}

// Start-up's delayed re-applies read the suppress flags each time: either
// flag alone holds them back.
TEST_F(MainListRefresh, TheStartUpReappliesWaitForBothSuppressFlags) {
  launchWithLibrary();
  QBConfig::shared().addSecretUser("S");
  for (int flag = 0; flag < 2; ++flag) {
    process.reset();
    launchWithLibrary();
    wait(0.3);
    if (flag == 0)
      QBConfig::shared().setSuppressAutoLock(true);
    else
      QBConfig::shared().setSuppressSessionApply(true);
    std::size_t before = device.log().size();
    wait(2);
    EXPECT_EQ(countLog(kMainReload, before), 0)
        << (flag == 0 ? "suppressAutoLock" : "suppressSessionApply");
  }
}

// The main list's own appearance re-applies the hidden state a moment later,
// at most once per 0.8 s.
TEST_F(MainListRefresh, AppearingReappliesAfterAMomentAndIsThrottled) {
  launchWithLibrary();
  QBConfig::shared().addSecretUser("S");
  wait(5);
  auto appear = [&] {
    process->runGuarded([&] { rt::send<void>(host.mainFrame(), "viewDidAppear:", true); });
  };
  std::size_t before = device.log().size();
  appear();
  wait(0.19);
  EXPECT_EQ(countLog(kMainReload, before), 0);
  wait(0.02);
  EXPECT_GT(countLog("force=0", before), 0) << "0.2 s after appearing";
  before = device.log().size();
  wait(0.56);
  appear();  // its re-apply falls 0.78 s after the last: past the reload throttle, not this one
  wait(0.3);
  EXPECT_EQ(countLog(kMainReload, before), 0);
  wait(0.1);
  appear();
  wait(0.3);
  EXPECT_GT(countLog("force=0", before), 0);
  before = device.log().size();
  QBConfig::shared().setUnlocked(true);
  wait(1);
  appear();
  process->runGuarded([&] { rt::send<void>(host.mainFrame(), "viewDidLoad"); });
  wait(1);
  EXPECT_EQ(countLog(kMainReload, before), 0) << "revealed: nothing to re-apply";
  QBConfig::shared().setUnlocked(false);
  process->runGuarded([&] { rt::send<void>(host.mainFrame(), "viewDidLoad"); });
  wait(0.14);
  EXPECT_EQ(countLog(kMainReload, before), 0);
  wait(0.02);
  EXPECT_GT(countLog("force=0", before), 0) << "0.15 s after loading";
}

TEST_F(MainListRefresh, ARevealWithinHalfASecondCancelsTheReapplies) {
  launchWithLibrary();
  QBConfig::shared().addSecretUser("S");
  process.reset();
  launchWithLibrary();
  wait(0.3);
  QBConfig::shared().setUnlocked(true);
  std::size_t before = device.log().size();
  wait(2);
  EXPECT_EQ(countLog(kMainReload, before), 0);
}

TEST_F(MainListRefresh, SoftReloadThrottleAndForce) {
  launchWithLibrary();
  wait(5);
  std::size_t before = device.log().size();
  QBSessionHooks::softReloadMainFrame();
  EXPECT_EQ(countLog("force=0", before), 1)
      << "reached four times through its containers, reloaded once";
  wait(0.5);
  before = device.log().size();
  QBSessionHooks::softReloadMainFrame();
  EXPECT_EQ(countLog(kMainReload, before), 0) << "within 0.75 s";
  QBSessionHooks::softReloadMainFrameForce(true);
  EXPECT_GT(countLog("force=1", before), 0) << "forced ignores the throttle";
}

TEST_F(MainListRefresh, AScrollingListIsReloadedWhenItStops) {
  launchWithLibrary();
  wait(5);
  table().dragging = true;
  long reloads = table().reloads;
  std::size_t before = device.log().size();
  QBSessionHooks::softReloadMainFrame();
  EXPECT_EQ(table().reloads, reloads) << "not under the user's finger";
  QBSessionHooks::softReloadMainFrame();  // busy until the retry
  table().dragging = false;
  wait(0.39);
  EXPECT_EQ(countLog(kMainReload, before), 0);
  wait(0.02);
  EXPECT_GT(countLog("force=1", before), 0);
  EXPECT_GT(table().reloads, reloads);
}

TEST_F(MainListRefresh, TheContactsListIsReloadedEvenWhileItScrolls) {
  launchWithLibrary();
  process->runGuarded([&] { host.selectTab(1); });
  wait(5);
  sim::ViewState& contacts = *sim::viewState(rt::valueForKey(host.contactsScreen(), "m_tableView"));
  contacts.dragging = true;
  long reloads = contacts.reloads;
  QBSessionHooks::softReloadMainFrame();
  EXPECT_GT(contacts.reloads, reloads);
}

TEST_F(MainListRefresh, RevealInTwoPhasesAndAQuickHideIsNotUndone) {
  launchWithLibrary();
  QBConfig& c = QBConfig::shared();
  c.addSecretUser("S");
  QBSessionHooks::refreshFilterCache();
  process->runGuarded([&] { host.sessionsChanged(); });  // the host rebuilds without S
  EXPECT_EQ(host.mainListShown(), (std::vector<std::string>{"a", "b"}));
  wait(5);
  std::size_t before = device.log().size();
  QBSessionHooks::revealSecretsNow();
  EXPECT_EQ(countLog("[QB] reveal skipped still hidden", before), 1);
  c.setUnlocked(true);
  QBSessionHooks::revealSecretsNow();
  EXPECT_EQ(countLog("[QB] rebuildMainSessions", before), 1);
  EXPECT_EQ(host.mainListShown(), (std::vector<std::string>{"a", "b"}))
      << "the table reloads only after 0.25 s";
  wait(0.25);
  EXPECT_EQ(host.mainListShown(), (std::vector<std::string>{"a", "S", "b"}));
  double revealedAt = device.elapsed() - 0.25;
  wait(0.55);
  std::vector<double> times = reloadTimes();
  ASSERT_GE(times.size(), 2u);
  EXPECT_NEAR(times.back() - revealedAt, 0.8, 1e-9) << "the second phase, while still unlocked";
  EXPECT_NEAR(times[times.size() - 2] - revealedAt, 0.25, 1e-9);
  wait(1);
  QBSessionHooks::revealSecretsNow();
  wait(0.25);
  c.setUnlocked(false);  // hidden again before the second phase
  QBSessionHooks::refreshFilterCache();
  std::size_t mid = device.log().size();
  wait(0.6);
  EXPECT_EQ(countLog(kMainReload, mid), 0) << "the 0.8 s reload only runs while still unlocked";
}

TEST_F(MainListRefresh, ForceApplyThrottleAndSuppression) {
  launchWithLibrary();
  QBConfig& c = QBConfig::shared();
  c.addSecretUser("S");
  wait(5);
  std::size_t before = device.log().size();
  QBSessionHooks::forceApplyVisibility();
  EXPECT_GT(countLog("force=1", before), 0);
  wait(0.5);
  before = device.log().size();
  QBSessionHooks::forceApplyVisibility();
  EXPECT_EQ(device.log().size(), before) << "within 1.0 s nothing at all";
  wait(1);
  c.setSuppressSessionApply(true);
  c.setUnlocked(true);
  c.requestVisibilitySync();
  wait(1);
  EXPECT_EQ(device.log().size(), before)
      << "while an authentication is up, a state change only refreshes";
  EXPECT_FALSE(QBSessionHooks::filterActive());
}

void raisingReloadData(Id, rt::SEL) {
  rt::raise("NSInternalInconsistencyException", "reload broke");
}

// A failure is logged and clears the busy flag its step set: the next soft
// reload, forced apply or reveal runs again.
TEST_F(MainListRefresh, FailuresAreLoggedAndClearTheirBusyFlags) {
  launchWithLibrary();
  QBConfig& c = QBConfig::shared();
  c.addSecretUser("S");
  wait(5);
  rt::Method reload = rt::getInstanceMethod(rt::getClass("UITableView"), rt::sel("reloadData"));
  rt::IMP tableReload = rt::methodImplementation(reload);
  rt::setImplementation(reload, reinterpret_cast<rt::IMP>(raisingReloadData));
  QBSessionHooks::softReloadMainFrame();
  rt::setImplementation(reload, tableReload);
  EXPECT_EQ(countLog("[QB] softReload ex: reload broke"), 1);
  wait(1);
  std::size_t before = device.log().size();
  QBSessionHooks::softReloadMainFrame();
  EXPECT_GT(countLog("force=0", before), 0) << "not left busy";

  bool filterRaises = true;
  QBSessionHooks::addFilterListener([&filterRaises](const auto&, bool) {
    if (filterRaises) rt::raise("NSGenericException", "filter broke");
  });
  QBSessionHooks::forceApplyVisibility();
  filterRaises = false;
  EXPECT_EQ(countLog("[QB] forceApply ex: filter broke"), 1);
  wait(1.1);
  before = device.log().size();
  QBSessionHooks::forceApplyVisibility();
  EXPECT_GT(countLog("force=1", before), 0) << "not left busy";

  host.makeRaising("MainSessionMgr", "rebuildMainSessions");
  c.setUnlocked(true);
  for (int i = 0; i < 2; ++i) {
    wait(1.1);
    QBSessionHooks::forceApplyVisibility();
  }
  EXPECT_EQ(countLog("[QB] reveal ex: "), 2) << "a reveal that raised left the apply free";
}

TEST_F(MainListRefresh, StateChangesReachTheListThroughTheNotification) {
  launchWithLibrary();
  QBConfig& c = QBConfig::shared();
  c.addSecretUser("S");
  wait(5);
  EXPECT_EQ(host.mainListShown(), (std::vector<std::string>{"a", "b"}));
  EXPECT_TRUE(c.tryUnlockWithPassword("7351"));
  wait(0.34);
  EXPECT_EQ(host.mainListShown(), (std::vector<std::string>{"a", "b"}));
  wait(0.3);  // 0.35 s notification, reveal, then the 0.25 s table phase
  EXPECT_EQ(host.mainListShown(), (std::vector<std::string>{"a", "S", "b"}));
  wait(1.5);  // past the forced apply's 1 s throttle
  c.lock();
  wait(0.4);
  EXPECT_EQ(host.mainListShown(), (std::vector<std::string>{"a", "b"}));
}

TEST_F(MainListRefresh, ReturningToTheForegroundReloadsAQuarterSecondLater) {
  launchWithLibrary();
  QBConfig::shared().addSecretUser("S");
  wait(5);
  ASSERT_TRUE(process->enterBackground());
  wait(5);
  std::size_t before = device.log().size();
  ASSERT_TRUE(process->enterForeground());
  wait(0.24);
  EXPECT_EQ(countLog(kMainReload, before), 0);
  wait(0.02);
  EXPECT_GT(countLog(kMainReload, before), 0);
}

}  // namespace

namespace {

// Leaving the app: each list is reloaded once, before the app switcher's
// picture, which shows no secret; the lock's own reload follows later.
class Departure : public MainListRefresh {};

TEST_F(Departure, ReloadsEachListOnceBeforeThePicture) {
  launchWithLibrary();
  process->runGuarded([&] {
    host.selectTab(1);
    host.selectTab(0);
  });
  QBConfig::shared().addSecretUser("S");
  wait(5);
  QBConfig::shared().setUnlocked(true);
  QBSessionHooks::refreshFilterCache();
  QBSessionHooks::softReloadMainFrameForce(true);
  wait(2);
  ASSERT_EQ(host.mainListShown(), (std::vector<std::string>{"a", "S", "b"}));
  sim::ViewState& contacts = *sim::viewState(rt::valueForKey(host.contactsScreen(), "m_tableView"));
  long mainBefore = table().reloads, contactsBefore = contacts.reloads;
  std::size_t before = device.log().size();
  ASSERT_TRUE(process->enterBackground());
  EXPECT_EQ(host.lastSnapshot().mainRows, (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(table().reloads - mainBefore, 1);
  EXPECT_EQ(contacts.reloads - contactsBefore, 1);
  EXPECT_EQ(countLog(kMainReload, before), 1);
  EXPECT_EQ(countLog("[QB] reloadContacts", before), 1);
  wait(1);
  EXPECT_EQ(table().reloads - mainBefore, 2) << "the lock's state change, 0.35 s later";
}

}  // namespace
