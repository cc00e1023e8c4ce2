#include "host/contact_info.hpp"

#include <algorithm>
#include <unordered_set>

#include "base/utf8.hpp"
#include "host/hook.hpp"
#include "host/runtime_toolkit.hpp"
#include "rt/foundation.hpp"
#include "rt/kvc.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sys/files.hpp"
#include "sys/log.hpp"
#include "ui/drawing.hpp"

namespace host {
namespace {

bool responds(rt::Id obj, std::string_view selector) {
  return obj && rt::respondsTo(obj, rt::sel(selector));
}

// A contact whose names are still empty, as a cache entry that was never
// filled from the database.
bool isPoor(rt::Id contact) {
  return QBContactInfo::propertyString(contact, kNicknameKeysShort).empty() &&
         QBContactInfo::propertyString(contact, kRemarkKeysShort).empty();
}

rt::Id image(rt::Id candidate) { return QBContactInfo::asUIImage(candidate); }

// A contact's names as a record and the picker list show them.
struct Names {
  std::string remark, nickname, display;
  rt::Id contact;  // the one the names came from last: the avatar's
};

Names ownNames(rt::Id contact, std::string_view username) {
  return {QBContactInfo::propertyString(contact, kRemarkKeys),
          QBContactInfo::propertyString(contact, kNicknameKeys),
          QBContactInfo::displayNameFromContact(contact, username), contact};
}

// No nickname and no remark, or nothing better to show than the username:
// worth asking the database again.
bool worthRereading(const Names& n, std::string_view username) {
  return (n.nickname.empty() && n.remark.empty()) || n.display == username;
}

rt::Id databaseContact(std::string_view username) {
  rt::Id mgr = QBContactInfo::contactMgr();
  if (!responds(mgr, "getContactByNameFromDB:")) return nullptr;
  return rt::send<rt::Id>(mgr, "getContactByNameFromDB:", rt::str(username));
}

void takeDatabaseNames(Names& n, rt::Id db) {
  if (std::string r = QBContactInfo::propertyString(db, kRemarkKeysShort); !r.empty()) n.remark = r;
  if (std::string k = QBContactInfo::propertyString(db, kNicknameKeysShort); !k.empty())
    n.nickname = k;
}

// A record's names: a different database record's names win where they say
// more, and its contact gives the avatar.
Names recordNames(rt::Id contact, std::string_view username) {
  Names n = ownNames(contact, username);
  if (!worthRereading(n, username)) return n;
  rt::Id db = databaseContact(username);
  if (!db || db == contact) return n;
  takeDatabaseNames(n, db);
  std::string d = QBContactInfo::displayNameFromContact(db, username);
  if (!d.empty() && d != username) n.display = d;
  n.contact = db;
  return n;
}

// A picker row's names: whatever record the database gives names the row,
// even one that knows no more than the username.
Names listNames(rt::Id contact, std::string_view username) {
  Names n = ownNames(contact, username);
  if (!worthRereading(n, username)) return n;
  rt::Id db = databaseContact(username);
  if (!db) return n;
  takeDatabaseNames(n, db);
  n.display = QBContactInfo::displayNameFromContact(db, username);
  return n;
}

}  // namespace

rt::Id QBContactInfo::contactMgr() { return QBRuntime::serviceNamed("CContactMgr"); }

rt::Id QBContactInfo::contactForUsername(std::string_view username) {
  if (username.empty()) return nullptr;
  rt::Id mgr = contactMgr();
  if (!mgr) return nullptr;
  rt::Id fallback = nullptr;  // the first poor entry, kept across a failure
  rt::Id rich = host::guarded(
      "[QB] contactForUsername ex: %@",
      [&]() -> rt::Id {
        for (std::string_view selector : kLookupSelectors) {
          if (!responds(mgr, selector)) continue;
          rt::Id found = rt::send<rt::Id>(mgr, selector, rt::str(username));
          if (!found) continue;
          if (!isPoor(found)) return found;
          if (!fallback) fallback = found;
        }
        return nullptr;
      },
      rt::Id{});
  return rich ? rich : fallback;
}

std::string QBContactInfo::stringValue(rt::Id obj, std::string_view key) {
  if (!obj || key.empty()) return "";
  return rt::nonEmptyString(rt::probeKey(obj, key)).value_or("");
}

std::string QBContactInfo::propertyString(rt::Id obj, const std::vector<std::string_view>& names) {
  if (!obj) return "";
  for (std::string_view name : names) {
    // A name that fails gives way to the next.
    std::string s = quietly(
        [&] {
          std::string v = stringValue(obj, name);
          if (v.empty() && responds(obj, name))
            v = rt::nonEmptyString(rt::send<rt::Id>(obj, name)).value_or("");
          return v;
        },
        std::string());
    if (!s.empty()) return s;
  }
  return "";
}

std::string QBContactInfo::displayNameFromContact(rt::Id contact, std::string_view username) {
  if (!contact) return std::string(username);
  std::string own = quietly(
      [contact] {
        if (!responds(contact, "getContactDisplayName")) return std::string();
        return rt::nonEmptyString(rt::send<rt::Id>(contact, "getContactDisplayName")).value_or("");
      },
      std::string());
  if (!own.empty()) return own;
  for (const auto* list : {&kRemarkKeys, &kNicknameKeys, &kAliasKeys}) {
    std::string s = propertyString(contact, *list);
    if (!s.empty()) return s;
  }
  return std::string(username);
}

std::string QBContactInfo::displayNameForUsername(std::string_view username) {
  return knownDisplayName(username).value_or(std::string(username));
}

std::optional<std::string> QBContactInfo::knownDisplayName(std::string_view username) {
  // infoForUsername's names without its avatar, which the caller would throw away.
  // A lookup that raises has found nothing yet either.
  std::optional<Names> names = guarded(
      "[QB] contactInfo ex: %@",
      [&] { return std::optional<Names>(recordNames(contactForUsername(username), username)); },
      std::optional<Names>());
  if (!names || !names->contact) return std::nullopt;
  return names->display.empty() ? std::string(username) : names->display;
}

rt::Id QBContactInfo::asUIImage(rt::Id obj) { return rt::isKindOf(obj, "UIImage") ? obj : nullptr; }

rt::Id QBContactInfo::avatarForUsername(std::string_view username, rt::Id contact) {
  if (username.empty()) return placeholderAvatar("?");
  rt::Id name = rt::str(username);
  rt::Id img = guarded(
      "[QB] headMgr ex: %@",
      [name]() -> rt::Id {
        rt::Id heads = QBRuntime::serviceNamed("MMHeadImageMgr");
        if (!heads) return nullptr;
        struct Tries {
          const char* selector;
          unsigned categories;
        };
        for (Tries t : {Tries{"getHeadImage:withCategory:", 4},
                        Tries{"getOriginalHeadImage:withCategory:", 3},
                        Tries{"getOriginalHDHeadImg:withCategory:", 3}}) {
          if (!responds(heads, t.selector)) continue;
          for (unsigned category = 0; category < t.categories; ++category)
            if (rt::Id i = image(rt::send<rt::Id>(heads, t.selector, name, category))) return i;
        }
        return nullptr;
      },
      rt::Id{});
  if (img) return img;
  if (contact) {
    img = quietly(
        [contact]() -> rt::Id {
          if (responds(contact, "getContactHeadImage"))
            if (rt::Id i = image(rt::send<rt::Id>(contact, "getContactHeadImage"))) return i;
          if (!responds(contact, "getContactHeadImage:")) return nullptr;
          if (rt::Id i = image(rt::send<rt::Id>(contact, "getContactHeadImage:", true))) return i;
          return image(rt::send<rt::Id>(contact, "getContactHeadImage:", false));
        },
        rt::Id{});
    if (img) return img;
  }
  img = quietly(
      [name]() -> rt::Id {
        rt::Class headClass = rt::getClass("MMHeadImageMgr");
        if (!headClass ||
            !rt::respondsTo(rt::toId(headClass), rt::sel("getHeadImgPathForOldVersion:isHD:")))
          return nullptr;
        for (bool hd : {false, true}) {
          auto path = rt::nonEmptyString(
              rt::send<rt::Id>(headClass, "getHeadImgPathForOldVersion:isHD:", name, hd));
          if (!path || !sys::fileExists(*path)) continue;
          if (rt::Id i = image(rt::send<rt::Id>(rt::getClass("UIImage"),
                                                "imageWithContentsOfFile:", rt::str(*path))))
            return i;
        }
        return nullptr;
      },
      rt::Id{});
  if (img) return img;
  std::string display = displayNameFromContact(contact, username);
  return placeholderAvatar(display.empty() ? "?" : display);
}

rt::Id QBContactInfo::placeholderAvatar(std::string_view text) {
  std::string letter = text.empty() ? "?" : base::firstCharacterUpper(text);
  const rt::CGSize size{80, 80};
  const ui::Font font{36, ui::Weight::Medium};
  rt::CGSize t = ui::textSize(letter, font);
  return ui::renderImage(
      size, 0, true,
      {ui::FillRect{{{0, 0}, size}, ui::Color{0.75, 0.78, 0.82, 1.0}},
       ui::DrawText{letter, {(80 - t.width) / 2, (80 - t.height) / 2}, font, ui::kWhite}});
}

void QBContactInfo::fillInfo(QBContactInfo& info, rt::Id contact, std::string_view username) {
  info.username = std::string(username);
  Names n = recordNames(contact, username);
  info.remark = n.remark;
  info.nickname = n.nickname;
  info.displayName = n.display;
  info.avatar = avatarForUsername(username, n.contact);
}

QBContactInfo QBContactInfo::infoForUsername(std::string_view username) {
  QBContactInfo info;
  info.username = std::string(username);
  info.displayName = std::string(username);
  bool filled = guarded(
      "[QB] contactInfo ex: %@",
      [&] {
        fillInfo(info, contactForUsername(username), username);
        return true;
      },
      false);
  if (!filled) {
    info.displayName = std::string(username);
    info.avatar = placeholderAvatar(username.empty() ? "?" : username);
  }
  return info;
}

bool QBContactInfo::isSelectableFriendUsername(std::string_view u) {
  if (u.empty() || base::contains(u, "@chatroom") || base::startsWith(u, "gh_")) return false;
  return std::find(kReservedUsernames.begin(), kReservedUsernames.end(), u) ==
         kReservedUsernames.end();
}

bool QBContactInfo::isSelectableFriendUsername(rt::Id obj) {
  auto s = rt::asString(obj);
  return s && isSelectableFriendUsername(std::string_view(*s));
}

std::string QBContactInfo::selfUsername() {
  return quietly(
      []() -> std::string {
        rt::Id mgr = contactMgr();
        if (!mgr) return "";
        for (std::string_view selector : kSelfSelectors) {
          if (!responds(mgr, selector)) continue;
          rt::Id r = rt::send<rt::Id>(mgr, selector);
          if (auto s = rt::nonEmptyString(r)) return *s;
          std::string u = QBRuntime::usernameFrom(r);
          if (!u.empty()) return u;
        }
        return "";
      },
      std::string());
}

void QBContactInfo::appendContacts(rt::Id obj, std::vector<rt::Id>& into) {
  if (!rt::isArray(obj)) return;
  for (rt::Id e : rt::elements(obj)) into.push_back(e);
}

std::vector<rt::Id> QBContactInfo::rawNormalContacts() {
  std::vector<rt::Id> list;
  rt::Id mgr = contactMgr();
  guarded("[QB] CContactMgr list ex: %@", [&] {
    if (responds(mgr, "getContactList:contactType:needLoadExt:")) {
      for (unsigned type : kContactListTypes) {
        appendContacts(
            rt::send<rt::Id>(mgr, "getContactList:contactType:needLoadExt:", 1u, type, true), list);
        if (!list.empty()) break;
      }
    }
    if (list.empty() && responds(mgr, "getContactList:contactType:")) {
      for (unsigned type : kContactListTypes) {
        appendContacts(rt::send<rt::Id>(mgr, "getContactList:contactType:", 1u, type), list);
        if (!list.empty()) break;
      }
    }
  });
  if (list.empty()) {
    guarded("[QB] ContactsDataLogic list ex: %@", [&] {
      if (rt::Class logicClass = rt::getClass("ContactsDataLogic")) {
        rt::Id logic = rt::send<rt::Id>(logicClass, "alloc");
        if (rt::instancesRespondTo(logicClass, rt::sel("initWithScene:delegate:sort:")))
          logic = rt::send<rt::Id>(logic, "initWithScene:delegate:sort:", 0u,
                                   static_cast<rt::Id>(nullptr), true);
        else
          logic = rt::send<rt::Id>(logic, "init");
        if (responds(logic, "reloadContacts")) rt::send<void>(logic, "reloadContacts");
        for (std::string_view selector : kDataLogicListSelectors)
          if (responds(logic, selector)) appendContacts(rt::send<rt::Id>(logic, selector), list);
      }
    });
  }
  if (list.empty()) {
    quietly([&] {
      if (responds(mgr, "getAllContactUserName"))
        appendContacts(rt::send<rt::Id>(mgr, "getAllContactUserName"), list);
    });
  }
  return list;
}

std::vector<QBContactInfo::ListItem> QBContactInfo::listNormalContactItems() {
  std::string me = selfUsername();
  std::unordered_set<std::string> seen;
  std::vector<ListItem> items;
  for (rt::Id raw : rawNormalContacts()) {
    // A failure skips this entry only.
    guarded("[QB] QBContactInfo listNormalContactItems ex: %@", [&] {
      bool rawIsString = rt::isString(raw);
      std::string user =
          rawIsString ? rt::asString(raw).value_or("") : QBRuntime::usernameFrom(raw);
      if (!isSelectableFriendUsername(std::string_view(user))) return;
      if (!me.empty() && user == me) return;
      if (!seen.insert(user).second) return;
      rt::Id contact = contactForUsername(user);
      if (!contact && !rawIsString) contact = raw;
      Names n = listNames(contact, user);
      items.push_back({user, n.display.empty() ? user : n.display, n.nickname, n.remark});
    });
  }
  std::stable_sort(items.begin(), items.end(), [](const ListItem& a, const ListItem& b) {
    return rt::localizedStandardCompare(a.displayName, b.displayName) < 0;
  });
  return items;
}

}  // namespace host
