// The runtime behaviour the system relies on, tested the way objc4 tests
// method exchange: before, after, with null arguments, and exchanged back.
#include <gtest/gtest.h>

#include <cstdio>

#include "rt/exception.hpp"
#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/runtime/class_builder.hpp"
#include "support/sim_world.hpp"

namespace {

using rt::Id;
using rt::SEL;

long answerOne(Id, SEL) { return 1; }
long answerTwo(Id, SEL) { return 2; }
long answerThree(Id, SEL) { return 3; }
long answerTen(Id, SEL) { return 10; }
Id echo(Id, SEL, Id x) { return x; }

class RuntimeContract : public qbtest::SimWorld {
 protected:
  void SetUp() override {
    base = sim::ClassBuilder("Base").method("one", answerOne).method("two", answerTwo).build();
    derived = sim::ClassBuilder("Derived", "Base").method("three", answerThree).build();
    b = rt::send<Id>(base, "new");
    d = rt::send<Id>(derived, "new");
  }
  long ask(Id obj, const char* sel) { return rt::send<long>(obj, sel); }

  rt::Class base = nullptr, derived = nullptr;
  Id b = nullptr, d = nullptr;
};

TEST_F(RuntimeContract, ExchangeSwapsImplementationsAndBack) {
  rt::Method one = rt::getInstanceMethod(base, rt::sel("one"));
  rt::Method two = rt::getInstanceMethod(base, rt::sel("two"));
  EXPECT_EQ(ask(b, "one"), 1);
  rt::exchangeImplementations(one, two);
  EXPECT_EQ(ask(b, "one"), 2);
  EXPECT_EQ(ask(b, "two"), 1);
  EXPECT_EQ(ask(d, "one"), 2) << "a subclass sees the exchange through its cache";
  rt::exchangeImplementations(one, two);
  EXPECT_EQ(ask(b, "one"), 1);
  EXPECT_EQ(ask(b, "two"), 2);
}

TEST_F(RuntimeContract, ExchangeWithNullChangesNothing) {
  rt::Method one = rt::getInstanceMethod(base, rt::sel("one"));
  rt::exchangeImplementations(one, nullptr);
  rt::exchangeImplementations(nullptr, one);
  rt::exchangeImplementations(nullptr, nullptr);
  EXPECT_EQ(ask(b, "one"), 1);
  EXPECT_EQ(rt::methodImplementation(one), reinterpret_cast<rt::IMP>(answerOne));
}

TEST_F(RuntimeContract, ExchangingAnInheritedMethodChangesTheSuperclass) {
  rt::Method inheritedOne = rt::getInstanceMethod(derived, rt::sel("one"));
  rt::Method three = rt::getInstanceMethod(derived, rt::sel("three"));
  ASSERT_EQ(inheritedOne, rt::getInstanceMethod(base, rt::sel("one")))
      << "the superclass's own record";
  rt::exchangeImplementations(inheritedOne, three);
  EXPECT_EQ(ask(b, "one"), 3);
  EXPECT_EQ(ask(d, "one"), 3);
  EXPECT_EQ(ask(d, "three"), 1);
}

TEST_F(RuntimeContract, AddMethodRefusesOwnButOverridesInherited) {
  SEL one = rt::sel("one");
  EXPECT_FALSE(rt::addMethod(base, one, reinterpret_cast<rt::IMP>(answerTen), "q@:"));
  EXPECT_EQ(ask(b, "one"), 1);
  EXPECT_TRUE(rt::addMethod(derived, one, reinterpret_cast<rt::IMP>(answerTen), "q@:"));
  EXPECT_EQ(ask(d, "one"), 10) << "the cached inherited lookup must be dropped";
  EXPECT_EQ(ask(b, "one"), 1) << "the superclass keeps its own";
  EXPECT_FALSE(rt::addMethod(derived, one, reinterpret_cast<rt::IMP>(answerTwo), "q@:"));
  EXPECT_FALSE(rt::addMethod(nullptr, one, reinterpret_cast<rt::IMP>(answerTwo), "q@:"));
  EXPECT_FALSE(rt::addMethod(derived, nullptr, reinterpret_cast<rt::IMP>(answerTwo), "q@:"));
  EXPECT_FALSE(rt::addMethod(derived, rt::sel("four"), nullptr, "q@:"));
  EXPECT_FALSE(rt::respondsTo(d, rt::sel("four")));
}

TEST_F(RuntimeContract, SetImplementationReturnsTheOldOne) {
  rt::Method one = rt::getInstanceMethod(base, rt::sel("one"));
  rt::IMP old = rt::setImplementation(one, reinterpret_cast<rt::IMP>(answerTen));
  EXPECT_EQ(old, reinterpret_cast<rt::IMP>(answerOne));
  EXPECT_EQ(ask(d, "one"), 10);
  EXPECT_EQ(rt::call<long>(old, b, rt::sel("one")), 1)
      << "a stored original still reaches the old behaviour";
  EXPECT_EQ(rt::setImplementation(one, nullptr), nullptr);
  EXPECT_EQ(rt::setImplementation(nullptr, reinterpret_cast<rt::IMP>(answerOne)), nullptr);
  EXPECT_EQ(ask(b, "one"), 10);
}

TEST_F(RuntimeContract, LookupAndRespondsFollowSuperclassesAndMetaclasses) {
  EXPECT_TRUE(rt::respondsTo(d, rt::sel("one")));
  EXPECT_FALSE(rt::respondsTo(b, rt::sel("three")));
  EXPECT_TRUE(rt::respondsTo(rt::toId(derived), rt::sel("new")))
      << "class methods are the metaclass's";
  EXPECT_FALSE(rt::respondsTo(rt::toId(derived), rt::sel("three")));
  EXPECT_TRUE(rt::respondsTo(rt::toId(derived), rt::sel("description")))
      << "the root metaclass inherits the root class's instance methods";
  EXPECT_FALSE(rt::respondsTo(nullptr, rt::sel("one")));
  EXPECT_FALSE(rt::respondsTo(d, nullptr));
  EXPECT_EQ(rt::getClassMethod(derived, rt::sel("new")),
            rt::getClassMethod(rt::getClass("NSObject"), rt::sel("new")));
  EXPECT_EQ(rt::getInstanceMethod(nullptr, rt::sel("one")), nullptr);
  EXPECT_TRUE(rt::isKindOf(d, base));
  EXPECT_FALSE(rt::isKindOf(b, derived));
  EXPECT_TRUE(rt::isKindOf(d, "NSObject"));
  EXPECT_FALSE(rt::isKindOf(d, "NoSuchClass"));
  EXPECT_EQ(rt::className(d), "Derived");
  EXPECT_EQ(rt::className(rt::toId(derived)), "Derived");
  EXPECT_EQ(rt::className(static_cast<Id>(nullptr)), "nil");
  EXPECT_TRUE(rt::isMetaclass(rt::classOf(rt::toId(derived))));
  EXPECT_EQ(rt::superclass(derived), base);
}

TEST_F(RuntimeContract, MessagesToNilAnswerZeroAndUnknownSelectorsRaise) {
  EXPECT_EQ(rt::send<long>(static_cast<Id>(nullptr), "one"), 0);
  EXPECT_EQ(rt::send<Id>(static_cast<Id>(nullptr), "anything:", d), nullptr);
  try {
    rt::send<long>(b, "three");
    FAIL() << "an unanswered message must raise";
  } catch (const rt::Exception& e) {
    EXPECT_EQ(e.name, "NSInvalidArgumentException");
    EXPECT_NE(e.reason.find("-[Base three]: unrecognized selector"), std::string::npos) << e.reason;
  }
}

TEST_F(RuntimeContract, CallsWithTheWrongTypesRaiseAndAreRecorded) {
  allowViolations();
  EXPECT_THROW(rt::send<int>(b, "one"), rt::Exception) << "the method returns NSInteger, not int";
  EXPECT_THROW(rt::send<long>(b, "one", 5L), rt::Exception) << "extra argument";
  rt::Method one = rt::getInstanceMethod(base, rt::sel("one"));
  EXPECT_THROW(rt::call<bool>(rt::methodImplementation(one), b, rt::sel("one")), rt::Exception);
  EXPECT_THROW(rt::call<long>(nullptr, b, rt::sel("one")), rt::Exception) << "a null slot";
  EXPECT_EQ(process.runtime().violations().size(), 4u);
  // An encoding with offsets and qualifiers still matches its C++ type.
  rt::addMethod(base, rt::sel("echo:"), reinterpret_cast<rt::IMP>(echo), "@24@0:8r@16");
  Id s = rt::str("x");
  EXPECT_EQ(rt::send<Id>(b, "echo:", s), s);
}

TEST_F(RuntimeContract, RaisingImplementationsFollowTheImplementationNotTheRecord) {
  rt::Method one = rt::getInstanceMethod(base, rt::sel("one"));
  rt::Method two = rt::getInstanceMethod(base, rt::sel("two"));
  process.runtime().makeRaising(rt::methodImplementation(one), "host fault");
  EXPECT_THROW(ask(b, "one"), rt::Exception);
  rt::exchangeImplementations(one, two);
  EXPECT_EQ(ask(b, "one"), 2);
  EXPECT_THROW(ask(b, "two"), rt::Exception) << "the faulty implementation moved with the exchange";
}

TEST_F(RuntimeContract, DefinedClassesInstanceVariablesAndRegistration) {
  rt::Class cls = rt::allocateClassPair(base, "Defined");
  ASSERT_NE(cls, nullptr);
  EXPECT_EQ(rt::getClass("Defined"), nullptr) << "not found before it is registered";
  EXPECT_TRUE(rt::addIvar(cls, "m_value", "@"));
  EXPECT_FALSE(rt::addIvar(cls, "m_value", "@"));
  rt::registerClassPair(cls);
  EXPECT_EQ(rt::getClass("Defined"), cls);
  EXPECT_FALSE(rt::addIvar(cls, "late", "@")) << "no ivars after registering";
  EXPECT_EQ(rt::allocateClassPair(base, "Defined"), nullptr) << "the name is taken";
  Id obj = rt::send<Id>(cls, "new");
  rt::Ivar iv = rt::getInstanceVariable(cls, "m_value");
  ASSERT_NE(iv, nullptr);
  EXPECT_EQ(rt::ivarObject(obj, iv), nullptr);
  rt::setIvarObject(obj, iv, rt::str("v"));
  EXPECT_EQ(rt::asString(rt::ivarObject(obj, iv)), "v");
  EXPECT_EQ(rt::getInstanceVariable(cls, "missing"), nullptr);
  EXPECT_EQ(rt::ivarObject(nullptr, iv), nullptr);
  EXPECT_EQ(rt::send<long>(obj, "one"), 1) << "inherits Base's methods";
}

// The look-up by name the host's screens and the system's filters use: the
// class's own variables and its superclasses', nil where there is nothing to
// read, and no write where there is nothing to write.
TEST_F(RuntimeContract, InstanceVariablesByName) {
  rt::Class parent = sim::ClassBuilder("Holder").ivar("m_owned", "@").ivar("m_count", "q").build();
  rt::Class child = sim::ClassBuilder("SubHolder", "Holder").ivar("m_own", "@").build();
  Id obj = rt::send<Id>(child, "new");
  Id value = rt::str("kept");
  rt::setIvarNamed(obj, "m_owned", value);
  rt::setIvarNamed(obj, "m_own", rt::str("mine"));
  EXPECT_EQ(rt::ivarNamed(obj, "m_owned"), value) << "inherited from the superclass";
  EXPECT_EQ(rt::ivarObject(obj, rt::getInstanceVariable(parent, "m_owned")), value)
      << "the same slot the superclass's variable names";
  EXPECT_EQ(rt::asString(rt::ivarNamed(obj, "m_own")), "mine");

  EXPECT_EQ(rt::ivarNamed(obj, "m_missing"), nullptr);
  rt::setIvarNamed(obj, "m_missing", value);  // nothing to write: no crash, no effect
  EXPECT_EQ(rt::ivarNamed(obj, "m_owned"), value);
  rt::setIvarNamed(obj, "m_count", value);  // not object-typed: left alone
  EXPECT_EQ(rt::ivarNamed(obj, "m_count"), nullptr);

  EXPECT_EQ(rt::ivarNamed(nullptr, "m_owned"), nullptr);
  rt::setIvarNamed(nullptr, "m_owned", value);

  Id other = rt::send<Id>(parent, "new");
  EXPECT_EQ(rt::ivarNamed(other, "m_owned"), nullptr) << "each instance has its own slots";
  EXPECT_EQ(rt::ivarNamed(other, "m_own"), nullptr) << "a subclass's variable is not the parent's";
}

TEST_F(RuntimeContract, AssociatedObjectsReplaceAndRemove) {
  static const char keyA = 0, keyB = 0;
  EXPECT_EQ(rt::getAssociatedObject(b, &keyA), nullptr);
  rt::setAssociatedObject(b, &keyA, rt::str("first"));
  rt::setAssociatedObject(b, &keyB, rt::str("other"));
  rt::setAssociatedObject(b, &keyA, rt::str("second"));
  EXPECT_EQ(rt::asString(rt::getAssociatedObject(b, &keyA)), "second");
  EXPECT_EQ(rt::asString(rt::getAssociatedObject(b, &keyB)), "other");
  EXPECT_EQ(rt::getAssociatedObject(d, &keyA), nullptr) << "per object";
  rt::setAssociatedObject(b, &keyA, nullptr);
  EXPECT_EQ(rt::getAssociatedObject(b, &keyA), nullptr);
  rt::setAssociatedObject(nullptr, &keyA, rt::str("x"));
  EXPECT_EQ(rt::getAssociatedObject(nullptr, &keyA), nullptr);
}

TEST_F(RuntimeContract, SelectorsAreUniqueAndOutliveProcesses) {
  SEL a = rt::sel("tableView:numberOfRowsInSection:");
  EXPECT_EQ(a, rt::sel("tableView:numberOfRowsInSection:"));
  EXPECT_EQ(rt::selName(a), "tableView:numberOfRowsInSection:");
  EXPECT_EQ(rt::sel(""), nullptr);
  EXPECT_EQ(rt::selName(nullptr), "");
}

// Selectors and strings are looked up by where their text lives; a buffer
// that is reused for another name must still give that name.
TEST_F(RuntimeContract, NamesInAReusedBufferGiveTheirOwnSelectorAndString) {
  char buffer[32] = "one";
  SEL one = rt::sel(std::string_view(buffer));
  Id oneText = rt::str(std::string_view(buffer));
  std::snprintf(buffer, sizeof buffer, "two");
  EXPECT_EQ(rt::sel(std::string_view(buffer)), rt::sel("two"));
  EXPECT_NE(rt::sel(std::string_view(buffer)), one);
  EXPECT_EQ(rt::asString(rt::str(std::string_view(buffer))), "two");
  EXPECT_NE(rt::str(std::string_view(buffer)), oneText);
  EXPECT_EQ(rt::str(std::string_view(buffer, 2)), rt::str("tw")) << "same start, other length";
}

// A miss is remembered by the lookup caches; a method added afterwards, here
// or on a superclass, must still be found.
TEST_F(RuntimeContract, MethodsAddedAfterAMissAreFound) {
  SEL late = rt::sel("late");
  EXPECT_FALSE(rt::respondsTo(d, late));
  EXPECT_FALSE(rt::respondsTo(d, late));
  ASSERT_TRUE(rt::addMethod(base, late, reinterpret_cast<rt::IMP>(answerTen), "q16@0:8"));
  EXPECT_TRUE(rt::respondsTo(d, late));
  EXPECT_EQ(ask(d, "late"), 10);
  ASSERT_TRUE(rt::addMethod(derived, late, reinterpret_cast<rt::IMP>(answerThree), "q16@0:8"));
  EXPECT_EQ(ask(d, "late"), 3);
  EXPECT_EQ(ask(b, "late"), 10);
}

TEST(RuntimeProcesses, EveryProcessStartsWithAnUnhookedRuntime) {
  sim::Device device;
  {
    sim::Process first(device);
    rt::Class c = sim::ClassBuilder("Host").method("one", answerOne).build();
    rt::setImplementation(rt::getInstanceMethod(c, rt::sel("one")),
                          reinterpret_cast<rt::IMP>(answerTen));
    EXPECT_EQ(rt::send<long>(rt::send<Id>(c, "new"), "one"), 10);
  }
  sim::Process second(device);
  EXPECT_EQ(rt::getClass("Host"), nullptr);
  rt::Class c = sim::ClassBuilder("Host").method("one", answerOne).build();
  EXPECT_EQ(rt::send<long>(rt::send<Id>(c, "new"), "one"), 1);
}

// Caches that outlive a process must not hand its objects to the next one.
// The processes are nested, so the first one's objects are still alive and
// a stale answer would be a live, wrong object.
TEST(RuntimeProcesses, InternedStringsAndLookupsBelongToTheirProcess) {
  sim::Device device;
  auto text = [] { return rt::str("interned"); };
  sim::Process first(device);
  Id firstText = text();
  rt::Class firstHost = sim::ClassBuilder("Host").method("one", answerOne).build();
  EXPECT_TRUE(rt::respondsTo(rt::send<Id>(firstHost, "new"), rt::sel("one")));
  {
    sim::Process second(device);
    Id secondText = text();
    EXPECT_NE(secondText, firstText);
    EXPECT_TRUE(rt::isKindOf(secondText, "NSString"));
    rt::Class host = sim::ClassBuilder("Host").method("two", answerOne).build();
    Id obj = rt::send<Id>(host, "new");
    EXPECT_FALSE(rt::respondsTo(obj, rt::sel("one")));
    EXPECT_TRUE(rt::respondsTo(obj, rt::sel("two")));
  }
  EXPECT_EQ(text(), firstText);
  EXPECT_FALSE(rt::respondsTo(rt::send<Id>(firstHost, "new"), rt::sel("two")));
}

}  // namespace
