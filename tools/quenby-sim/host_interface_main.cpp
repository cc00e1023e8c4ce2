// quenby-host-interface: what the system hooks in the host and what it sends
// to it, as `scripts/check-host.py` compares them with a class dump of a real
// host build. Generated, not written: the library is started in every build of
// the simulated host, and the hooks are the host methods each hook's types
// fitted there (so a hook that exists in both integer widths lists both); the
// sends are the other methods the simulated host defines, since it defines
// exactly what the system reaches.
//
// Output, sorted, one method a line: KIND LABEL TYPES..., e.g.
//   hook -[QuickReplyMsgMgr onNewMsgArriving:NotifyFlag:] v@:@I v@:@q
//   send +[VoipCXMgr sharedInstance] @@:
// `--defined [VARIANT]` prints instead the methods one build of the simulated
// host defines (LABEL TYPES), what the tests' class dumps were written from.
#include <iostream>
#include <map>
#include <set>
#include <string>

#include "startup/startup.hpp"
#include "host/hook_tally.hpp"
#include "sim/hostapp/host_app.hpp"
#include "rt/encoding.hpp"
#include "rt/runtime.hpp"
#include "sim/device/device.hpp"
#include "sim/process.hpp"

namespace {

using Table = std::map<std::string, std::set<std::string>>;

void collect(const std::string& variant, Table& hooks, Table& sends) {
  sim::Device device;
  hostapp::HostApp host;
  if (!variant.empty()) host.build.variants.insert(variant);
  sim::Process process(device);
  sim::LaunchHooks launch = host.launchHooks();
  launch.libraryEntry = core::libraryEntry;
  process.launch(launch);
  process.advance(3);  // start-up's main-queue steps
  // Only the host's own classes are in its class dump; the system's hooks on
  // Apple's classes (notification centre, search index) are not checked here.
  std::set<std::string> hostClasses = host.definedClassNames();
  for (const host::HookFit& fit : host::hookTally().fitted) {
    std::string cls = fit.label.substr(2, fit.label.find(' ') - 2);
    if (hostClasses.count(cls)) hooks[fit.label].insert(fit.hookTypes);
  }
  for (const auto& [cls, key] : host.definedMethods()) {
    bool classMethod = !key.empty() && key[0] == '+';
    std::string sel = classMethod ? key.substr(1) : key;
    rt::Class c = rt::getClass(cls);
    rt::Method m = !c            ? nullptr
                   : classMethod ? rt::getClassMethod(c, rt::sel(sel))
                                 : rt::getInstanceMethod(c, rt::sel(sel));
    const char* types = m ? rt::typeEncoding(m) : nullptr;
    if (!types) continue;
    sends[host::methodLabel(c, rt::sel(sel), classMethod)].insert(rt::normalizedEncoding(types));
  }
}

}  // namespace

int main(int argc, char** argv) {
  Table hooks, sends;
  if (argc >= 2 && std::string(argv[1]) == "--defined") {
    collect(argc >= 3 ? argv[2] : "", hooks, sends);
    for (const auto& [label, types] : sends) std::cout << label << ' ' << *types.begin() << '\n';
    return 0;
  }
  collect("", hooks, sends);
  for (const std::string& v : hostapp::knownHostVariants())
    if (v != "notify-args-changed") collect(v, hooks, sends);  // made to fit no hook
  for (const auto& [label, types] : hooks) sends.erase(label);
  std::cout << "# What the system hooks in the host and sends to it; written by\n"
               "# quenby-host-interface (tools/quenby-sim/host_interface_main.cpp).\n";
  auto print = [](const char* kind, const Table& t) {
    for (const auto& [label, types] : t) {
      std::cout << kind << ' ' << label;
      for (const std::string& ty : types) std::cout << ' ' << ty;
      std::cout << '\n';
    }
  };
  print("hook", hooks);
  print("send", sends);
  return 0;
}
