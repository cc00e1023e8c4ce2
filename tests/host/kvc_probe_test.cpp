// The probe that never raises must answer exactly what key-value coding
// answers: for every class of the simulated host and Foundation, and for
// generated classes of every shape key-value coding distinguishes, over every
// key the system probes.
#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>
#include <vector>

#include "host/contact_info.hpp"
#include "host/runtime_toolkit.hpp"
#include "rt/exception.hpp"
#include "rt/foundation.hpp"
#include "rt/kvc.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/runtime/class_builder.hpp"
#include "sim/runtime/runtime.hpp"
#include "support/host_world.hpp"

namespace {

using rt::Id;
using rt::SEL;

std::vector<std::string> systemKeys() {
  std::vector<std::string> keys;
  for (const char* k : host::kUsernameKeys) keys.push_back(k);
  for (const char* k : host::kNestedContactKeys) keys.push_back(k);
  for (const char* k : host::kContextManagerKeys) keys.push_back(k);
  for (const char* k : host::kServiceCenterKeys) keys.push_back(k);
  for (const auto* list : {&host::kRemarkKeys, &host::kNicknameKeys, &host::kAliasKeys})
    for (std::string_view k : *list) keys.emplace_back(k);
  for (const char* k :
       {"m_contactsDataLogic", "m_dataLogic", "_contactsDataLogic", "m_tableView", "tableView",
        "_tableView", "normalSessions", "topSessions", "allTopSessions"})
    keys.push_back(k);
  return keys;
}

// Plain key-value coding, its exception taken as "no value"; `found` says
// whether it found the key (anything but NSUnknownKeyException).
Id reference(Id obj, const std::string& key, bool& found) {
  found = true;
  try {
    return rt::valueForKey(obj, key);
  } catch (const rt::Exception& e) {
    found = e.name != "NSUnknownKeyException";
    return nullptr;
  }
}

// Classes that answer keys their own way can only be asked.
bool usesStandardKvc(Id obj) {
  for (const char* s : {"valueForKey:", "valueForUndefinedKey:"})
    if (rt::methodImplementation(rt::getInstanceMethod(rt::classOf(obj), rt::sel(s))) !=
        rt::methodImplementation(rt::getInstanceMethod(rt::getClass("NSObject"), rt::sel(s))))
      return false;
  return true;
}

bool sameAnswer(Id a, Id b) {
  if (a == b) return true;
  return a && b && rt::send<bool>(a, "isEqual:", b);
}

Id text(Id, SEL) { return rt::str("accessor"); }
long number(Id, SEL) { return 7; }
Id undefinedAnswer(Id, SEL, Id key) {
  return rt::str("undefined:" + rt::asString(key).value_or(""));
}
Id customValue(Id, SEL, Id key) { return rt::str("custom:" + rt::asString(key).value_or("")); }
bool no(Id, SEL) { return false; }
long countOf(Id, SEL) { return 2; }
Id objectAt(Id, SEL, long i) { return rt::number(i); }
Id raises(Id, SEL) { rt::raise("HostFault", "accessor failed"); }

class KvcProbe : public qbtest::HostWorld {
 protected:
  void check(Id obj, const std::vector<std::string>& keys) {
    rt::KeyProbe probe(obj);  // one object's many keys: the same answers
    for (const std::string& key : keys) {
      Id fast = rt::probeKey(obj, key);
      EXPECT_TRUE(sameAnswer(probe(key), fast)) << rt::className(obj) << " ." << key;
      // The class's way of answering, found once, reads the same value.
      rt::KeyRead how = rt::keyReadOn(rt::classOf(obj), key);
      EXPECT_TRUE(sameAnswer(rt::readKey(obj, key, how), fast)) << rt::className(obj) << " ." << key;
      bool found = false;
      Id plain = reference(obj, key, found);
      // Not finding a key must be known without asking (asking raises).
      if (!found && usesStandardKvc(obj)) {
        EXPECT_FALSE(rt::keyValueCodingFinds(obj, key)) << rt::className(obj) << " ." << key;
      }
      EXPECT_TRUE(sameAnswer(fast, plain))
          << rt::className(obj) << " ." << key << ": probe " << (fast ? "value" : "nil") << ", KVC "
          << (plain ? "value" : "nil");
      ++checked;
    }
  }
  long checked = 0;
};

TEST_F(KvcProbe, EveryHostAndFoundationClassAnswersAsKeyValueCoding) {
  for (const char* u : {"alice", "bob"}) addFriend(u);
  host.model.sessions = {"alice", "bob"};
  launchWithLibrary();
  wait(2);
  std::vector<std::string> keys = systemKeys();
  // Foundation's value classes have no empty instance worth the name: they
  // are checked below with real values.
  auto isValueClass = [](Id obj) {
    for (const char* v : {"NSString", "NSNumber", "NSArray", "NSDictionary", "NSSet", "NSIndexPath",
                          "NSData", "NSDate", "NSNull"})
      if (rt::isKindOf(obj, v)) return true;
    return false;
  };
  for (rt::Class cls : process->runtime().registeredClasses()) {
    Id obj = rt::createInstance(cls);
    if (!isValueClass(obj)) check(obj, keys);
  }
  check(rt::str("wxid"), keys);
  check(rt::number(3), keys);
  check(rt::null(), keys);
  EXPECT_EQ(rt::KeyProbe(nullptr)("m_nsUsrName"), nullptr);
  Id emptyKeyed = rt::dictionary({{rt::str(""), rt::str("x")}});
  EXPECT_EQ(rt::KeyProbe(emptyKeyed)(""), rt::probeKey(emptyKeyed, ""))
      << "an empty key finds nothing";
  // Live objects carry values, not just the shapes of their classes.
  check(host::QBRuntime::mmContext(), keys);
  check(host::QBRuntime::serviceNamed("MainSessionMgr"), keys);
  for (Id s : rt::elements(
           rt::send<Id>(host::QBRuntime::serviceNamed("MainSessionMgr"), "normalSessions")))
    check(s, keys);
  check(rt::dictionary({{rt::str("m_nsUsrName"), rt::str("x")}}), keys);
  check(rt::mutableDictionary({{rt::str("contact"), rt::str("y")}}), keys);
  check(rt::array({rt::str("a")}), {"length", "m_nsUsrName"});
  EXPECT_GT(checked, 1000);
}

TEST_F(KvcProbe, GeneratedShapesAgreeAndNoUnknownKeyRaises) {
  launchWithLibrary();
  std::mt19937 rng(20261123);
  const std::vector<std::string> stems = {"name", "usrName", "contact", "flag", "items"};
  auto cap = [](std::string s) {
    s[0] = char(std::toupper(static_cast<unsigned char>(s[0])));
    return s;
  };
  std::vector<std::string> keys = systemKeys();
  for (const auto& s : stems) keys.push_back(s);
  for (int n = 0; n < 300; ++n) {
    sim::ClassBuilder b("Generated" + std::to_string(n));
    const std::string& stem = stems[rng() % stems.size()];
    switch (rng() % 12) {
      case 0:
        b.method("get" + cap(stem), text);
        break;
      case 1:
        b.method(stem, text);
        break;
      case 2:
        b.method("is" + cap(stem), number);
        break;
      case 3:
        b.method("_" + stem, text);
        break;
      case 4:
        b.ivar("_" + stem, "@");
        break;
      case 5:
        b.ivar("_is" + cap(stem), "q");
        break;
      case 6:
        b.ivar(stem, "@");
        break;
      case 7:
        b.ivar("is" + cap(stem), "B");
        break;
      case 8:
        b.ivar(stem, "@").classMethod("accessInstanceVariablesDirectly", no);
        break;
      case 9:
        b.method("valueForUndefinedKey:", undefinedAnswer);
        break;
      case 10:
        b.method("valueForKey:", customValue);
        break;
      case 11:
        b.method("countOf" + cap(stem), countOf)
            .method("objectIn" + cap(stem) + "AtIndex:", objectAt);
        break;
    }
    if (rng() % 4 == 0) b.method("m_nsUserName", raises);
    Id obj = rt::send<Id>(b.build(), "new");
    if (rng() % 2 && rt::getInstanceVariable(rt::classOf(obj), "_" + stem))
      rt::setValueForKey(obj, rt::str("set"), "_" + stem);
    check(obj, keys);
  }
  EXPECT_GT(checked, 300 * 30);
}

}  // namespace
