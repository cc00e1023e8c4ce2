// CoreSpotlight: CSSearchableItemAttributeSet, CSSearchableItem and the
// default CSSearchableIndex with its index call and three deletions.
#include <string>
#include <vector>

#include "rt/foundation.hpp"
#include "rt/send.hpp"
#include "sim/class_builder.hpp"
#include "sim/ivar_property.hpp"
#include "sim/outside_frameworks.hpp"
#include "sim/process.hpp"
#include "sim/runtime.hpp"
#include "sys/queue.hpp"
#include "sys/user_notifications.hpp"

namespace sim {
namespace {

using rt::Id;
using rt::SEL;

constexpr char kTitle[] = "_title", kDisplay[] = "_displayName",
               kDescription[] = "_contentDescription", kKeywords[] = "_keywords",
               kUnique[] = "_uniqueIdentifier", kDomain[] = "_domainIdentifier",
               kAttributes[] = "_attributeSet";

SystemRecords& records() { return currentProcess().device().records(); }
std::string text(Id s) { return rt::asString(s).value_or(""); }

std::vector<std::string> texts(Id array) {
  std::vector<std::string> out;
  for (Id e : rt::elements(array)) out.push_back(text(e));
  return out;
}

Id initAttributes(Id self, SEL, Id) { return self; }

Id initItem(Id self, SEL, Id unique, Id domain, Id attributes) {
  setIvarOf(self, kUnique, unique);
  setIvarOf(self, kDomain, domain);
  setIvarOf(self, kAttributes, attributes);
  return self;
}

Id defaultIndex(Id, SEL) {
  Id& slot = runtime().singleton("CSSearchableIndex.default");
  if (!slot) slot = rt::send<Id>(rt::getClass("CSSearchableIndex"), "new");
  return slot;
}

// The index reads the items when they are handed over, not later.
void indexItems(Id, SEL, Id items, Id completion) {
  std::vector<SearchItem> list;
  for (Id item : rt::elements(items)) {
    Id a = ivarOf(item, kAttributes);
    list.push_back({text(ivarOf(item, kUnique)), text(ivarOf(item, kDomain)),
                    text(ivarOf(a, kTitle)), text(ivarOf(a, kDisplay)),
                    text(ivarOf(a, kDescription)), texts(ivarOf(a, kKeywords))});
  }
  sys::async([list] { records().index(list); });
  sys::callCompletionLater(completion);
}

void deleteIdentifiers(Id, SEL, Id identifiers, Id completion) {
  std::vector<std::string> ids = texts(identifiers);
  sys::async([ids] { records().deleteItems(ids); });
  sys::callCompletionLater(completion);
}

void deleteDomains(Id, SEL, Id domains, Id completion) {
  std::vector<std::string> ids = texts(domains);
  sys::async([ids] { records().deleteDomains(ids); });
  sys::callCompletionLater(completion);
}

void deleteAll(Id, SEL, Id completion) {
  sys::async([] { records().deleteAllItems(); });
  sys::callCompletionLater(completion);
}

}  // namespace

void registerSpotlight(Runtime&) {
  ClassBuilder("CSSearchableItemAttributeSet")
      .ivar(kTitle, "@")
      .ivar(kDisplay, "@")
      .ivar(kDescription, "@")
      .ivar(kKeywords, "@")
      .method("initWithItemContentType:", initAttributes)
      .method("title", ivarProperty<kTitle>)
      .method("setTitle:", setIvarProperty<kTitle>)
      .method("displayName", ivarProperty<kDisplay>)
      .method("setDisplayName:", setIvarProperty<kDisplay>)
      .method("contentDescription", ivarProperty<kDescription>)
      .method("setContentDescription:", setIvarProperty<kDescription>)
      .method("keywords", ivarProperty<kKeywords>)
      .method("setKeywords:", setIvarProperty<kKeywords>)
      .build();
  ClassBuilder("CSSearchableItem")
      .ivar(kUnique, "@")
      .ivar(kDomain, "@")
      .ivar(kAttributes, "@")
      .method("initWithUniqueIdentifier:domainIdentifier:attributeSet:", initItem)
      .method("uniqueIdentifier", ivarProperty<kUnique>)
      .method("domainIdentifier", ivarProperty<kDomain>)
      .method("attributeSet", ivarProperty<kAttributes>)
      .build();
  ClassBuilder("CSSearchableIndex")
      .classMethod("defaultSearchableIndex", defaultIndex)
      .method("indexSearchableItems:completionHandler:", indexItems)
      .method("deleteSearchableItemsWithIdentifiers:completionHandler:", deleteIdentifiers)
      .method("deleteSearchableItemsWithDomainIdentifiers:completionHandler:", deleteDomains)
      .method("deleteAllSearchableItemsWithCompletionHandler:", deleteAll)
      .build();
}

}  // namespace sim
