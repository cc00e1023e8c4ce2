// CoreSpotlight: CSSearchableItemAttributeSet, CSSearchableItem and the
// default CSSearchableIndex with its index call and three deletions.
#include <string>
#include <vector>

#include "rt/foundation.hpp"
#include "rt/send.hpp"
#include "sim/runtime/class_builder.hpp"
#include "sim/frameworks/ivar_property.hpp"
#include "sim/frameworks/outside_frameworks.hpp"
#include "sim/process.hpp"
#include "sim/runtime/runtime.hpp"

namespace sim {
namespace {

using rt::Id;
using rt::SEL;

constexpr char kTitle[] = "_title", kDisplay[] = "_displayName",
               kDescription[] = "_contentDescription", kKeywords[] = "_keywords",
               kUnique[] = "_uniqueIdentifier", kDomain[] = "_domainIdentifier",
               kAttributes[] = "_attributeSet";

std::string text(Id s) { return rt::asString(s).value_or(""); }

std::vector<std::string> texts(Id array) {
  std::vector<std::string> out;
  for (Id e : rt::elements(array)) out.push_back(text(e));
  return out;
}

Id initAttributes(Id self, SEL, Id) { return self; }

Id initItem(Id self, SEL, Id unique, Id domain, Id attributes) {
  rt::setIvarNamed(self, kUnique, unique);
  rt::setIvarNamed(self, kDomain, domain);
  rt::setIvarNamed(self, kAttributes, attributes);
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
    Id a = rt::ivarNamed(item, kAttributes);
    list.push_back({text(rt::ivarNamed(item, kUnique)), text(rt::ivarNamed(item, kDomain)),
                    text(rt::ivarNamed(a, kTitle)), text(rt::ivarNamed(a, kDisplay)),
                    text(rt::ivarNamed(a, kDescription)), texts(rt::ivarNamed(a, kKeywords))});
  }
  writeLater([list](SystemRecords& r) { r.index(list); }, completion);
}

void deleteIdentifiers(Id, SEL, Id identifiers, Id completion) {
  writeLater([ids = texts(identifiers)](SystemRecords& r) { r.deleteItems(ids); }, completion);
}

void deleteDomains(Id, SEL, Id domains, Id completion) {
  writeLater([ids = texts(domains)](SystemRecords& r) { r.deleteDomains(ids); }, completion);
}

void deleteAll(Id, SEL, Id completion) {
  writeLater([](SystemRecords& r) { r.deleteAllItems(); }, completion);
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
