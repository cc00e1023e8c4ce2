// The host app's data and build: me, friend, room, host lacks, host raises.
#include <algorithm>
#include <set>

#include "commands.hpp"
#include "sim/springboard/springboard.hpp"

namespace qbsim {
namespace {

// NAME=VALUE options after the username.
std::string option(const Command& c, std::size_t i, const char* key, const std::string& usage) {
  const std::string& w = c.words[i];
  std::string prefix = std::string(key) + "=";
  if (w.rfind(prefix, 0) != 0) throw ScriptError{"bad option '" + w + "' (usage: " + usage + ")"};
  return w.substr(prefix.size());
}

using MethodKey =
    std::pair<std::string, std::string>;  // class, selector ("+sel" for a class method)

// What one build defines: its classes, as (class, "") with or without
// methods, and each method.
std::set<MethodKey> definedBy(const std::set<std::string>& variants) {
  sim::Device device(sim::DeviceOptions{});
  hostapp::HostApp host;
  host.build.variants = variants;
  sim::Process scratch(device);
  scratch.runGuarded([&] { host.defineClasses(); });
  std::vector<MethodKey> methods = host.definedMethods();
  std::set<MethodKey> all(methods.begin(), methods.end());
  for (const std::string& cls : host.definedClassNames()) all.insert({cls, ""});
  return all;
}

// Every method some build of the host defines, learnt once from scratch
// processes, so `host lacks` and `host raises` can refuse what the host never had.
const std::set<MethodKey>& hostMethods() {
  static const std::set<MethodKey> methods = [] {
    std::set<MethodKey> all = definedBy({});
    for (const std::string& variant : hostapp::knownHostVariants()) all.merge(definedBy({variant}));
    return all;
  }();
  return methods;
}

bool hostHasClass(const std::string& cls) { return hostMethods().count({cls, ""}) != 0; }
bool hostHasMethod(const std::string& cls, const std::string& sel) {
  return !sel.empty() && (hostMethods().count({cls, sel}) || hostMethods().count({cls, "+" + sel}));
}

void requireNotRunning(Session& s, const std::string& what) {
  if (s.process()) throw ScriptError{what + ": the app is already running (use it before launch)"};
}

}  // namespace

void addHostCommands(CommandTable& t) {
  t["me"] = {"me USER", [](Session& s, const Command& c) {
               requireWords(c, 2, 2, "me USER");
               requireNotRunning(s, "me");
               s.host().model.me = c.words[1];
             }};
  t["friend"] = {"friend USER [nick=T] [remark=T] [alias=T]", [](Session& s, const Command& c) {
                   const std::string usage = "friend USER [nick=T] [remark=T] [alias=T]";
                   requireWords(c, 2, 5, usage);
                   hostapp::Friend f;
                   if (hostapp::Friend* existing = s.host().model.findFriend(c.words[1]))
                     f = *existing;
                   f.username = c.words[1];
                   for (std::size_t i = 2; i < c.words.size(); ++i) {
                     const std::string& w = c.words[i];
                     if (w.rfind("nick=", 0) == 0)
                       f.nickname = option(c, i, "nick", usage);
                     else if (w.rfind("remark=", 0) == 0)
                       f.remark = option(c, i, "remark", usage);
                     else if (w.rfind("alias=", 0) == 0)
                       f.alias = option(c, i, "alias", usage);
                     else
                       throw ScriptError{"bad option '" + w + "' (usage: " + usage + ")"};
                   }
                   if (hostapp::Friend* existing = s.host().model.findFriend(f.username))
                     *existing = f;
                   else
                     s.host().model.friends.push_back(f);
                 }};
  t["room"] = {"room USER@chatroom [title=T]", [](Session& s, const Command& c) {
                 const std::string usage = "room USER@chatroom [title=T]";
                 requireWords(c, 2, 3, usage);
                 const std::string& name = c.words[1];
                 if (name.size() <= 9 || name.compare(name.size() - 9, 9, "@chatroom") != 0)
                   throw ScriptError{"room: a group chat's username ends in @chatroom"};
                 std::string title = c.words.size() == 3 ? option(c, 2, "title", usage) : "";
                 for (auto& r : s.host().model.rooms)
                   if (r.username == name) {
                     r.title = title;
                     return;
                   }
                 s.host().model.rooms.push_back({name, title});
               }};
  t["host"] = {
      "host lacks CLASS [SELECTOR] | host raises CLASS SELECTOR | host variant NAME",
      [](Session& s, const Command& c) {
        if (c.words.size() >= 3 && c.words[1] == "lacks" && c.words.size() <= 4) {
          const auto& sb = springboard::classNames();
          if (std::find(sb.begin(), sb.end(), c.words[2]) != sb.end()) {
            // SpringBoard's own classes: a SpringBoard build without them.
            s.changeSpringBoard("host lacks", [&] {
              if (c.words.size() == 3)
                s.host().build.lackingClasses.insert(c.words[2]);
              else
                s.host().build.lackingMethods.insert({c.words[2], c.words[3]});
            });
            return;
          }
          requireNotRunning(s, "host lacks");
          if (!hostHasClass(c.words[2]))
            throw ScriptError{"host lacks: the host has no class '" + c.words[2] + "'"};
          if (c.words.size() == 4 && !hostHasMethod(c.words[2], c.words[3]))
            throw ScriptError{"host lacks: the host's " + c.words[2] + " defines no method '" +
                              c.words[3] + "' of its own"};
          if (c.words.size() == 3)
            s.host().build.lackingClasses.insert(c.words[2]);
          else
            s.host().build.lackingMethods.insert({c.words[2], c.words[3]});
          return;
        }
        if (c.words.size() == 4 && c.words[1] == "raises") {
          const std::string& cls = c.words[2];
          const std::string& sel = c.words[3];
          const auto& sb = springboard::classNames();
          if (std::find(sb.begin(), sb.end(), cls) != sb.end()) {
            sim::Process& board = s.springboard();  // booted, so its methods are known
            if (!springboard::defines(cls, sel))
              throw ScriptError{"host raises: SpringBoard's " + cls + " defines no method '" + sel +
                                "' of its own"};
            s.host().build.raisingMethods.insert({cls, sel});
            springboard::makeRaising(board, cls, sel);
            return;
          }
          // A fault the host cannot have would test nothing, silently.
          if (!hostHasClass(cls))
            throw ScriptError{"host raises: the host has no class '" + cls + "'"};
          if (!hostHasMethod(cls, sel))
            throw ScriptError{"host raises: the host's " + cls + " defines no method '" + sel +
                              "' of its own"};
          s.host().makeRaising(cls, sel);
          return;
        }
        if (c.words.size() == 3 && c.words[1] == "variant") {
          requireNotRunning(s, "host variant");
          if (!hostapp::knownHostVariants().count(c.words[2]))
            throw ScriptError{"host variant: unknown variant '" + c.words[2] + "'"};
          s.host().build.variants.insert(c.words[2]);
          return;
        }
        throw ScriptError{
            "usage: host lacks CLASS [SELECTOR] | host raises CLASS SELECTOR | host variant NAME"};
      }};
}

}  // namespace qbsim
