// The guarded-hook primitive: its four ways of installing and its one failure
// policy (the host's original answers at most once; the body's own failure
// falls back to the host; the host's own exception is left alone).
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "host/hook.hpp"
#include "rt/exception.hpp"
#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/runtime/class_builder.hpp"
#include "sim/runtime/runtime.hpp"
#include "support/sim_world.hpp"

namespace {

using rt::Id;
using rt::SEL;

// The host's side: counts its calls and can be told to raise.
int hostCalls = 0;
bool hostRaises = false;
long lastHostArg = -1;

long hostDouble(Id, SEL, long x) {
  ++hostCalls;
  lastHostArg = x;
  if (hostRaises) rt::raise("HostException", "host failed");
  return 2 * x;
}
long hostClassTriple(Id, SEL, long x) {
  ++hostCalls;
  return 3 * x;
}
void hostAppear(Id, SEL, bool) { ++hostCalls; }

// What the replacement body does this time.
enum class Body { AskPlus1, AskThenFail, FailBeforeAsking, AskTwice, ProbeOtherArg, OurBug };
Body body = Body::AskPlus1;
host::Hook<long(long)> hook;

long replacement(Id self, SEL cmd, long x) {
  return hook.run(
      "[QB] test ex: %@",
      [&](host::Hook<long(long)>::Original& original) -> long {
        switch (body) {
          case Body::AskPlus1:
            return original(x) + 1;
          case Body::AskThenFail:
            original(x);
            rt::raise("Mine", "after asking");
          case Body::FailBeforeAsking:
            rt::raise("Mine", "before asking");
          case Body::AskTwice:
            return original(x) + original(x + 100);
          case Body::ProbeOtherArg:
            return original(x + 1);
          case Body::OurBug:
            return std::vector<long>{}.at(std::size_t(x));  // std::out_of_range
        }
        return 0;
      },
      self, cmd, x);
}

class HookPolicy : public qbtest::SimWorld {
 protected:
  void SetUp() override {
    hostCalls = 0, hostRaises = false, lastHostArg = -1, body = Body::AskPlus1;
    hook = {};
    cls = sim::ClassBuilder("HostThing")
              .method("twice:", hostDouble)
              .classMethod("thrice:", hostClassTriple)
              .build();
    obj = rt::send<Id>(cls, "new");
  }
  long ask(long x) { return rt::send<long>(obj, "twice:", x); }
  int logged(const std::string& text) {
    int n = 0;
    for (const auto& l : device.log()) n += l.text.find(text) != std::string::npos;
    return n;
  }

  rt::Class cls = nullptr;
  Id obj = nullptr;
};

TEST_F(HookPolicy, ReplacedMethodAnswersThroughTheBodyAndAsksTheHostOnce) {
  ASSERT_TRUE(hook.replace(cls, "twice:", replacement));
  EXPECT_TRUE(hook.installed());
  EXPECT_EQ(ask(5), 11);
  EXPECT_EQ(hostCalls, 1);
  body = Body::AskTwice;
  EXPECT_EQ(ask(5), 20) << "a second ask gives the first answer back";
  EXPECT_EQ(hostCalls, 2);
  EXPECT_EQ(lastHostArg, 5);
}

TEST_F(HookPolicy, BodyFailureFallsBackToTheHostForTheUnchangedArgument) {
  hook.replace(cls, "twice:", replacement);
  body = Body::FailBeforeAsking;
  EXPECT_EQ(ask(7), 14);
  EXPECT_EQ(hostCalls, 1);
  EXPECT_EQ(lastHostArg, 7);
  EXPECT_EQ(logged("[QB] test ex: before asking"), 1);
  EXPECT_TRUE(process.runtime().violations().empty()) << "a host exception is no fault of ours";
}

// A plain C++ fault in a body still leaves the host working, but it is ours:
// logged like any failure and recorded, so the test that caused it fails.
TEST_F(HookPolicy, OurOwnFaultFallsBackLogsAndIsRecorded) {
  allowViolations();
  hook.replace(cls, "twice:", replacement);
  body = Body::OurBug;
  EXPECT_EQ(ask(6), 12);
  EXPECT_EQ(hostCalls, 1);
  EXPECT_EQ(logged("[QB] test ex: "), 1);
  auto v = process.runtime().violations();
  ASSERT_EQ(v.size(), 1u);
  EXPECT_EQ(v[0].rfind("internal failure: ", 0), 0u) << v[0];
}

TEST_F(HookPolicy, FailureAfterAskingKeepsTheHostsAnswerWithoutAskingAgain) {
  hook.replace(cls, "twice:", replacement);
  body = Body::AskThenFail;
  EXPECT_EQ(ask(4), 8);
  EXPECT_EQ(hostCalls, 1);
  body = Body::ProbeOtherArg;
  EXPECT_EQ(ask(4), 10) << "the body may ask the host for other arguments";
}

TEST_F(HookPolicy, TheHostsOwnExceptionLeavesUnchangedAndIsNotRetried) {
  hook.replace(cls, "twice:", replacement);
  hostRaises = true;
  try {
    ask(3);
    FAIL() << "the host's exception was swallowed";
  } catch (const rt::Exception& e) {
    EXPECT_EQ(e.name, "HostException");
  }
  EXPECT_EQ(hostCalls, 1);
  EXPECT_EQ(logged("[QB] test ex:"), 0) << "not the replacement's failure";
}

TEST_F(HookPolicy, WithoutAnOriginalTheFallbackAnswers) {
  hook.fallback = 42;
  EXPECT_FALSE(hook.replace(cls, "missing:", replacement));
  EXPECT_FALSE(hook.installed());
  body = Body::FailBeforeAsking;
  EXPECT_EQ(replacement(obj, rt::sel("missing:"), 1), 42);
  body = Body::AskPlus1;
  EXPECT_EQ(replacement(obj, rt::sel("missing:"), 1), 43);
  EXPECT_EQ(hostCalls, 0);
}

long classReplacement(Id self, SEL cmd, long x) {
  return hook.run(
      "[QB] test class ex: %@",
      [&](host::Hook<long(long)>::Original& original) { return original(x) * 10; }, self, cmd, x);
}

TEST_F(HookPolicy, ClassMethodSetDirectly) {
  ASSERT_TRUE(hook.setClassMethod(cls, "thrice:", classReplacement));
  EXPECT_EQ(rt::send<long>(cls, "thrice:", 2L), 60);
  EXPECT_FALSE(host::Hook<long(long)>().setClassMethod(cls, "absent:", classReplacement));
  EXPECT_FALSE(host::Hook<long(long)>().setClassMethod(nullptr, "thrice:", classReplacement));
}

TEST_F(HookPolicy, ClassMethodAddedToTheMetaclassAndExchanged) {
  ASSERT_TRUE(
      hook.exchangeClassMethod(cls, "thrice:", "qb_thrice:", classReplacement, "q24@0:8q16"));
  EXPECT_EQ(rt::send<long>(cls, "thrice:", 2L), 60);
  EXPECT_EQ(rt::send<long>(cls, "qb_thrice:", 2L), 6) << "the qb_ name reaches the host's code";
  EXPECT_EQ(hostCalls, 2);
}

host::Hook<void(bool)> appear;
int actions = 0;
bool actFails = false;

void qbAppear(Id self, SEL cmd, bool animated) {
  appear.run(
      "[QB] test appear ex: %@",
      [&](host::Hook<void(bool)>::Original& original) {
        original(animated);
        if (actFails) rt::raise("Mine", "act failed");
        ++actions;
      },
      self, cmd, animated);
}

TEST_F(HookPolicy, SwizzledOnOneClassAsksTheHostFirstAndNeverTwice) {
  rt::Class screen = sim::ClassBuilder("Screen").method("appear:", hostAppear).build();
  rt::Class other = sim::ClassBuilder("OtherScreen").method("appear:", hostAppear).build();
  appear = {};
  actions = 0, actFails = false;
  ASSERT_TRUE(appear.swizzle(screen, screen, "appear:", "qb_appear:", qbAppear));
  rt::send<void>(rt::send<Id>(screen, "new"), "appear:", true);
  EXPECT_EQ(hostCalls, 1);
  EXPECT_EQ(actions, 1);
  actFails = true;
  rt::send<void>(rt::send<Id>(screen, "new"), "appear:", true);
  EXPECT_EQ(hostCalls, 2) << "a failing act after the host's call does not call the host again";
  rt::send<void>(rt::send<Id>(other, "new"), "appear:", true);
  EXPECT_EQ(actions, 1) << "another class is not hooked";
  EXPECT_EQ(hostCalls, 3);
}

// The host's integer in other widths and signs.
unsigned long long hostTwiceUnsigned(Id, SEL, unsigned long long x) {
  ++hostCalls;
  return 2 * x;
}
unsigned hostTwiceNarrow(Id, SEL, unsigned x) {
  ++hostCalls;
  return 2 * x;
}
long hostTwiceWithMore(Id, SEL, long x, Id) {
  ++hostCalls;
  return 2 * x;
}

TEST_F(HookPolicy, AHostIntegerOfTheSameWidthButOtherSignIsTheSameCall) {
  rt::Class wide = sim::ClassBuilder("WideHost").method("twice:", hostTwiceUnsigned).build();
  ASSERT_TRUE(hook.replace(wide, "twice:", replacement));
  Id w = rt::send<Id>(wide, "new");
  EXPECT_EQ(rt::send<unsigned long long>(w, "twice:", 5ULL), 11u);
  EXPECT_EQ(host::hookTally().installed, 1);
  EXPECT_EQ(logged("hook skipped"), 0);
}

TEST_F(HookPolicy, AHostMethodOfOtherTypesKeepsItsOwnCodeAndIsNamedOnce) {
  rt::Class narrow = sim::ClassBuilder("NarrowHost").method("twice:", hostTwiceNarrow).build();
  rt::Class more = sim::ClassBuilder("MoreHost").method("twice:", hostTwiceWithMore).build();
  rt::Class meta = sim::ClassBuilder("ClassHost").classMethod("thrice:", hostTwiceNarrow).build();
  EXPECT_FALSE(hook.replace(narrow, "twice:", replacement));
  EXPECT_FALSE(hook.swizzle(more, more, "twice:", "qb_twice:", replacement));
  EXPECT_FALSE(hook.setClassMethod(meta, "thrice:", classReplacement));
  EXPECT_FALSE(
      hook.exchangeClassMethod(meta, "thrice:", "qb_thrice:", classReplacement, "I20@0:8I16"));
  EXPECT_FALSE(hook.installed());
  EXPECT_FALSE(rt::respondsTo(rt::send<Id>(more, "new"), rt::sel("qb_twice:")))
      << "nothing was added to the host's class";
  EXPECT_EQ(rt::send<unsigned>(rt::send<Id>(narrow, "new"), "twice:", 4u), 8u);
  EXPECT_EQ(rt::send<long>(rt::send<Id>(more, "new"), "twice:", 4L, Id{nullptr}), 8);
  EXPECT_EQ(rt::send<unsigned>(meta, "thrice:", 4u), 8u);
  EXPECT_EQ(logged("[QB] hook skipped -[NarrowHost twice:]: host types I@:I, hook types q@:q"), 1);
  EXPECT_EQ(logged("[QB] hook skipped -[MoreHost twice:]"), 1);
  EXPECT_EQ(logged("[QB] hook skipped +[ClassHost thrice:]"), 2);
  const host::HookTally& t = host::hookTally();
  EXPECT_EQ(t.tried, 4);
  EXPECT_EQ(t.installed, 0);
  host::logHookTally();
  EXPECT_EQ(logged("[QB] hooks installed 0 of 4, skipped: -[NarrowHost twice:], -[MoreHost "
                   "twice:], +[ClassHost thrice:], +[ClassHost thrice:]"),
            1);
}

// A void host method whose original must run: it stands for one that calls a
// completion the host waits for.
int finished = 0;
void hostFinish(Id, SEL, long) { ++finished; }
host::Hook<void(long)> finish;
void qbFinish(Id self, SEL cmd, long x) {
  finish.run(
      "[QB] HookThreads finish ex: %@",
      [&](host::Hook<void(long)>::Original& original) { original(x); }, self, cmd, x);
}

// The host's other thread runs the moment the replacement is in place, before
// the installing code takes its next step; it must already reach the original.
class HookThreads : public qbtest::SimWorld {
 protected:
  void SetUp() override {
    finished = 0;
    finish = {};
  }
  // Once `method()` answers with the replacement, `call` runs on another
  // thread (joined), from inside the runtime's change.
  void callFromAnotherThreadOnceInPlace(std::function<rt::Method()> method,
                                        std::function<void()> call) {
    calledFromThread = false;
    process.runtime().onImplementationChanged([this, method, call] {
      rt::Method m = method();
      if (calledFromThread || !m ||
          rt::methodImplementation(m) != reinterpret_cast<rt::IMP>(qbFinish))
        return;
      calledFromThread = true;
      std::thread(call).join();
    });
  }
  bool calledFromThread = false;
};

TEST_F(HookThreads, AHostThreadCallingTheMomentTheReplacementIsInPlaceReachesTheOriginal) {
  rt::Class own = sim::ClassBuilder("OwnFinish").method("finish:", hostFinish).build();
  rt::Class base = sim::ClassBuilder("BaseFinish").method("finish:", hostFinish).build();
  rt::Class heir = sim::ClassBuilder("HeirFinish", "BaseFinish").build();
  rt::Class meta = sim::ClassBuilder("MetaFinish").classMethod("finish:", hostFinish).build();
  rt::Class meta2 = sim::ClassBuilder("MetaFinish2").classMethod("finish:", hostFinish).build();
  struct Way {
    const char* name;
    rt::Class cls;
    bool classMethod;
    std::function<bool()> install;
  };
  const Way ways[] = {
      {"replaced in place", own, false, [&] { return finish.replace(own, "finish:", qbFinish); }},
      {"replaced, inherited", heir, false,
       [&] { return finish.replace(heir, "finish:", qbFinish); }},
      {"swizzled", base, false,
       [&] { return finish.swizzle(base, base, "finish:", "qb_finish:", qbFinish); }},
      {"class method set", meta, true,
       [&] { return finish.setClassMethod(meta, "finish:", qbFinish); }},
      {"class method exchanged", meta2, true, [&] {
         return finish.exchangeClassMethod(meta2, "finish:", "qb_finish:", qbFinish, "v24@0:8q16");
       }}};
  for (const Way& way : ways) {
    SCOPED_TRACE(way.name);
    finish = {};
    finished = 0;
    rt::Class cls = way.cls;
    Id receiver = way.classMethod ? rt::toId(cls) : rt::send<Id>(cls, "new");
    callFromAnotherThreadOnceInPlace(
        [cls, classMethod = way.classMethod] {
          return classMethod ? rt::getClassMethod(cls, rt::sel("finish:"))
                             : rt::getInstanceMethod(cls, rt::sel("finish:"));
        },
        [receiver] { rt::send<void>(receiver, "finish:", 1L); });
    ASSERT_TRUE(way.install());
    process.runtime().onImplementationChanged(nullptr);
    EXPECT_TRUE(calledFromThread);
    EXPECT_EQ(finished, 1) << "the call in between reached no original";
    rt::send<void>(receiver, "finish:", 2L);
    EXPECT_EQ(finished, 2);
  }
}

TEST_F(HookThreads, AnExchangeThatDidNotHappenWithdrawsTheOriginal) {
  rt::Class cls = sim::ClassBuilder("NoFinish").build();
  EXPECT_FALSE(finish.swizzle(cls, cls, "finish:", "qb_finish:", qbFinish));
  EXPECT_FALSE(finish.installed()) << "its qb_ name would lead back into the replacement";
}

TEST(Guarded, LogsAndAnswersTheFallbackOnlyOnFailure) {
  sim::Device device;
  sim::Process process{device};
  EXPECT_EQ(host::guarded(
                "[QB] step ex: %@", [] { return 3; }, 0),
            3);
  EXPECT_TRUE(device.log().empty());
  EXPECT_EQ(host::guarded(
                "[QB] step ex: %@", []() -> int { rt::raise("X", "no contact bob"); }, 9),
            9);
  ASSERT_EQ(device.log().size(), 1u);
  EXPECT_EQ(device.log().back().text, "[QB] step ex: no contact bob");
  EXPECT_EQ(device.log().back().kept, "[QB] step ex: <private>")
      << "a host's reason may name a contact";
  EXPECT_TRUE(process.runtime().violations().empty());
}

TEST(Guarded, OurOwnFaultIsRecordedWithItsLine) {
  sim::Device device;
  sim::Process process{device};
  host::guarded(
      "[QB][stable] serviceNamed %@ ex: %@", [] { return std::vector<int>{}.at(1); }, 0,
      std::string("CContactMgr"));
  ASSERT_EQ(device.log().size(), 1u);
  EXPECT_EQ(device.log()[0].text.rfind("[QB][stable] serviceNamed CContactMgr ex: ", 0), 0u);
  auto v = process.runtime().violations();
  ASSERT_EQ(v.size(), 1u);
  EXPECT_EQ(v[0].rfind("internal failure: ", 0), 0u);
  host::guarded("[QB] step ex: %@", [] { rt::raise("NSRangeException", "host's own"); });
  EXPECT_EQ(process.runtime().violations().size(), 1u) << "the host's exception is not ours";
}

}  // namespace
