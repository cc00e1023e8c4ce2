#include "host/contact_info.hpp"

#include <algorithm>
#include <unordered_set>

#include "base/utf8.hpp"
#include "host/runtime_toolkit.hpp"
#include "rt/exception.hpp"
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

}  // namespace

rt::Id QBContactInfo::contactMgr() { return QBRuntime::serviceNamed("CContactMgr"); }

rt::Id QBContactInfo::contactForUsername(std::string_view username) {
  if (username.empty()) return nullptr;
  rt::Id mgr = contactMgr();
  if (!mgr) return nullptr;
  rt::Id fallback = nullptr;
  try {
    for (std::string_view selector : kLookupSelectors) {
      if (!responds(mgr, selector)) continue;
      rt::Id found = rt::send<rt::Id>(mgr, selector, rt::str(username));
      if (!found) continue;
      if (!isPoor(found)) return found;
      if (!fallback) fallback = found;
    }
  } catch (...) {
    sys::log("[QB] contactForUsername ex: %@", rt::describeCurrentException());
  }
  return fallback;
}

std::string QBContactInfo::stringValue(rt::Id obj, std::string_view key) {
  if (!obj || key.empty()) return "";
  return rt::nonEmptyString(rt::probeKey(obj, key)).value_or("");
}

std::string QBContactInfo::propertyString(rt::Id obj, const std::vector<std::string_view>& names) {
  if (!obj) return "";
  for (std::string_view name : names) {
    try {
      std::string s = stringValue(obj, name);
      if (!s.empty()) return s;
      if (responds(obj, name)) {
        if (auto r = rt::nonEmptyString(rt::send<rt::Id>(obj, name))) return *r;
      }
    } catch (...) {
      // The next name, then.
    }
  }
  return "";
}

std::string QBContactInfo::displayNameFromContact(rt::Id contact, std::string_view username) {
  if (!contact) return std::string(username);
  try {
    if (responds(contact, "getContactDisplayName")) {
      if (auto s = rt::nonEmptyString(rt::send<rt::Id>(contact, "getContactDisplayName")))
        return *s;
    }
  } catch (...) {
  }
  for (const auto* list : {&kRemarkKeys, &kNicknameKeys, &kAliasKeys}) {
    std::string s = propertyString(contact, *list);
    if (!s.empty()) return s;
  }
  return std::string(username);
}

std::string QBContactInfo::displayNameForUsername(std::string_view username) {
  QBContactInfo info = infoForUsername(username);
  return info.displayName.empty() ? std::string(username) : info.displayName;
}

rt::Id QBContactInfo::asUIImage(rt::Id obj) { return rt::isKindOf(obj, "UIImage") ? obj : nullptr; }

rt::Id QBContactInfo::avatarForUsername(std::string_view username, rt::Id contact) {
  if (username.empty()) return placeholderAvatar("?");
  rt::Id name = rt::str(username);
  try {
    if (rt::Id heads = QBRuntime::serviceNamed("MMHeadImageMgr")) {
      struct Tries {
        const char* selector;
        unsigned categories;
      };
      for (Tries t :
           {Tries{"getHeadImage:withCategory:", 4}, Tries{"getOriginalHeadImage:withCategory:", 3},
            Tries{"getOriginalHDHeadImg:withCategory:", 3}}) {
        if (!responds(heads, t.selector)) continue;
        for (unsigned category = 0; category < t.categories; ++category)
          if (rt::Id img = image(rt::send<rt::Id>(heads, t.selector, name, category))) return img;
      }
    }
  } catch (...) {
    sys::log("[QB] headMgr ex: %@", rt::describeCurrentException());
  }
  if (contact) {
    try {
      if (responds(contact, "getContactHeadImage"))
        if (rt::Id img = image(rt::send<rt::Id>(contact, "getContactHeadImage"))) return img;
      if (responds(contact, "getContactHeadImage:")) {
        if (rt::Id img = image(rt::send<rt::Id>(contact, "getContactHeadImage:", true))) return img;
        if (rt::Id img = image(rt::send<rt::Id>(contact, "getContactHeadImage:", false)))
          return img;
      }
    } catch (...) {
    }
  }
  try {
    rt::Class headClass = rt::getClass("MMHeadImageMgr");
    if (headClass &&
        rt::respondsTo(rt::toId(headClass), rt::sel("getHeadImgPathForOldVersion:isHD:"))) {
      for (bool hd : {false, true}) {
        auto path = rt::nonEmptyString(
            rt::send<rt::Id>(headClass, "getHeadImgPathForOldVersion:isHD:", name, hd));
        if (!path || !sys::fileExists(*path)) continue;
        if (rt::Id img = image(rt::send<rt::Id>(rt::getClass("UIImage"),
                                                "imageWithContentsOfFile:", rt::str(*path))))
          return img;
      }
    }
  } catch (...) {
  }
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
  info.remark = propertyString(contact, kRemarkKeys);
  info.nickname = propertyString(contact, kNicknameKeys);
  info.displayName = displayNameFromContact(contact, username);
  rt::Id forAvatar = contact;
  if ((info.nickname.empty() && info.remark.empty()) || info.displayName == username) {
    rt::Id mgr = contactMgr();
    if (responds(mgr, "getContactByNameFromDB:")) {
      rt::Id db = rt::send<rt::Id>(mgr, "getContactByNameFromDB:", rt::str(username));
      if (db && db != contact) {
        if (std::string r = propertyString(db, kRemarkKeysShort); !r.empty()) info.remark = r;
        if (std::string n = propertyString(db, kNicknameKeysShort); !n.empty()) info.nickname = n;
        std::string d = displayNameFromContact(db, username);
        if (!d.empty() && d != username) info.displayName = d;
        forAvatar = db;
      }
    }
  }
  info.avatar = avatarForUsername(username, forAvatar);
}

QBContactInfo QBContactInfo::infoForUsername(std::string_view username) {
  QBContactInfo info;
  info.username = std::string(username);
  info.displayName = std::string(username);
  try {
    fillInfo(info, contactForUsername(username), username);
  } catch (...) {
    sys::log("[QB] contactInfo ex: %@", rt::describeCurrentException());
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
  try {
    rt::Id mgr = contactMgr();
    if (!mgr) return "";
    for (std::string_view selector : kSelfSelectors) {
      if (!responds(mgr, selector)) continue;
      rt::Id r = rt::send<rt::Id>(mgr, selector);
      if (auto s = rt::nonEmptyString(r)) return *s;
      std::string u = QBRuntime::usernameFrom(r);
      if (!u.empty()) return u;
    }
  } catch (...) {
  }
  return "";
}

void QBContactInfo::appendContacts(rt::Id obj, std::vector<rt::Id>& into) {
  if (!rt::isArray(obj)) return;
  for (rt::Id e : rt::elements(obj)) into.push_back(e);
}

std::vector<rt::Id> QBContactInfo::rawNormalContacts() {
  std::vector<rt::Id> list;
  rt::Id mgr = contactMgr();
  try {
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
  } catch (...) {
    sys::log("[QB] CContactMgr list ex: %@", rt::describeCurrentException());
  }
  if (list.empty()) {
    try {
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
    } catch (...) {
      sys::log("[QB] ContactsDataLogic list ex: %@", rt::describeCurrentException());
    }
  }
  if (list.empty()) {
    try {
      if (responds(mgr, "getAllContactUserName"))
        appendContacts(rt::send<rt::Id>(mgr, "getAllContactUserName"), list);
    } catch (...) {
    }
  }
  return list;
}

std::vector<QBContactInfo::ListItem> QBContactInfo::listNormalContactItems() {
  std::string me = selfUsername();
  std::unordered_set<std::string> seen;
  std::vector<ListItem> items;
  for (rt::Id raw : rawNormalContacts()) {
    try {
      bool rawIsString = rt::isString(raw);
      std::string username =
          rawIsString ? rt::asString(raw).value_or("") : QBRuntime::usernameFrom(raw);
      if (!isSelectableFriendUsername(std::string_view(username))) continue;
      if (!me.empty() && username == me) continue;
      if (!seen.insert(username).second) continue;
      rt::Id contact = contactForUsername(username);
      if (!contact && !rawIsString) contact = raw;
      std::string remark = propertyString(contact, kRemarkKeys);
      std::string nickname = propertyString(contact, kNicknameKeys);
      std::string display = displayNameFromContact(contact, username);
      if ((nickname.empty() && remark.empty()) || display == username) {
        rt::Id mgr = contactMgr();
        if (responds(mgr, "getContactByNameFromDB:")) {
          if (rt::Id db = rt::send<rt::Id>(mgr, "getContactByNameFromDB:", rt::str(username))) {
            if (std::string r = propertyString(db, kRemarkKeysShort); !r.empty()) remark = r;
            if (std::string n = propertyString(db, kNicknameKeysShort); !n.empty()) nickname = n;
            display = displayNameFromContact(db, username);
          }
        }
      }
      items.push_back({username, display.empty() ? username : display, nickname, remark});
    } catch (...) {
      // This entry only.
    }
  }
  std::stable_sort(items.begin(), items.end(), [](const ListItem& a, const ListItem& b) {
    return rt::localizedStandardCompare(a.displayName, b.displayName) < 0;
  });
  return items;
}

}  // namespace host
