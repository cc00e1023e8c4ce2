// Key-value coding as Foundation does it: accessor methods before instance
// variables, in Foundation's name order, scalars boxed, dictionaries by key,
// unknown keys raising.
#include <gtest/gtest.h>

#include "rt/exception.hpp"
#include "rt/foundation.hpp"
#include "rt/kvc.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/runtime/class_builder.hpp"
#include "support/sim_world.hpp"

namespace {

using rt::Id;
using rt::SEL;

Id getName(Id, SEL) { return rt::str("from get"); }
Id plainName(Id, SEL) { return rt::str("from name"); }
Id isName(Id, SEL) { return rt::str("from isName"); }
Id underscoreName(Id, SEL) { return rt::str("from _name"); }
bool enabled(Id, SEL) { return true; }
unsigned countOf(Id, SEL) { return 7; }
double ratio(Id, SEL) { return 0.25; }
Id withArgument(Id, SEL, Id) { return rt::str("never"); }
const char kTitleKey = 0, kLevelKey = 0;
void setTitle(Id self, SEL, Id v) { rt::setAssociatedObject(self, &kTitleKey, v); }
void setLevel(Id self, SEL, long v) { rt::setAssociatedObject(self, &kLevelKey, rt::number(v)); }

class Kvc : public qbtest::SimWorld {};

TEST_F(Kvc, AccessorMethodsAreTriedInFoundationsOrder) {
  rt::Class all = sim::ClassBuilder("All")
                      .method("getName", getName)
                      .method("name", plainName)
                      .method("isName", isName)
                      .method("_name", underscoreName)
                      .ivar("_name", "@")
                      .build();
  rt::Class noGet =
      sim::ClassBuilder("NoGet").method("name", plainName).method("_name", underscoreName).build();
  rt::Class onlyIs =
      sim::ClassBuilder("OnlyIs").method("isName", isName).method("_name", underscoreName).build();
  rt::Class onlyUnderscore =
      sim::ClassBuilder("OnlyUnderscore").method("_name", underscoreName).ivar("name", "@").build();
  EXPECT_EQ(rt::asString(rt::valueForKey(rt::send<Id>(all, "new"), "name")), "from get");
  EXPECT_EQ(rt::asString(rt::valueForKey(rt::send<Id>(noGet, "new"), "name")), "from name");
  EXPECT_EQ(rt::asString(rt::valueForKey(rt::send<Id>(onlyIs, "new"), "name")), "from isName");
  EXPECT_EQ(rt::asString(rt::valueForKey(rt::send<Id>(onlyUnderscore, "new"), "name")),
            "from _name");
}

TEST_F(Kvc, MethodsWithArgumentsAreNotAccessors) {
  rt::Class c =
      sim::ClassBuilder("WithArg").method("name:", withArgument).ivar("name", "@").build();
  Id obj = rt::send<Id>(c, "new");
  EXPECT_EQ(rt::valueForKey(obj, "name"), nullptr) << "falls through to the (empty) ivar";
}

TEST_F(Kvc, InstanceVariablesInFoundationsOrder) {
  rt::Class c = sim::ClassBuilder("Ivars")
                    .ivar("_user", "@")
                    .ivar("_isUser", "@")
                    .ivar("user", "@")
                    .ivar("isUser", "@")
                    .ivar("m_count", "i")
                    .ivar("m_on", "B")
                    .ivar("m_ratio", "d")
                    .build();
  Id obj = rt::send<Id>(c, "new");
  for (const char* name : {"_user", "_isUser", "user", "isUser"})
    rt::setIvarObject(obj, rt::getInstanceVariable(c, name), rt::str(name));
  EXPECT_EQ(rt::asString(rt::valueForKey(obj, "user")), "_user");
  rt::setIvarObject(obj, rt::getInstanceVariable(c, "_user"), nullptr);
  EXPECT_EQ(rt::valueForKey(obj, "user"), nullptr) << "a nil ivar still answers the key";
  rt::setValueForKey(obj, rt::number(42), "m_count");
  rt::setValueForKey(obj, rt::str("YES"), "m_on");
  rt::setValueForKey(obj, rt::realNumber(1.5), "m_ratio");
  Id count = rt::valueForKey(obj, "m_count");
  ASSERT_TRUE(rt::isNumber(count));
  EXPECT_EQ(rt::integerValue(count), 42);
  EXPECT_TRUE(rt::boolValue(rt::valueForKey(obj, "m_on")));
  EXPECT_DOUBLE_EQ(rt::doubleValue(rt::valueForKey(obj, "m_ratio")), 1.5);
  EXPECT_THROW(rt::setValueForKey(obj, nullptr, "m_count"), rt::Exception) << "nil for a scalar";
}

TEST_F(Kvc, ScalarsFromMethodsAreBoxed) {
  rt::Class c = sim::ClassBuilder("Scalars")
                    .method("enabled", enabled)
                    .method("count", countOf)
                    .method("ratio", ratio)
                    .build();
  Id obj = rt::send<Id>(c, "new");
  Id e = rt::valueForKey(obj, "enabled");
  EXPECT_TRUE(rt::isNumber(e));
  EXPECT_TRUE(rt::boolValue(e));
  EXPECT_EQ(rt::integerValue(rt::valueForKey(obj, "count")), 7);
  EXPECT_DOUBLE_EQ(rt::doubleValue(rt::valueForKey(obj, "ratio")), 0.25);
}

TEST_F(Kvc, UnknownKeysRaiseNSUnknownKeyException) {
  Id obj = rt::send<Id>(rt::getClass("NSObject"), "new");
  try {
    rt::valueForKey(obj, "m_nsUsrName");
    FAIL() << "must raise";
  } catch (const rt::Exception& e) {
    EXPECT_EQ(e.name, "NSUnknownKeyException");
    EXPECT_NE(e.reason.find("not key value coding-compliant for the key m_nsUsrName"),
              std::string::npos);
  }
  EXPECT_EQ(rt::probeKey(obj, "m_nsUsrName"), nullptr) << "the probing form swallows it";
  EXPECT_THROW(rt::setValueForKey(obj, rt::str("x"), "nope"), rt::Exception);
  EXPECT_EQ(rt::valueForKey(nullptr, "anything"), nullptr);
}

bool never(Id, SEL) { return false; }

// What a read found is remembered per class and key, but a method added to
// the class or above it afterwards wins at the next read, and a class that
// stops reading instance variables stops answering from them at once.
TEST_F(Kvc, AReadFollowsMethodsAddedAfterIt) {
  rt::Class base = sim::ClassBuilder("KvcBase").build();
  rt::Class c = sim::ClassBuilder("KvcLater", "KvcBase").ivar("name", "@").build();
  Id obj = rt::send<Id>(c, "new");
  rt::setIvarNamed(obj, "name", rt::str("from ivar"));
  EXPECT_EQ(rt::asString(rt::valueForKey(obj, "name")), "from ivar");
  EXPECT_EQ(rt::asString(rt::valueForKey(obj, "name")), "from ivar");
  ASSERT_TRUE(rt::addMethod(base, rt::sel("_name"), underscoreName));
  EXPECT_EQ(rt::asString(rt::valueForKey(obj, "name")), "from _name");
  ASSERT_TRUE(rt::addMethod(c, rt::sel("getName"), getName));
  EXPECT_EQ(rt::asString(rt::valueForKey(obj, "name")), "from get");

  rt::Class d = sim::ClassBuilder("KvcIvarOnly").ivar("name", "@").build();
  Id other = rt::send<Id>(d, "new");
  EXPECT_EQ(rt::valueForKey(other, "name"), nullptr);
  ASSERT_TRUE(rt::addClassMethod(d, rt::sel("accessInstanceVariablesDirectly"), never));
  EXPECT_THROW(rt::valueForKey(other, "name"), rt::Exception);
}

TEST_F(Kvc, DictionariesAnswerByKeyAndArraysMapTheirElements) {
  Id d = rt::dictionary({{rt::str("m_nsUsrName"), rt::str("alice")}});
  EXPECT_EQ(rt::asString(rt::valueForKey(d, "m_nsUsrName")), "alice");
  EXPECT_EQ(rt::valueForKey(d, "missing"), nullptr) << "no raise for a dictionary";
  Id m = rt::mutableDictionary();
  rt::setValueForKey(m, rt::str("v"), "k");
  EXPECT_EQ(rt::asString(rt::objectForKey(m, "k")), "v");
  rt::setValueForKey(m, nullptr, "k");
  EXPECT_EQ(rt::count(m), 0) << "setting nil removes";
  Id arr = rt::array({d, rt::dictionary({})});
  std::vector<Id> names = rt::elements(rt::valueForKey(arr, "m_nsUsrName"));
  ASSERT_EQ(names.size(), 2u);
  EXPECT_EQ(rt::asString(names[0]), "alice");
  EXPECT_TRUE(rt::isNull(names[1]));
}

TEST_F(Kvc, SettersAreUsedBeforeInstanceVariables) {
  rt::Class c = sim::ClassBuilder("Settable")
                    .method("setTitle:", setTitle)
                    .method("setLevel:", setLevel)
                    .ivar("_title", "@")
                    .build();
  Id obj = rt::send<Id>(c, "new");
  rt::setValueForKey(obj, rt::str("t"), "title");
  EXPECT_EQ(rt::asString(rt::getAssociatedObject(obj, &kTitleKey)), "t");
  EXPECT_EQ(rt::ivarObject(obj, rt::getInstanceVariable(c, "_title")), nullptr);
  rt::setValueForKey(obj, rt::str("  12abc"), "level");
  EXPECT_EQ(rt::integerValue(rt::getAssociatedObject(obj, &kLevelKey)), 12)
      << "unboxed with integerValue";
}

}  // namespace
