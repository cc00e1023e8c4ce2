// What the host leaves with the system, outside its own process: an
// interaction donated for every message sent and received (an
// INSendMessageIntent, so the share sheet and Siri suggest the chat), and a
// searchable item for every chat, at launch and when a chat is new. It never
// removes a delivered notification by itself. Variants: `no-donations` leaves
// nothing with the system; `donate-by-name` names chats by display name where
// the default build uses the username.
#include "sim/hostapp/host_app.hpp"
#include "rt/foundation.hpp"
#include "rt/send.hpp"
#include "sim/process.hpp"

namespace hostapp {
namespace {

using rt::Id;

constexpr const char* kItemPrefix = "msg.session.";
constexpr const char* kDomain = "msg.session";
constexpr long kHandleUnknown = 0, kOutgoingText = 1;

bool donates(const HostApp& app) { return !app.build.hasVariant("no-donations"); }
bool byName(const HostApp& app) { return app.build.hasVariant("donate-by-name"); }

Id alloc(const char* cls) {
  rt::Class c = rt::getClass(cls);
  return c ? rt::send<Id>(c, "alloc") : nullptr;
}

// A person as the host describes one: by handle when it is the sender, by its
// own custom identifier when it is a recipient.
Id person(const std::string& name, const std::string& display, bool asSender) {
  Id handle = asSender ? rt::send<Id>(alloc("INPersonHandle"), "initWithValue:type:", rt::str(name),
                                      kHandleUnknown)
                       : nullptr;
  return rt::send<Id>(alloc("INPerson"),
                      "initWithPersonHandle:nameComponents:displayName:image:contactIdentifier:"
                      "customIdentifier:",
                      handle, Id{nullptr}, rt::str(display), Id{nullptr}, Id{nullptr},
                      asSender ? Id{nullptr} : rt::str(name));
}

}  // namespace

std::string HostApp::displayName(const std::string& username) {
  if (Friend* f = model.findFriend(username)) {
    if (!f->remark.empty()) return f->remark;
    if (!f->nickname.empty()) return f->nickname;
  }
  if (const Room* r = model.findRoom(username); r && !r->title.empty()) return r->title;
  return username;
}

void HostApp::donateMessage(const std::string& chat, const std::string& text, bool outgoing) {
  if (!donates(*this) || !rt::getClass("INInteraction")) return;
  std::string display = displayName(chat);
  std::string name = byName(*this) ? display : chat;
  Id intent = rt::send<Id>(
      alloc("INSendMessageIntent"),
      "initWithRecipients:outgoingMessageType:content:speakableGroupName:conversationIdentifier:"
      "serviceName:sender:attachments:",
      rt::array({person(outgoing ? name : model.me, display, false)}), kOutgoingText, rt::str(text),
      Id{nullptr}, rt::str(name), Id{nullptr}, outgoing ? Id{nullptr} : person(name, display, true),
      Id{nullptr});
  Id interaction =
      rt::send<Id>(alloc("INInteraction"), "initWithIntent:response:", intent, Id{nullptr});
  rt::send<void>(interaction, "setGroupIdentifier:", rt::str(name));
  rt::send<void>(interaction, "donateInteractionWithCompletion:", Id{nullptr});
}

void HostApp::sendMessage(const std::string& chat, const std::string& text) {
  model.lastMessages[chat] = text;
  model.bringSessionToTop(chat);
  sessionsChanged();
  donateMessage(chat, text, true);
}

void HostApp::indexNewChats() {
  if (!donates(*this)) return;
  rt::Class indexClass = rt::getClass("CSSearchableIndex");
  if (!indexClass) return;
  std::vector<Id> items;
  for (const std::string& chat : model.sessions) {
    if (!indexedChats_.insert(chat).second) continue;
    std::string display = displayName(chat);
    std::string name = byName(*this) ? display : chat;
    Id attributes = rt::send<Id>(alloc("CSSearchableItemAttributeSet"),
                                 "initWithItemContentType:", rt::str("public.message"));
    rt::send<void>(attributes, "setTitle:", rt::str(display));
    rt::send<void>(attributes, "setKeywords:", rt::array({rt::str(name)}));
    items.push_back(rt::send<Id>(alloc("CSSearchableItem"),
                                 "initWithUniqueIdentifier:domainIdentifier:attributeSet:",
                                 rt::str(kItemPrefix + name), rt::str(kDomain), attributes));
  }
  if (items.empty()) return;
  rt::send<void>(rt::send<Id>(indexClass, "defaultSearchableIndex"),
                 "indexSearchableItems:completionHandler:", rt::array(items), Id{nullptr});
}

std::string HostApp::chatForIdentifier(const std::string& identifier) {
  std::string name = identifier;
  if (name.rfind(kItemPrefix, 0) == 0) name = name.substr(std::string(kItemPrefix).size());
  if (!byName(*this)) return name;
  for (const Friend& f : model.friends)
    if (displayName(f.username) == name) return f.username;
  for (const Room& r : model.rooms)
    if (displayName(r.username) == name) return r.username;
  return name;
}

}  // namespace hostapp
