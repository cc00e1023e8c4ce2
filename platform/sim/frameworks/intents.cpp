// Intents: INPersonHandle, INPerson, INSendMessageIntent and INInteraction,
// with the donation and the two deletions of donated interactions.
#include <string>
#include <vector>

#include "rt/exception.hpp"
#include "rt/foundation.hpp"
#include "rt/send.hpp"
#include "sim/runtime/class_builder.hpp"
#include "sim/frameworks/ivar_property.hpp"
#include "sim/frameworks/outside_frameworks.hpp"
#include "sim/process.hpp"

namespace sim {
namespace {

using rt::Id;
using rt::SEL;

constexpr char kValue[] = "_value", kHandle[] = "_personHandle", kDisplay[] = "_displayName",
               kCustom[] = "_customIdentifier", kRecipients[] = "_recipients",
               kSender[] = "_sender", kConversation[] = "_conversationIdentifier",
               kContent[] = "_content", kIntent[] = "_intent", kGroup[] = "_groupIdentifier";

std::string text(Id s) { return rt::asString(s).value_or(""); }

Id initHandle(Id self, SEL, Id value, long) {
  rt::setIvarNamed(self, kValue, value);
  return self;
}

Id initPerson(Id self, SEL, Id handle, Id, Id displayName, Id, Id, Id customIdentifier) {
  rt::setIvarNamed(self, kHandle, handle);
  rt::setIvarNamed(self, kDisplay, displayName);
  rt::setIvarNamed(self, kCustom, customIdentifier);
  return self;
}

Id initSendMessage(Id self, SEL, Id recipients, long, Id content, Id, Id conversation, Id,
                   Id sender, Id) {
  rt::setIvarNamed(self, kRecipients, recipients);
  rt::setIvarNamed(self, kContent, content);
  rt::setIvarNamed(self, kConversation, conversation);
  rt::setIvarNamed(self, kSender, sender);
  return self;
}

Id initInteraction(Id self, SEL, Id intent, Id) {
  rt::setIvarNamed(self, kIntent, intent);
  return self;
}

std::string personName(Id person) {
  std::string handle = text(rt::ivarNamed(rt::ivarNamed(person, kHandle), kValue));
  return handle.empty() ? text(rt::ivarNamed(person, kCustom)) : handle;
}

// The system reads the interaction when it is donated, not later.
void donate(Id self, SEL, Id completion) {
  Id intent = rt::ivarNamed(self, kIntent);
  if (!intent) rt::raise("NSInvalidArgumentException", "an interaction needs an intent");
  Donation d;
  d.groupIdentifier = text(rt::ivarNamed(self, kGroup));
  d.conversationIdentifier = text(rt::ivarNamed(intent, kConversation));
  if (Id sender = rt::ivarNamed(intent, kSender)) d.people.push_back(personName(sender));
  for (Id r : rt::elements(rt::ivarNamed(intent, kRecipients))) d.people.push_back(personName(r));
  writeLater([d](SystemRecords& r) { r.donate(d); }, completion);
}

void deleteGroup(Id, SEL, Id group, Id completion) {
  writeLater([g = text(group)](SystemRecords& r) { r.deleteDonations({g}); }, completion);
}

void deleteAll(Id, SEL, Id completion) {
  writeLater([](SystemRecords& r) { r.deleteAllDonations(); }, completion);
}

}  // namespace

void registerIntents(Runtime&) {
  ClassBuilder("INPersonHandle")
      .ivar(kValue, "@")
      .method("initWithValue:type:", initHandle)
      .method("value", ivarProperty<kValue>)
      .build();
  ClassBuilder("INPerson")
      .ivar(kHandle, "@")
      .ivar(kDisplay, "@")
      .ivar(kCustom, "@")
      .method(
          "initWithPersonHandle:nameComponents:displayName:image:contactIdentifier:"
          "customIdentifier:",
          initPerson)
      .method("personHandle", ivarProperty<kHandle>)
      .method("displayName", ivarProperty<kDisplay>)
      .method("customIdentifier", ivarProperty<kCustom>)
      .build();
  ClassBuilder("INSendMessageIntent")
      .ivar(kRecipients, "@")
      .ivar(kSender, "@")
      .ivar(kConversation, "@")
      .ivar(kContent, "@")
      .method(
          "initWithRecipients:outgoingMessageType:content:speakableGroupName:"
          "conversationIdentifier:serviceName:sender:attachments:",
          initSendMessage)
      .method("recipients", ivarProperty<kRecipients>)
      .method("sender", ivarProperty<kSender>)
      .method("conversationIdentifier", ivarProperty<kConversation>)
      .method("content", ivarProperty<kContent>)
      .build();
  ClassBuilder("INInteraction")
      .ivar(kIntent, "@")
      .ivar(kGroup, "@")
      .method("initWithIntent:response:", initInteraction)
      .method("intent", ivarProperty<kIntent>)
      .method("groupIdentifier", ivarProperty<kGroup>)
      .method("setGroupIdentifier:", setIvarProperty<kGroup>)
      .method("donateInteractionWithCompletion:", donate)
      .classMethod("deleteInteractionsWithGroupIdentifier:completion:", deleteGroup)
      .classMethod("deleteAllInteractionsWithCompletion:", deleteAll)
      .build();
}

}  // namespace sim
