// The twelve replacements of the extra hooks against a stand-in host whose
// methods answer fixed objects, so "the host's own value" can be checked by
// identity: unchanged answers while not hiding, the filters, the Moments walk
// and its cap, installation, and the host pieces that fail around them.
#include "hiding/extra_hooks.hpp"

#include <gtest/gtest.h>

#include "core/config.hpp"
#include "hiding/contact_hooks.hpp"
#include "hiding/session_hooks.hpp"
#include "rt/exception.hpp"
#include "rt/foundation.hpp"
#include "rt/kvc.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/runtime/class_builder.hpp"
#include "support/host_world.hpp"

namespace {

using core::QBConfig;
using hiding::QBExtraHooks;
using rt::Id;
using rt::SEL;

const char* const kFill =
    "fillSectionResultForOption:arrSectionKey:dicSectionTitle:dicSearchResult:";

// What the stand-in host answers, and what it was asked.
struct Answers {
  bool shouldFilter = false, candidate = true;
  int vetoCalls = 0;
  Id array = nullptr, dict = nullptr;
  unsigned lastType = 0;
  Id filledResults = nullptr;  // the fill method puts [S, a] under "K" here
  std::vector<Id> items;       // the timeline
  long itemCalls = 0;
};
Answers* g = nullptr;

bool shouldFilter(Id, SEL, Id) { return ++g->vetoCalls, g->shouldFilter; }
bool candidate(Id, SEL, Id) { return ++g->vetoCalls, g->candidate; }
Id array(Id, SEL) { return g->array; }
Id arrayWith(Id, SEL, unsigned type) { return g->lastType = type, g->array; }
Id dict(Id, SEL) { return g->dict; }
void fill(Id, SEL, unsigned, Id, Id, Id results) {
  rt::setObjectForKey(results, rt::array({rt::str("S"), rt::str("a")}), rt::str("K"));
  g->filledResults = results;
}
void fillSearch(Id, SEL) {}
unsigned long itemCount(Id, SEL) { return g->items.size(); }
Id itemAt(Id, SEL, long i) {
  ++g->itemCalls;
  return i >= 0 && i < long(g->items.size()) ? g->items[std::size_t(i)] : nullptr;
}
Id raisingGetter(Id, SEL) { rt::raise("NSGenericException", "broken getter"); }
Id raisingWithKey(Id, SEL, Id) { rt::raise("NSGenericException", "broken lookup"); }

class ExtraHooks : public qbtest::HostWorld {
 protected:
  Answers answers;

  void SetUp() override {
    g = &answers;
    for (const char* cls :
         {"SessionSelectController", "SessionSelectView", "RecentForwardScrollView",
          "ContactsDataLogic", "ContactTagSearchFromContactLogic", "FTSContactDataProvider",
          "WCFacade"})
      host.build.lackingClasses.insert(cls);
    start();
  }
  void TearDown() override {
    HostWorld::TearDown();
    g = nullptr;
  }

  // The stand-in classes; `skip` leaves one class out.
  void defineStandIns(const std::string& skip = "") {
    auto define = [&](const char* name, auto&& add) {
      if (name == skip) return;
      sim::ClassBuilder b(name);
      add(b);
      b.build();
    };
    define("SessionSelectController",
           [](sim::ClassBuilder& b) { b.method("onShouldFilterContact:", shouldFilter); });
    define("SessionSelectView", [](sim::ClassBuilder& b) {
      b.method("onFilterContactCandidate:", candidate).method("recentForwardContacts", array);
    });
    define("RecentForwardScrollView",
           [](sim::ClassBuilder& b) { b.method("contactsForRecentForwardMenu", array); });
    define("ContactsDataLogic", [](sim::ClassBuilder& b) {
      b.method("getContactsArrayWith:", arrayWith)
          .method("getAllNormalContact", array)
          .method("getFavourContactArray", array)
          .method(kFill, fill);
    });
    define("ContactTagSearchFromContactLogic", [](sim::ClassBuilder& b) {
      b.ivar("m_dicSearchResult", "@").ivar("_dicSearchResult", "@").ivar("m_dicSection", "@");
      b.method("fillSectionResultForDicSearchResult", fillSearch);
    });
    define("FTSContactDataProvider",
           [](sim::ClassBuilder& b) { b.method("getDicContacts", dict); });
    define("WCFacade", [](sim::ClassBuilder& b) {
      b.method("countOfTimelineDataItem", itemCount).method("getTimelineDataItemOfIndex:", itemAt);
    });
  }
  void installAll() {
    defineStandIns();
    QBExtraHooks::install();
  }
  void hideS() { QBConfig::shared().addSecretUser("S"); }  // secrets start hidden in a process
  void reveal() { QBConfig::shared().setUnlocked(true); }

  Id make(const char* cls) { return rt::send<Id>(rt::getClass(cls), "new"); }
  static Id s(const char* text) { return rt::str(text); }
  static std::vector<std::string> texts(Id list) {
    std::vector<std::string> out;
    for (Id e : rt::elements(list))
      out.push_back(rt::isString(e) ? *rt::asString(e) : rt::description(e));
    return out;
  }
  // A timeline item: a contact record carrying the author's username.
  Id item(const std::string& author) {
    Id c = rt::send<Id>(rt::getClass("CContact"), "new");
    rt::setIvarObject(c, rt::getInstanceVariable(rt::getClass("CContact"), "m_nsUsrName"),
                      rt::str(author));
    return c;
  }
};

TEST_F(ExtraHooks, WhileNotHidingEveryReplacementAnswersWithTheHostsOwnObject) {
  installAll();
  answers.array = rt::array({s("a"), s("S")});
  answers.dict = rt::dictionary({{s("K"), rt::array({s("S")})}});
  answers.items = {item("S"), item("a")};
  auto check = [&](const char* when) {
    SCOPED_TRACE(when);
    for (auto [cls, sel] : {std::pair{"SessionSelectView", "recentForwardContacts"},
                            {"RecentForwardScrollView", "contactsForRecentForwardMenu"},
                            {"ContactsDataLogic", "getAllNormalContact"},
                            {"ContactsDataLogic", "getFavourContactArray"}})
      EXPECT_EQ(rt::send<Id>(make(cls), sel), answers.array) << sel;
    EXPECT_EQ(rt::send<Id>(make("ContactsDataLogic"), "getContactsArrayWith:", 1u), answers.array);
    EXPECT_EQ(rt::send<Id>(make("FTSContactDataProvider"), "getDicContacts"), answers.dict);
    Id facade = make("WCFacade");
    EXPECT_EQ(rt::send<unsigned long>(facade, "countOfTimelineDataItem"), 2u);
    EXPECT_EQ(rt::send<Id>(facade, "getTimelineDataItemOfIndex:", 0L), answers.items[0]);
    EXPECT_EQ(rt::send<Id>(facade, "getTimelineDataItemOfIndex:", 1L), answers.items[1]);
    Id results = rt::mutableDictionary();
    rt::send<void>(make("ContactsDataLogic"), kFill, 0u, rt::mutableArray(),
                   rt::mutableDictionary(), results);
    EXPECT_EQ(texts(rt::objectForKey(results, "K")), (std::vector<std::string>{"S", "a"}));
    answers.shouldFilter = false, answers.candidate = true;
    EXPECT_FALSE(rt::send<bool>(make("SessionSelectController"), "onShouldFilterContact:", s("S")));
    EXPECT_TRUE(rt::send<bool>(make("SessionSelectView"), "onFilterContactCandidate:", s("S")));
  };
  check("no secrets");
  hideS();
  reveal();
  check("revealed");
}

TEST_F(ExtraHooks, ArrayResultsLoseTheirSecretsInOrderAndPassTheirArgumentOn) {
  installAll();
  hideS();
  Id noName = rt::send<Id>(rt::getClass("CContact"), "new");
  answers.array = rt::array({s("a"), item("S"), s("b"), s("S"), s(""), noName, rt::null()});
  for (auto [cls, sel] : {std::pair{"SessionSelectView", "recentForwardContacts"},
                          {"RecentForwardScrollView", "contactsForRecentForwardMenu"},
                          {"ContactsDataLogic", "getAllNormalContact"},
                          {"ContactsDataLogic", "getFavourContactArray"}}) {
    Id got = rt::send<Id>(make(cls), sel);
    EXPECT_EQ(rt::elements(got), (std::vector<Id>{s("a"), s("b"), s(""), noName, rt::null()}))
        << sel;
  }
  EXPECT_EQ(texts(rt::send<Id>(make("ContactsDataLogic"), "getContactsArrayWith:", 7u)),
            (std::vector<std::string>{"a", "b", "", rt::description(noName), "<null>"}));
  EXPECT_EQ(answers.lastType, 7u);
  answers.array = rt::mutableArray({s("a"), s("S")});
  Id got = rt::send<Id>(make("ContactsDataLogic"), "getAllNormalContact");
  EXPECT_TRUE(rt::isMutableArray(got)) << "the host may sort or add to what it handed out";
  EXPECT_EQ(texts(answers.array), (std::vector<std::string>{"a", "S"})) << "a copy, not the host's";
  answers.array = rt::array({s("a"), s("b")});
  EXPECT_EQ(rt::send<Id>(make("ContactsDataLogic"), "getAllNormalContact"), answers.array)
      << "nothing to drop: the host's own array";
  answers.array = s("S");
  EXPECT_EQ(rt::send<Id>(make("ContactsDataLogic"), "getAllNormalContact"), answers.array)
      << "not an array: unchanged";
  answers.array = nullptr;
  EXPECT_EQ(rt::send<Id>(make("ContactsDataLogic"), "getAllNormalContact"), nullptr);
}

TEST_F(ExtraHooks, BothPickerQuestionsKeepASecretOutWithoutAskingTheHost) {
  installAll();
  hideS();
  Id controller = make("SessionSelectController"), view = make("SessionSelectView");
  EXPECT_TRUE(rt::send<bool>(controller, "onShouldFilterContact:", item("S")));
  EXPECT_FALSE(rt::send<bool>(view, "onFilterContactCandidate:", s("S")));
  EXPECT_EQ(answers.vetoCalls, 0);
  answers.shouldFilter = true, answers.candidate = false;
  EXPECT_TRUE(rt::send<bool>(controller, "onShouldFilterContact:", s("a")))
      << "the host's own answer";
  EXPECT_FALSE(rt::send<bool>(view, "onFilterContactCandidate:", s("a")));
  answers.shouldFilter = false, answers.candidate = true;
  EXPECT_FALSE(rt::send<bool>(controller, "onShouldFilterContact:", static_cast<Id>(nullptr)));
  EXPECT_TRUE(rt::send<bool>(view, "onFilterContactCandidate:", s("")));
  EXPECT_EQ(answers.vetoCalls, 4);
}

TEST_F(ExtraHooks, SectionDictionariesAreFilteredInPlaceRecursivelyAndOnlyWhenMutable) {
  installAll();
  hideS();
  Id inner = rt::mutableDictionary({{s("X"), rt::array({s("S")})}});
  Id results = rt::mutableDictionary(
      {{s("A"), rt::array({s("a"), s("S")})}, {s("B"), inner}, {s("C"), s("S")}});
  Id frozenInner = rt::dictionary({{s("X"), rt::array({s("S")})}});
  Id titles =
      rt::mutableDictionary({{s("T"), rt::mutableArray({s("S"), s("b")})}, {s("F"), frozenInner}});
  Id keys = rt::mutableArray({s("S")});
  rt::send<void>(make("ContactsDataLogic"), kFill, 3u, keys, titles, results);
  EXPECT_EQ(texts(rt::objectForKey(results, "A")), (std::vector<std::string>{"a"}));
  EXPECT_EQ(rt::objectForKey(results, "B"), inner)
      << "the nested dictionary is filtered where it is";
  EXPECT_TRUE(texts(rt::objectForKey(inner, "X")).empty());
  EXPECT_EQ(texts(rt::objectForKey(results, "C")), std::vector<std::string>{})
      << "a plain value is no array";
  EXPECT_EQ(rt::asString(rt::objectForKey(results, "C")), "S")
      << "a secret stored directly is kept";
  EXPECT_EQ(texts(rt::objectForKey(results, "K")), (std::vector<std::string>{"a"}))
      << "what the host filled";
  EXPECT_EQ(texts(rt::objectForKey(titles, "T")), (std::vector<std::string>{"b"}));
  EXPECT_TRUE(rt::isMutableArray(rt::objectForKey(titles, "T"))) << "mutable as the host's was";
  EXPECT_FALSE(rt::isMutableArray(rt::objectForKey(results, "A"))) << "immutable as the host's was";
  EXPECT_EQ(texts(rt::objectForKey(frozenInner, "X")), (std::vector<std::string>{"S"}))
      << "immutable: left alone";
  EXPECT_EQ(texts(keys), (std::vector<std::string>{"S"})) << "the section keys are not touched";
  Id frozen = rt::dictionary({{s("A"), rt::array({s("S")})}});
  QBExtraHooks::filterDictionaryInPlace(frozen);
  EXPECT_EQ(texts(rt::objectForKey(frozen, "A")), (std::vector<std::string>{"S"}));
}

Id raisingSearchDictionary(Id, SEL) { rt::raise("NSGenericException", "no such dictionary"); }

TEST_F(ExtraHooks, SearchLogicDictionariesUnderEveryKeyAreFilteredAndARaisingKeyIsSkipped) {
  installAll();
  sim::ClassBuilder("ContactTagSearchFromContactLogic")
      .method("dicSearchResult", raisingSearchDictionary);
  hideS();
  Id logic = make("ContactTagSearchFromContactLogic");
  std::vector<Id> dicts;
  for (const char* ivar : {"m_dicSearchResult", "_dicSearchResult", "m_dicSection"}) {
    Id d = rt::mutableDictionary({{s("contact"), rt::array({s("S"), s("a")})}});
    rt::setIvarNamed(logic, ivar, d);
    dicts.push_back(d);
  }
  rt::send<void>(logic, "fillSectionResultForDicSearchResult");
  for (Id d : dicts)
    EXPECT_EQ(texts(rt::objectForKey(d, "contact")), (std::vector<std::string>{"a"}));
}

TEST_F(ExtraHooks, DataProviderDictionariesAreFilteredOrRebuilt) {
  installAll();
  hideS();
  Id provider = make("FTSContactDataProvider");
  answers.dict = rt::mutableDictionary({{s("K1"), rt::array({s("S"), s("b")})}, {s("K2"), s("S")}});
  Id got = rt::send<Id>(provider, "getDicContacts");
  EXPECT_EQ(got, answers.dict) << "a mutable result is filtered in place";
  EXPECT_EQ(texts(rt::objectForKey(got, "K1")), (std::vector<std::string>{"b"}));
  EXPECT_NE(rt::objectForKey(got, "K2"), nullptr) << "in place, only arrays are filtered";
  Id frozen = rt::dictionary(
      {{s("K1"), rt::array({s("S"), s("b")})}, {s("K2"), s("S")}, {s("K3"), s("c")}});
  answers.dict = frozen;
  got = rt::send<Id>(provider, "getDicContacts");
  ASSERT_NE(got, frozen);
  EXPECT_TRUE(rt::isMutableDictionary(got));
  EXPECT_EQ(rt::count(got), 2);
  EXPECT_EQ(texts(rt::objectForKey(got, "K1")), (std::vector<std::string>{"b"}));
  EXPECT_EQ(rt::objectForKey(got, "K2"), nullptr);
  EXPECT_EQ(rt::asString(rt::objectForKey(got, "K3")), "c");
  EXPECT_EQ(texts(rt::objectForKey(frozen, "K1")), (std::vector<std::string>{"S", "b"}))
      << "the host's is untouched";
  answers.dict = rt::array({s("S")});
  EXPECT_EQ(rt::send<Id>(provider, "getDicContacts"), answers.dict) << "neither: unchanged";
}

TEST_F(ExtraHooks, MomentsSkipSecretItemsWhenCountingAndIndexing) {
  installAll();
  hideS();
  answers.items = {item("a"), item("S"), item("b")};
  Id facade = make("WCFacade");
  EXPECT_EQ(rt::send<unsigned long>(facade, "countOfTimelineDataItem"), 2u);
  EXPECT_EQ(rt::send<Id>(facade, "getTimelineDataItemOfIndex:", 0L), answers.items[0]);
  EXPECT_EQ(rt::send<Id>(facade, "getTimelineDataItemOfIndex:", 1L), answers.items[2]);
  EXPECT_EQ(rt::send<Id>(facade, "getTimelineDataItemOfIndex:", 2L), nullptr);
  EXPECT_EQ(rt::send<Id>(facade, "getTimelineDataItemOfIndex:", -1L), nullptr);
  answers.items = {item("S"), item("S")};
  EXPECT_EQ(rt::send<unsigned long>(facade, "countOfTimelineDataItem"), 0u);
  answers.items.clear();
  EXPECT_EQ(rt::send<unsigned long>(facade, "countOfTimelineDataItem"), 0u);
  EXPECT_EQ(rt::send<Id>(facade, "getTimelineDataItemOfIndex:", 0L), nullptr);
}

TEST_F(ExtraHooks, OnlyTheFirst500MomentsAreConsideredWhileHiding) {
  installAll();
  hideS();
  for (int i = 0; i < 600; ++i)
    answers.items.push_back(item(i == 10 || i == 550 ? "S" : "u" + std::to_string(i)));
  Id facade = make("WCFacade");
  EXPECT_EQ(rt::send<unsigned long>(facade, "countOfTimelineDataItem"), 499u);
  EXPECT_EQ(rt::send<Id>(facade, "getTimelineDataItemOfIndex:", 498L), answers.items[499]);
  EXPECT_EQ(rt::send<Id>(facade, "getTimelineDataItemOfIndex:", 499L), nullptr)
      << "item 500 is past the cap";
  hiding::QBSessionHooks::refreshFilterCache();  // walked afresh
  answers.itemCalls = 0;
  rt::send<Id>(facade, "getTimelineDataItemOfIndex:", 100000L);
  EXPECT_EQ(answers.itemCalls, 500) << "the walk stops at the cap";
  reveal();
  EXPECT_EQ(rt::send<unsigned long>(facade, "countOfTimelineDataItem"), 600u);
  EXPECT_EQ(rt::send<Id>(facade, "getTimelineDataItemOfIndex:", 550L), answers.items[550]);
}

TEST_F(ExtraHooks, ASecondInstallChangesNothing) {
  installAll();
  QBExtraHooks::install();
  hideS();
  answers.array = rt::array({s("S"), s("a")});
  EXPECT_EQ(texts(rt::send<Id>(make("ContactsDataLogic"), "getAllNormalContact")),
            (std::vector<std::string>{"a"}));
  answers.items = {item("S"), item("a")};
  EXPECT_EQ(rt::send<unsigned long>(make("WCFacade"), "countOfTimelineDataItem"), 1u);
  EXPECT_EQ(countLog("[QB][stable] replace getAllNormalContact"), 1);
}

TEST_F(ExtraHooks, AMissingClassSkipsItsRowsAndTheRestAreInstalled) {
  defineStandIns("WCFacade");
  QBExtraHooks::install();
  EXPECT_EQ(countLog("countOfTimelineDataItem"), 0) << "not even a missing-method line";
  EXPECT_EQ(countLog("[QB][stable] replace "), 12 - 2);
  EXPECT_EQ(countLog("[QB] extra hooks: contacts/moments/forward OK"), 1)
      << "logged without WCFacade too";
  hideS();
  answers.array = rt::array({s("S"), s("a")});
  EXPECT_EQ(texts(rt::send<Id>(make("ContactsDataLogic"), "getAllNormalContact")),
            (std::vector<std::string>{"a"}));
}

Id getDicContactsMissing(Id, SEL) { return nullptr; }

TEST_F(ExtraHooks, AMissingSelectorSkipsOneRowWithTheToolkitsLine) {
  defineStandIns("FTSContactDataProvider");
  sim::ClassBuilder("FTSContactDataProvider")
      .method("somethingElse", getDicContactsMissing)
      .build();
  QBExtraHooks::install();
  EXPECT_EQ(countLog("[QB][stable] replace missing FTSContactDataProvider getDicContacts"), 1);
  EXPECT_EQ(countLog("[QB] hooked FTSContactDataProvider getDicContacts"), 0);
  EXPECT_EQ(countLog("[QB][stable] replace countOfTimelineDataItem"), 1)
      << "later rows still installed";
}

// --- Host pieces that fail around the originals: the screen gets the host's
// own value (secrets shown) and nothing escapes.

TEST_F(ExtraHooks, ADictionaryThatCannotListOrReadItsKeysIsLeftAsItIs) {
  installAll();
  hideS();
  rt::Class noKeys = sim::ClassBuilder("NoKeysDictionary", "NSMutableDictionary")
                         .method("allKeys", raisingGetter)
                         .build();
  rt::Class noLookup = sim::ClassBuilder("NoLookupDictionary", "NSMutableDictionary")
                           .method("objectForKey:", raisingWithKey)
                           .build();
  Id results = rt::send<Id>(noKeys, "dictionary");
  Id titles = rt::send<Id>(noLookup, "dictionary");
  rt::send<void>(titles, "setObject:forKey:", rt::array({s("S")}), s("T"));
  ASSERT_NO_THROW(
      rt::send<void>(make("ContactsDataLogic"), kFill, 0u, rt::mutableArray(), titles, results));
  EXPECT_EQ(answers.filledResults, results) << "the host filled it";
  EXPECT_EQ(sim::native<sim::DictionaryData>(results)->entries.size(), 1u);
  EXPECT_EQ(texts(sim::native<sim::DictionaryData>(results)->entries[0].second),
            (std::vector<std::string>{"S", "a"}));
  EXPECT_EQ(texts(sim::native<sim::DictionaryData>(titles)->entries[0].second),
            (std::vector<std::string>{"S"}));

  rt::Class frozenNoLookup = sim::ClassBuilder("FrozenNoLookupDictionary", "NSDictionary")
                                 .method("objectForKey:", raisingWithKey)
                                 .build();
  answers.dict = rt::send<Id>(
      frozenNoLookup, "dictionaryWithDictionary:", rt::dictionary({{s("K"), rt::array({s("S")})}}));
  Id got = nullptr;
  ASSERT_NO_THROW(got = rt::send<Id>(make("FTSContactDataProvider"), "getDicContacts"));
  EXPECT_EQ(got, answers.dict) << "the rebuild failed: the host's own dictionary";
  EXPECT_EQ(texts(sim::native<sim::DictionaryData>(got)->entries[0].second),
            (std::vector<std::string>{"S"}));
}

TEST_F(ExtraHooks, ARaisingCountInsideTheIndexHookAnswersWithTheHostsItem) {
  installAll();
  hideS();
  answers.items = {item("a"), item("S"), item("b")};
  Id facade = make("WCFacade");
  sim::runtime().makeRaising(reinterpret_cast<rt::IMP>(itemCount), "count fails");
  Id got = nullptr;
  ASSERT_NO_THROW(got = rt::send<Id>(facade, "getTimelineDataItemOfIndex:", 1L));
  EXPECT_EQ(got, answers.items[1]) << "the host's own item at that index, secret or not";
  EXPECT_THROW(rt::send<unsigned long>(facade, "countOfTimelineDataItem"), rt::Exception)
      << "the count hook's own original raising is the host's exception";
}

TEST_F(ExtraHooks, ARaisingItemGetterInsideTheCountHookAnswersWithTheHostsCount) {
  installAll();
  hideS();
  answers.items = {item("a"), item("S"), item("b")};
  sim::runtime().makeRaising(reinterpret_cast<rt::IMP>(itemAt), "item fails");
  EXPECT_EQ(rt::send<unsigned long>(make("WCFacade"), "countOfTimelineDataItem"), 3u);
}

TEST_F(ExtraHooks, TheContactSwitchIsInertAndSaysWhy) {
  defineStandIns();
  hiding::QBContactHooks::install();
  hiding::QBContactHooks::installWithFlag(true);
  EXPECT_EQ(logLines(),
            (std::vector<std::string>{
                "[QB][stable] contact hooks DISABLED",
                "[QB][stable] contact hooks flag on but not implemented in stable build"}));
  hideS();
  answers.array = rt::array({s("S")});
  EXPECT_EQ(rt::send<Id>(make("ContactsDataLogic"), "getAllNormalContact"), answers.array)
      << "nothing was installed";
}

}  // namespace
