// The hooking toolkit against the simulated runtime and host.
#include <gtest/gtest.h>

#include "host/runtime_toolkit.hpp"
#include "rt/exception.hpp"
#include "rt/foundation.hpp"
#include "rt/kvc.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/runtime/class_builder.hpp"
#include "sim/runtime/runtime.hpp"
#include "sim/frameworks/uikit/uikit.hpp"
#include "support/host_world.hpp"

namespace {

using host::QBRuntime;
using rt::Id;
using rt::SEL;

Id hostGreeting(Id, SEL) { return rt::str("host"); }
Id swizzledGreeting(Id self, SEL) {
  Id original = rt::send<Id>(self, "qb_greeting");  // the exchanged name reaches the host's code
  return rt::str("qb+" + rt::asString(original).value_or("?"));
}
long hostCount(Id, SEL, long section) { return section + 10; }
long replacementCount(Id, SEL, long section) { return section; }

class Toolkit : public qbtest::HostWorld {
 protected:
  void SetUp() override { start(); }
};

TEST_F(Toolkit, SwizzlingAnInheritedMethodChangesOnlyTheHookedClass) {
  rt::Class base = sim::ClassBuilder("HostScreen").method("greeting", hostGreeting).build();
  rt::Class sub = sim::ClassBuilder("HostScreenSub", "HostScreen").build();
  rt::Class sibling = sim::ClassBuilder("HostScreenSibling", "HostScreen").build();
  // The qb_ method lives on a common ancestor, as a category on UIViewController does.
  rt::addMethod(rt::getClass("NSObject"), rt::sel("qb_greeting"), swizzledGreeting);
  rt::Method before = rt::getInstanceMethod(base, rt::sel("greeting"));
  QBRuntime::swizzleInstance(sub, rt::sel("greeting"), rt::sel("qb_greeting"));
  EXPECT_EQ(rt::asString(rt::send<Id>(rt::send<Id>(sub, "new"), "greeting")), "qb+host");
  EXPECT_EQ(rt::methodImplementation(before), reinterpret_cast<rt::IMP>(hostGreeting))
      << "the superclass is untouched";
  EXPECT_EQ(rt::asString(rt::send<Id>(rt::send<Id>(sibling, "new"), "greeting")), "host")
      << "a sibling neither changes nor recurses";
  EXPECT_EQ(rt::asString(rt::send<Id>(rt::send<Id>(base, "new"), "greeting")), "host");
  EXPECT_NE(rt::getInstanceMethod(sub, rt::sel("qb_greeting")),
            rt::getInstanceMethod(rt::getClass("NSObject"), rt::sel("qb_greeting")))
      << "the swizzled method was added to the class itself";
  EXPECT_STREQ(rt::typeEncoding(rt::getInstanceMethod(sub, rt::sel("qb_greeting"))), "@@:");
  QBRuntime::swizzleInstance(sub, rt::sel("greeting"), rt::sel("qb_greeting"));
  EXPECT_EQ(rt::asString(rt::send<Id>(rt::send<Id>(sub, "new"), "greeting")), "host")
      << "exchanged back";
}

TEST_F(Toolkit, ReplacingAnInheritedMethodOverridesItOnTheClassItself) {
  rt::Class base = sim::ClassBuilder("CounterBase").method("count:", hostCount).build();
  rt::Class sub = sim::ClassBuilder("CounterSub", "CounterBase").build();
  rt::IMP store = nullptr;
  EXPECT_TRUE(QBRuntime::replace(sub, rt::sel("count:"),
                                 reinterpret_cast<rt::IMP>(replacementCount), &store));
  EXPECT_EQ(store, reinterpret_cast<rt::IMP>(hostCount))
      << "the inherited implementation is stored";
  EXPECT_EQ(rt::send<long>(rt::send<Id>(sub, "new"), "count:", 2L), 2);
  EXPECT_EQ(rt::send<long>(rt::send<Id>(base, "new"), "count:", 2L), 12)
      << "the superclass keeps its method";
  EXPECT_STREQ(rt::typeEncoding(rt::getInstanceMethod(sub, rt::sel("count:"))), "q@:q");
}

TEST_F(Toolkit, SwizzleSkipsWhatIsMissingAndLogsIt) {
  rt::Class c = sim::ClassBuilder("Lonely").method("greeting", hostGreeting).build();
  QBRuntime::swizzleInstance(c, rt::sel("viewDidAppear:"), rt::sel("qb_x:"));
  QBRuntime::swizzleInstance(nullptr, rt::sel("a"), rt::sel("b"));
  QBRuntime::swizzleInstance(c, rt::sel("greeting"), nullptr);
  EXPECT_EQ(logLines(),
            (std::vector<std::string>{"[QB][stable] swizzle skip Lonely viewDidAppear: / qb_x:"}));
  EXPECT_EQ(rt::asString(rt::send<Id>(rt::send<Id>(c, "new"), "greeting")), "host");
}

TEST_F(Toolkit, ReplaceStoresTheOldImplementationFirst) {
  rt::Class c = sim::ClassBuilder("Counter").method("count:", hostCount).build();
  rt::IMP store = nullptr;
  EXPECT_TRUE(QBRuntime::replace(c, rt::sel("count:"), reinterpret_cast<rt::IMP>(replacementCount),
                                 &store));
  EXPECT_EQ(store, reinterpret_cast<rt::IMP>(hostCount));
  Id obj = rt::send<Id>(c, "new");
  EXPECT_EQ(rt::send<long>(obj, "count:", 2L), 2);
  EXPECT_EQ(rt::call<long>(store, obj, rt::sel("count:"), 2L), 12);
  EXPECT_EQ(logLines().back(), "[QB][stable] replace count: types=q@:q");

  rt::IMP untouched = reinterpret_cast<rt::IMP>(hostGreeting);
  EXPECT_FALSE(QBRuntime::replace(c, rt::sel("missing:"),
                                  reinterpret_cast<rt::IMP>(replacementCount), &untouched));
  EXPECT_EQ(untouched, reinterpret_cast<rt::IMP>(hostGreeting)) << "the slot is left alone";
  EXPECT_EQ(logLines().back(), "[QB][stable] replace missing Counter missing:");
  EXPECT_FALSE(QBRuntime::replace(c, rt::sel("count:"), nullptr, &store));
  EXPECT_FALSE(QBRuntime::replace(c, rt::sel("count:"), reinterpret_cast<rt::IMP>(replacementCount),
                                  nullptr));
}

TEST_F(Toolkit, FirstArgumentTypeCharacter) {
  rt::Class c = sim::ClassBuilder("Typed").build();
  auto typeOf = [&](const char* sel, const char* types) {
    rt::addMethod(c, rt::sel(sel), reinterpret_cast<rt::IMP>(hostGreeting), types);
    return QBRuntime::secondArgTypeOfMethod(rt::getInstanceMethod(c, rt::sel(sel)));
  };
  EXPECT_EQ(typeOf("a:", "v24@0:8I16"), 'I');
  EXPECT_EQ(typeOf("b:", "v24@0:8Q16"), 'Q');
  EXPECT_EQ(typeOf("c:", "v24@0:8q16"), 'q');
  EXPECT_EQ(typeOf("d:", "v24@0:8@16"), '@');
  EXPECT_EQ(typeOf("e", "v16@0:8"), 'Q') << "no argument: the fallback";
  EXPECT_EQ(typeOf("f", nullptr), 'Q');
  EXPECT_EQ(QBRuntime::secondArgTypeOfMethod(nullptr), 'Q');
}

Id messageLike(const std::vector<std::pair<const char*, Id>>& keys) {
  std::vector<std::pair<Id, Id>> entries;
  for (auto& [k, v] : keys) entries.emplace_back(rt::str(k), v);
  return rt::dictionary(entries);
}

TEST_F(Toolkit, UsernameProbingOrder) {
  EXPECT_EQ(QBRuntime::usernameFrom(nullptr), "");
  EXPECT_EQ(QBRuntime::usernameFrom(rt::null()), "");
  EXPECT_EQ(QBRuntime::usernameFrom(rt::str("")), "");
  EXPECT_EQ(QBRuntime::usernameFrom(rt::str("alice")), "alice");
  EXPECT_EQ(QBRuntime::usernameFrom(
                messageLike({{"m_nsUsrName", rt::str("")}, {"m_nsUserName", rt::str("bob")}})),
            "bob");
  EXPECT_EQ(QBRuntime::usernameFrom(messageLike({{"m_nsChatRoomName", rt::str("team@chatroom")},
                                                 {"m_nsToUsr", rt::str("wxid_me")},
                                                 {"m_nsFromUsr", rt::str("alice")}})),
            "alice")
      << "sender before receiver before room";
  EXPECT_EQ(QBRuntime::usernameFrom(
                messageLike({{"username", rt::number(5)},
                             {"m_contact", messageLike({{"m_nsUsrName", rt::str("carol")}})}})),
            "carol")
      << "non-strings are skipped, nested contacts read";
  // A host object whose keys raise (NSObject has none of them) gives nothing.
  EXPECT_EQ(QBRuntime::usernameFrom(rt::send<Id>(rt::getClass("NSObject"), "new")), "");
  Id loop = rt::mutableDictionary();
  rt::setObjectForKey(loop, loop, rt::str("contact"));
  EXPECT_EQ(QBRuntime::usernameFrom(loop), "") << "self-reference ends";
}

// Every key in the list, each holding its own name: taking them away from the
// front one at a time must reveal them in exactly this order.
TEST_F(Toolkit, UsernameKeysAreTriedInTheirFullOrder) {
  const std::vector<const char*> direct = {"m_nsUsrName",     "m_nsUserName",    "username",
                                           "userName",        "usrName",         "sessionUsername",
                                           "m_username",      "m_nsFromUsr",     "m_nsToUsr",
                                           "m_nsRealChatUsr", "m_nsChatRoomName"};
  for (std::size_t first = 0; first < direct.size(); ++first) {
    std::vector<std::pair<const char*, Id>> keys;
    for (std::size_t i = direct.size(); i-- > first;)
      keys.emplace_back(direct[i], rt::str(direct[i]));
    keys.emplace_back("m_contact", messageLike({{"m_nsUsrName", rt::str("nested")}}));
    EXPECT_EQ(QBRuntime::usernameFrom(messageLike(keys)), direct[first]);
  }
  EXPECT_EQ(QBRuntime::usernameFrom(
                messageLike({{"contact", messageLike({{"m_nsUsrName", rt::str("second")}})},
                             {"m_contact", messageLike({{"m_nsUsrName", rt::str("first")}})}})),
            "first")
      << "m_contact before contact";
  EXPECT_EQ(QBRuntime::usernameFrom(
                messageLike({{"contact", messageLike({{"m_nsUsrName", rt::str("second")}})},
                             {"m_contact", messageLike({{"m_nsUsrName", rt::str("")}})}})),
            "second");
}

Id chatTitle(Id, SEL) { return rt::str("from accessor"); }
Id raisingName(Id, SEL) { rt::raise("NSGenericException", "no name today"); }

// One reader over a pass gives what usernameFrom gives for each entry, for
// objects of several classes in any order: what one class answers is never
// taken for another's, and an entry whose key is empty moves on to the next.
TEST_F(Toolkit, AReaderOverManyEntriesAnswersAsUsernameFrom) {
  rt::Class session = sim::ClassBuilder("RdrSession")
                          .ivar("m_nsUsrName", "@")
                          .ivar("m_nsUserName", "@")
                          .ivar("m_contact", "@")
                          .build();
  rt::Class titled = sim::ClassBuilder("RdrTitled").method("m_nsChatRoomName", chatTitle).build();
  rt::Class raising = sim::ClassBuilder("RdrRaising").method("username", raisingName).build();
  auto make = [&](const char* first, const char* second, Id contact) {
    Id o = rt::send<Id>(session, "new");
    if (first) rt::setIvarNamed(o, "m_nsUsrName", rt::str(first));
    if (second) rt::setIvarNamed(o, "m_nsUserName", rt::str(second));
    if (contact) rt::setIvarNamed(o, "m_contact", contact);
    return o;
  };
  std::vector<Id> entries = {
      make("alice", nullptr, nullptr),
      rt::send<Id>(titled, "new"),
      make(nullptr, "bob", nullptr),
      make("", "", make("carol", nullptr, nullptr)),
      messageLike({{"userName", rt::str("dave")}}),
      rt::str("erin"),
      rt::send<Id>(raising, "new"),
      make(nullptr, nullptr, nullptr),
      rt::null(),
      make(nullptr, "frank", nullptr),
  };
  std::vector<std::string> expected, read;
  for (Id e : entries) expected.push_back(QBRuntime::usernameFrom(e));
  std::uint64_t unknownKeysBefore = sim::raisedCount("NSUnknownKeyException");
  host::UsernameReader reader;
  for (Id e : entries) read.push_back(reader(e));
  EXPECT_EQ(read, expected);
  EXPECT_EQ(sim::raisedCount("NSUnknownKeyException"), unknownKeysBefore)
      << "a key a class does not have is never asked for";
  EXPECT_EQ(expected, (std::vector<std::string>{"alice", "from accessor", "bob", "carol", "dave",
                                                "erin", "", "", "", "frank"}));
}

TEST_F(Toolkit, ContextAndServicesWithTheirFallBacks) {
  Id ctx = QBRuntime::mmContext();
  ASSERT_NE(ctx, nullptr);
  EXPECT_EQ(rt::className(ctx), "MMContext");
  Id center = QBRuntime::serviceCenter();
  EXPECT_EQ(rt::className(center), "MMServiceCenter");
  Id mgr = QBRuntime::serviceNamed("CContactMgr");
  EXPECT_EQ(rt::className(mgr), "CContactMgr");
  EXPECT_EQ(QBRuntime::serviceNamed("CContactMgr"), mgr) << "one service per class";
  EXPECT_EQ(QBRuntime::serviceNamed("NoSuchService"), nullptr);
  EXPECT_TRUE(logLines().empty());
}

class ToolkitFallBacks : public qbtest::HostWorld {};

TEST_F(ToolkitFallBacks, ContextFromTheManagerWhenTheClassMethodsAreMissing) {
  for (const char* s : {"activeUserContext", "currentContext", "rootContext"})
    host.build.lackingMethods.insert({"MMContext", "+" + std::string(s)});
  start();
  EXPECT_EQ(rt::className(QBRuntime::mmContext()), "MMContext")
      << "through MMContextManager sharedInstance";
}

TEST_F(ToolkitFallBacks, TheDefaultCenterWhenThereIsNoContext) {
  host.build.lackingClasses.insert("MMContext");
  start();
  EXPECT_EQ(QBRuntime::mmContext(), nullptr);
  EXPECT_EQ(rt::className(QBRuntime::serviceCenter()), "MMServiceCenter");
  EXPECT_EQ(rt::className(QBRuntime::serviceNamed("CContactMgr")), "CContactMgr");
}

TEST_F(ToolkitFallBacks, RaisingHostMethodsAreLoggedAndGiveNothing) {
  host.build.raisingMethods.insert({"MMContext", "activeUserContext"});
  host.build.raisingMethods.insert({"MMServiceCenter", "getService:"});
  start();
  EXPECT_EQ(QBRuntime::mmContext(), nullptr);
  EXPECT_EQ(QBRuntime::serviceNamed("CContactMgr"), nullptr);
  std::vector<std::string> log = logLines();
  ASSERT_GE(log.size(), 2u);
  EXPECT_EQ(log[0].rfind("[QB][stable] mmContext ex: ", 0), 0u) << log[0];
  EXPECT_EQ(log.back().rfind("[QB][stable] serviceNamed CContactMgr ex: ", 0), 0u) << log.back();
}

TEST_F(ToolkitFallBacks, KeyWindowAndTheViewControllerTreeBreadthFirst) {
  start();
  Id nav = rt::send<Id>(
      rt::send<Id>(rt::getClass("UINavigationController"), "alloc"),
      "initWithRootViewController:", rt::send<Id>(rt::getClass("UIViewController"), "new"));
  Id presented = rt::send<Id>(rt::getClass("UIViewController"), "new");
  Id keyWindow = QBRuntime::keyWindow();
  ASSERT_NE(keyWindow, nullptr);
  Id tabs = rt::send<Id>(keyWindow, "rootViewController");
  rt::send<void>(tabs, "setViewControllers:", rt::array({nav}));
  sim::present(tabs, presented);
  std::vector<Id> all = QBRuntime::collectViewControllers();
  Id inner = rt::send<Id>(nav, "topViewController");
  // tabs; its child nav, presented, nav again (as a tab); nav's child, nav's
  // stack; the second nav's child and stack.
  EXPECT_EQ(all, (std::vector<Id>{tabs, nav, presented, nav, inner, inner, inner, inner}));
  EXPECT_EQ(QBRuntime::topPresented(), presented);
  Id alert = rt::send<Id>(rt::getClass("UIViewController"), "new");
  sim::present(presented, alert);
  EXPECT_EQ(QBRuntime::topPresented(), alert) << "followed to the end of the chain";
  EXPECT_EQ(QBRuntime::lastPresented(alert), alert);
  EXPECT_EQ(QBRuntime::lastPresented(nullptr), nullptr);
}

// The scene's key window wins over the application's first window.
TEST_F(ToolkitFallBacks, TheKeyWindowIsTheScenesKeyWindowNotTheFirst) {
  start();
  Id first = QBRuntime::keyWindow();
  ASSERT_NE(first, nullptr);
  Id root = rt::send<Id>(rt::getClass("UIViewController"), "new");
  Id second = sim::addWindow(root, true);
  EXPECT_FALSE(rt::send<bool>(first, "isKeyWindow"));
  EXPECT_EQ(QBRuntime::keyWindow(), second);
  EXPECT_EQ(QBRuntime::collectViewControllers(), (std::vector<Id>{root}));
}

Id raisingChildren(Id, rt::SEL) { rt::raise("NSGenericException", "children broke"); }
Id raisingScenes(Id, rt::SEL) { rt::raise("NSGenericException", "scenes broke"); }

// An exception ends the walk with what it had collected; a key window that
// cannot be found is nothing. Both say so on the toolkit's tag.
TEST_F(ToolkitFallBacks, FailuresKeepWhatWasCollectedAndUseTheToolkitsTag) {
  start();
  rt::Class broken = sim::ClassBuilder("BrokenChildren", "UIViewController")
                         .method("childViewControllers", raisingChildren)
                         .build();
  Id plain = rt::send<Id>(rt::getClass("UIViewController"), "new");
  Id bad = rt::send<Id>(broken, "new");
  Id tabs = rt::send<Id>(QBRuntime::keyWindow(), "rootViewController");
  rt::send<void>(tabs, "setViewControllers:", rt::array({plain, bad}));
  EXPECT_EQ(QBRuntime::collectViewControllers(), (std::vector<Id>{tabs, plain, bad}));
  ASSERT_FALSE(logLines().empty());
  EXPECT_EQ(logLines().back(), "[QB][stable] QBRuntime collectViewControllers ex: children broke");
  rt::setImplementation(
      rt::getInstanceMethod(rt::getClass("UIApplication"), rt::sel("connectedScenes")),
      reinterpret_cast<rt::IMP>(raisingScenes));
  EXPECT_EQ(QBRuntime::keyWindow(), nullptr);
  EXPECT_EQ(logLines().back(), "[QB][stable] QBRuntime keyWindow ex: scenes broke");
}

TEST_F(ToolkitFallBacks, NoWindowsMeansNothing) {
  host.build.lackingClasses.insert("MMContext");
  process = std::make_unique<sim::Process>(device);  // no launch: no windows
  EXPECT_EQ(QBRuntime::keyWindow(), nullptr);
  EXPECT_TRUE(QBRuntime::collectViewControllers().empty());
}

}  // namespace
