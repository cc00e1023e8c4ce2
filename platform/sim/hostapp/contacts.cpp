// The host's contacts: contact records (CContact), the contact manager
// (CContactMgr) with its cache and database lookups and contact lists, the
// head-image service (MMHeadImageMgr), and the contacts screen's data logic
// (ContactsDataLogic).
#include <filesystem>
#include <fstream>
#include <map>

#include "sim/hostapp/host_app.hpp"
#include "sim/hostapp/host_class.hpp"
#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/process.hpp"
#include "sim/runtime/runtime.hpp"
#include "sim/frameworks/uikit/uikit.hpp"

namespace hostapp {
namespace {

using rt::Id;
using rt::SEL;

HostModel& model() { return HostApp::current().model; }

// A new contact record filled from the model; `complete` false leaves the
// names out, as a cache entry that was never loaded from the database.
Id makeContact(const std::string& username, bool complete) {
  rt::Class cls = rt::getClass("CContact");
  if (!cls) return nullptr;
  Id c = rt::send<Id>(rt::send<Id>(cls, "alloc"), "init");
  auto set = [&](const char* ivar, const std::string& v) {
    if (rt::Ivar iv = rt::getInstanceVariable(cls, ivar)) rt::setIvarObject(c, iv, rt::str(v));
  };
  set("m_nsUsrName", username);
  if (Friend* f = model().findFriend(username); f && complete) {
    set("m_nsNickName", f->nickname);
    set("m_nsRemark", f->remark);
    set("m_nsAliasName", f->alias);
  } else if (const Room* r = model().findRoom(username)) {
    set("m_nsNickName", r->title);
  } else if (username == model().me) {
    set("m_nsNickName", "我");
  }
  return c;
}

bool known(const std::string& username) {
  return model().findFriend(username) || model().findRoom(username) || username == model().me;
}

struct ContactCache {
  std::map<std::string, Id> contacts;
};

// The cache keeps one record per username for the process.
Id cached(Id mgr, const std::string& username) {
  if (!known(username)) return nullptr;
  if (!sim::native<ContactCache>(mgr)) mgr->native = ContactCache{};
  Id& c = sim::native<ContactCache>(mgr)->contacts[username];
  if (!c) {
    Friend* f = model().findFriend(username);
    c = makeContact(username, !f || f->cacheComplete);
  }
  return c;
}

std::string ivarText(Id c, const char* name) {
  return rt::asString(rt::ivarNamed(c, name)).value_or("");
}

// The property's accessor, as the host's contact class declares it.
Id contactUsername(Id self, SEL) { return rt::str(ivarText(self, "m_nsUsrName")); }

Id getContactDisplayName(Id self, SEL) {
  std::string remark = ivarText(self, "m_nsRemark");
  if (!remark.empty()) return rt::str(remark);
  return rt::str(ivarText(self, "m_nsNickName"));
}

Id contactHeadImage(Id self) {
  Friend* f = model().findFriend(ivarText(self, "m_nsUsrName"));
  if (!f || !f->headImage) return nullptr;
  return sim::drawnImage({132, 132}, 3, true, {"head image of " + f->username});
}
Id getContactHeadImage(Id self, SEL) { return contactHeadImage(self); }
Id getContactHeadImageHD(Id self, SEL, bool) { return contactHeadImage(self); }

Id getContactByName(Id self, SEL, Id name) { return cached(self, rt::asString(name).value_or("")); }
Id getContactByNameFromDB(Id, SEL, Id name) {
  std::string u = rt::asString(name).value_or("");
  return known(u) ? makeContact(u, true) : nullptr;
}
Id getSelfContact(Id self, SEL) { return cached(self, model().me); }
Id getSelfUserName(Id, SEL) { return rt::str(model().me); }

std::vector<Id> allContacts(Id mgr) {
  std::vector<Id> out;
  for (const Friend& f : model().friends) out.push_back(cached(mgr, f.username));
  for (const Room& r : model().rooms) out.push_back(cached(mgr, r.username));
  out.push_back(cached(mgr, model().me));
  return out;
}

// List type 1 is the user's contacts, under contact type 1 (or 3 alone in the
// contacts-type-3 build); every other type answers an empty list.
Id getContactList(Id self, SEL, unsigned listType, unsigned contactType, bool) {
  unsigned contactsType = HostApp::current().build.hasVariant("contacts-type-3") ? 3 : 1;
  return listType == 1 && contactType == contactsType ? rt::array(allContacts(self))
                                                      : rt::array({});
}
Id getContactListShort(Id self, SEL, unsigned listType, unsigned contactType) {
  return getContactList(self, nullptr, listType, contactType, true);
}
Id getAllContactUserName(Id, SEL) {
  std::vector<Id> names;
  for (const Friend& f : model().friends) names.push_back(rt::str(f.username));
  for (const Room& r : model().rooms) names.push_back(rt::str(r.username));
  return rt::array(names);
}

Id headImage(const std::string& username, unsigned category) {
  Friend* f = model().findFriend(username);
  if (!f || !f->headImage || category > 3) return nullptr;
  return sim::drawnImage({132, 132}, 3, true, {"head image of " + username});
}
Id getHeadImage(Id, SEL, Id name, unsigned category) {
  return headImage(rt::asString(name).value_or(""), category);
}
Id getOriginalHeadImage(Id, SEL, Id name, unsigned category) {
  return headImage(rt::asString(name).value_or(""), category);
}
Id getHeadImgPathForOldVersion(Id, SEL, Id name, bool hd) {
  std::string u = rt::asString(name).value_or("");
  Friend* f = model().findFriend(u);
  if (!f || !f->oldHeadImage) return nullptr;
  std::string dir = sim::currentProcess().device().containerPath() + "/Library/HeadImages";
  std::string path = dir + "/" + u + (hd ? "_hd" : "") + ".png";
  std::error_code ec;
  std::filesystem::create_directories(dir, ec);
  if (!std::filesystem::exists(path, ec)) std::ofstream(path) << "png";
  return rt::str(path);
}

Id dataLogicInit(Id self, SEL, unsigned, Id, bool) { return self; }
Id getAllNormalContact(Id, SEL) {
  std::vector<Id> out;
  for (const Friend& f : model().friends) out.push_back(hostContact(f.username));
  return rt::array(out);
}
Id getFavourContactArray(Id, SEL) {
  std::vector<Id> out;
  for (const Friend& f : model().friends)
    if (f.favourite) out.push_back(makeContact(f.username, true));
  return rt::array(out);
}

}  // namespace

Id hostContact(const std::string& username) {
  Id mgr = hostService("CContactMgr");
  return mgr ? cached(mgr, username) : makeContact(username, true);
}

void defineContactClasses(HostApp& app) {
  HostClass(app, "CContact")
      .ivar("m_nsUsrName", "@")
      .method("m_nsUsrName", contactUsername)
      .ivar("m_nsNickName", "@")
      .ivar("m_nsRemark", "@")
      .ivar("m_nsAliasName", "@")
      .method("getContactDisplayName", getContactDisplayName)
      .method("getContactHeadImage", getContactHeadImage)
      .method("getContactHeadImage:", getContactHeadImageHD)
      .build();
  HostClass(app, "CContactMgr")
      .method("getContactByName:", getContactByName)
      .method("getContactByNameFromCache:", getContactByName)
      .method("getContactByNameFromDB:", getContactByNameFromDB)
      .method("getSelfContact", getSelfContact)
      .method("getSelfUserName", getSelfUserName)
      .method("getContactList:contactType:needLoadExt:", getContactList)
      .method("getContactList:contactType:", getContactListShort)
      .method("getAllContactUserName", getAllContactUserName)
      .build();
  HostClass(app, "MMHeadImageMgr")
      .method("getHeadImage:withCategory:", getHeadImage)
      .method("getOriginalHeadImage:withCategory:", getOriginalHeadImage)
      .classMethod("getHeadImgPathForOldVersion:isHD:", getHeadImgPathForOldVersion)
      .build();
  HostClass(app, "ContactsDataLogic")
      .method("initWithScene:delegate:sort:", dataLogicInit)
      .method("getAllNormalContact", getAllNormalContact)
      .method("getFavourContactArray", getFavourContactArray)
      .build();
}

}  // namespace hostapp
