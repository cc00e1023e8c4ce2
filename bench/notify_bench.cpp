// One gating decision against the host's own method: the quick-reply
// "may I show a banner" test and the system notification request, for a
// non-secret and a secret sender (hidden, mode 1, so the request is rebuilt
// without sound), and for the request a secret sender in mode 0, dropped: the
// decision alone, without the copy that mode 1 allocates. Each hooked
// benchmark also times the host's own method (reached through its qb_ name)
// and reports the ratio as "vs_host", and what the hook adds to the host's
// method as "added_s": the decision, where the call goes on to the host (for
// mode 1, the decision and the silent copy); the whole call where it is dropped.
#include <benchmark/benchmark.h>

#include "seconds_per_call.hpp"

#include <chrono>

#include "core/config.hpp"
#include "startup/startup.hpp"
#include "sim/hostapp/host_app.hpp"
#include "rt/foundation.hpp"
#include "rt/send.hpp"
#include "sim/device/device.hpp"
#include "sim/process.hpp"
#include "sim/frameworks/user_notifications.hpp"

namespace {

using rt::Id;

struct World {
  sim::Device device;
  hostapp::HostApp host;
  std::unique_ptr<sim::Process> process;
  World() {
    for (const char* u : {"alice", "bob"}) {
      hostapp::Friend f;
      f.username = u;
      host.model.friends.push_back(f);
    }
    process = std::make_unique<sim::Process>(device);
    sim::LaunchHooks hooks = host.launchHooks();
    hooks.libraryEntry = core::libraryEntry;
    process->launch(hooks);
    process->advance(5);
    core::QBConfig& c = core::QBConfig::shared();
    for (int i = 0; i < 200; ++i) c.addSecretUser("wxid_secret_" + std::to_string(i));
    c.addSecretUser("bob");
    c.setSecretNotifyMode(1);
  }
};

Id message(const char* from) {
  return rt::dictionary({{rt::str("m_nsFromUsr"), rt::str(from)},
                         {rt::str("m_nsToUsr"), rt::str("wxid_me")},
                         {rt::str("m_nsContent"), rt::str("hello")}});
}

Id request(const char* from) {
  Id content = rt::send<Id>(rt::getClass("UNMutableNotificationContent"), "new");
  rt::send<void>(content, "setBody:", rt::str("hello"));
  rt::send<void>(content,
                 "setSound:", rt::send<Id>(rt::getClass("UNNotificationSound"), "defaultSound"));
  rt::send<void>(content,
                 "setUserInfo:", rt::dictionary({{rt::str("fromUserName"), rt::str(from)}}));
  rt::send<void>(content, "setThreadIdentifier:", rt::str(from));
  return rt::send<Id>(rt::getClass("UNNotificationRequest"),
                      "requestWithIdentifier:content:trigger:", rt::str("r"), content, Id{nullptr});
}

using qbbench::secondsPerCall;

template <typename Hooked, typename Host>
void measure(benchmark::State& state, Hooked&& hooked, Host&& host, bool reachesHost = true) {
  double hostPerCall = secondsPerCall(host);
  auto start = std::chrono::steady_clock::now();
  for (auto _ : state) hooked();
  double perCall = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() /
                   double(state.iterations());
  state.counters["vs_host"] = perCall / hostPerCall;
  state.counters["added_s"] = reachesHost ? perCall - hostPerCall : perCall;
}

void BM_CanShowPush(benchmark::State& state) {
  World w;
  Id mgr = hostapp::hostService("QuickReplyMsgMgr");
  Id m = message(state.range(0) ? "bob" : "alice");
  measure(
      state,
      [&] {
        benchmark::DoNotOptimize(
            rt::send<bool>(mgr, "canShowPushForContact:msgWrap:", Id{nullptr}, m));
      },
      [&] {
        benchmark::DoNotOptimize(
            rt::send<bool>(mgr, "qb_canShowPushForContact:msgWrap:", Id{nullptr}, m));
      });
  state.SetLabel(state.range(0) ? "secret sender" : "non-secret sender");
}

void BM_SystemRequest(benchmark::State& state) {
  World w;
  Id center = rt::send<Id>(rt::getClass("UNUserNotificationCenter"), "currentNotificationCenter");
  Id req = request(state.range(0) ? "bob" : "alice");
  if (state.range(0) == 2) core::QBConfig::shared().setSecretNotifyMode(0);
  Id done = sim::makeCompletionBlock([](Id) {});
  const char* sel = "addNotificationRequest:withCompletionHandler:";
  measure(
      state, [&] { rt::send<void>(center, sel, req, done); },
      [&] {
        rt::send<void>(center, "qb_addNotificationRequest:withCompletionHandler:", req, done);
      },
      state.range(0) != 2);
  state.SetLabel(state.range(0) == 2 ? "secret sender, dropped"
                 : state.range(0)    ? "secret sender, silent copy"
                                     : "non-secret sender");
}

BENCHMARK(BM_CanShowPush)->Arg(0)->Arg(1);
BENCHMARK(BM_SystemRequest)->Arg(0)->Arg(1)->Arg(2);

}  // namespace

BENCHMARK_MAIN();
