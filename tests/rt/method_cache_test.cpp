// The method caches, tested as objc4 tests its own: every case warms the
// caches with a send first, then changes a method, and the next send must
// answer with the change. A cache that answers stale once is a hook that does
// not run.
#include <gtest/gtest.h>

#include "rt/exception.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/runtime/class_builder.hpp"
#include "support/sim_world.hpp"

namespace {

using rt::Id;
using rt::IMP;
using rt::SEL;

long one(Id, SEL) { return 1; }
long two(Id, SEL) { return 2; }
long three(Id, SEL) { return 3; }
long ten(Id, SEL) { return 10; }
long twenty(Id, SEL) { return 20; }
long shifted(Id, SEL, long x) { return x + 100; }
long seven(Id, SEL) { return 7; }

template <typename F>
IMP imp(F* fn) {
  return reinterpret_cast<IMP>(fn);
}

// Base ← Middle ← Leaf, each with one instance made; Base answers `a` and `b`
// and the class method `make`.
class MethodCache : public qbtest::SimWorld {
 protected:
  void SetUp() override {
    base = sim::ClassBuilder("Base")
               .method("a", one)
               .method("b", two)
               .classMethod("make", three)
               .build();
    middle = sim::ClassBuilder("Middle", "Base").build();
    leaf = sim::ClassBuilder("Leaf", "Middle").build();
    b = rt::send<Id>(base, "new");
    m = rt::send<Id>(middle, "new");
    l = rt::send<Id>(leaf, "new");
  }
  static long ask(Id obj, const char* sel) { return rt::send<long>(obj, sel); }
  static long askClass(rt::Class cls, const char* sel) { return rt::send<long>(cls, sel); }
  // Every instance answers `sel`, so every class's cache holds it.
  void warm(const char* sel) {
    for (Id obj : {b, m, l}) ask(obj, sel);
  }

  rt::Class base = nullptr, middle = nullptr, leaf = nullptr;
  Id b = nullptr, m = nullptr, l = nullptr;
};

TEST_F(MethodCache, ExchangeAndExchangeBackReachEveryCachedSubclass) {
  warm("a");
  warm("b");
  rt::Method a = rt::getInstanceMethod(base, rt::sel("a"));
  rt::Method bm = rt::getInstanceMethod(base, rt::sel("b"));
  rt::exchangeImplementations(a, bm);
  for (Id obj : {b, m, l}) {
    EXPECT_EQ(ask(obj, "a"), 2) << rt::className(obj);
    EXPECT_EQ(ask(obj, "b"), 1) << rt::className(obj);
  }
  rt::exchangeImplementations(a, bm);
  for (Id obj : {b, m, l}) {
    EXPECT_EQ(ask(obj, "a"), 1) << "exchanged back: " << rt::className(obj);
    EXPECT_EQ(ask(obj, "b"), 2) << "exchanged back: " << rt::className(obj);
  }
}

// A hook installed on the subclass (add, then exchange with the inherited
// record) changes the superclass's record only when it exchanges first.
TEST_F(MethodCache, AddingToASubclassAfterTheSuperclassMethodWasCached) {
  warm("a");
  ASSERT_TRUE(rt::addMethod(middle, rt::sel("a"), imp(ten), "q16@0:8"));
  EXPECT_EQ(ask(b, "a"), 1) << "the superclass keeps its own";
  EXPECT_EQ(ask(m, "a"), 10);
  EXPECT_EQ(ask(l, "a"), 10) << "a subclass of the changed class must be flushed too";
  EXPECT_EQ(rt::getInstanceMethod(leaf, rt::sel("a")), rt::getInstanceMethod(middle, rt::sel("a")));
}

TEST_F(MethodCache, ReplacingAnImplementationReachesEveryCache) {
  warm("a");
  rt::Method a = rt::getInstanceMethod(middle, rt::sel("a"));  // Base's record, inherited
  IMP old = rt::setImplementation(a, imp(twenty));
  for (Id obj : {b, m, l}) EXPECT_EQ(ask(obj, "a"), 20) << rt::className(obj);
  EXPECT_EQ(rt::call<long>(old, l, rt::sel("a")), 1) << "the stored original still runs";
  rt::setImplementation(a, old);
  for (Id obj : {b, m, l}) EXPECT_EQ(ask(obj, "a"), 1) << "put back: " << rt::className(obj);
}

TEST_F(MethodCache, ClassMethodsAreCachedPerMetaclassAndFlushedWithThem) {
  EXPECT_EQ(askClass(leaf, "make"), 3);
  EXPECT_EQ(askClass(middle, "make"), 3);
  rt::Method make = rt::getClassMethod(base, rt::sel("make"));
  rt::setImplementation(make, imp(ten));
  EXPECT_EQ(askClass(leaf, "make"), 10);
  ASSERT_TRUE(rt::addClassMethod(middle, rt::sel("make"), twenty));
  EXPECT_EQ(askClass(leaf, "make"), 20) << "added to the superclass's metaclass after caching";
  EXPECT_EQ(askClass(base, "make"), 10);
  EXPECT_FALSE(rt::respondsTo(l, rt::sel("make"))) << "instances do not answer class methods";
}

// A category adds methods to a class whose caches are warm, misses included.
TEST_F(MethodCache, ACategoryAddedAfterTheFirstSendIsFound) {
  EXPECT_THROW(ask(l, "late"), rt::Exception);  // the miss is cached
  EXPECT_FALSE(rt::respondsTo(m, rt::sel("late")));
  ASSERT_TRUE(rt::addMethod(base, rt::sel("late"), imp(ten), "q16@0:8"));
  EXPECT_EQ(ask(l, "late"), 10);
  EXPECT_EQ(ask(m, "late"), 10);
  // On the root class an instance method is also every class's class method:
  // the root metaclass inherits from the root class.
  EXPECT_FALSE(rt::respondsTo(rt::toId(leaf), rt::sel("rootLate")));
  ASSERT_TRUE(rt::addMethod(rt::getClass("NSObject"), rt::sel("rootLate"), imp(twenty), "q16@0:8"));
  EXPECT_EQ(askClass(leaf, "rootLate"), 20);
  EXPECT_EQ(ask(l, "rootLate"), 20);
}

// The cache never weakens the type check: a send or a stored-IMP call with
// other types raises even when the same method answered a moment before.
TEST_F(MethodCache, EverySendIsTypeCheckedEvenFromTheCache) {
  allowViolations();
  warm("a");
  EXPECT_THROW(rt::send<long>(l, "a", long(5)), rt::Exception);
  EXPECT_THROW(rt::send<double>(l, "a"), rt::Exception);
  EXPECT_EQ(ask(l, "a"), 1) << "the right call still answers";
  ASSERT_TRUE(rt::addMethod(leaf, rt::sel("shift:"), shifted));
  IMP stored = rt::methodImplementation(rt::getInstanceMethod(leaf, rt::sel("shift:")));
  EXPECT_EQ(rt::call<long>(stored, l, rt::sel("shift:"), long(1)), 101);
  EXPECT_THROW(rt::call<long>(stored, l, rt::sel("shift:")), rt::Exception);
  EXPECT_THROW(rt::call<long>(stored, l, rt::sel("shift:"), 1.5), rt::Exception);
  EXPECT_EQ(rt::call<long>(stored, l, rt::sel("shift:"), long(2)), 102);
  EXPECT_EQ(process.runtime().violations().size(), 4u);
}

// A stored IMP called while its types were unknown is checked once they are
// known, even as the very call that passed before.
TEST_F(MethodCache, StoredCallsFollowTypesNotedLater) {
  allowViolations();
  IMP raw = imp(seven);
  EXPECT_EQ(rt::call<long>(raw, l, rt::sel("seven"), long(1)), 7) << "no types known yet";
  ASSERT_TRUE(rt::addMethod(leaf, rt::sel("seven"), seven));
  EXPECT_THROW(rt::call<long>(raw, l, rt::sel("seven"), long(1)), rt::Exception);
  EXPECT_EQ(rt::call<long>(raw, l, rt::sel("seven")), 7);
}

}  // namespace
