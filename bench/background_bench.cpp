// Leaving the app with 1,000 chats on the main list, 10% of them secret and
// revealed: the host's own background handling alone, and with the library,
// which locks and reloads the lists before the app switcher's picture; and
// one reload of the host's main list alone, what leaving is measured against.
#include <benchmark/benchmark.h>

#include <string>

#include "core/config.hpp"
#include "startup/startup.hpp"
#include "hiding/session_hooks.hpp"
#include "sim/hostapp/host_app.hpp"
#include "rt/kvc.hpp"
#include "rt/send.hpp"
#include "sim/device/device.hpp"
#include "sim/process.hpp"

namespace {

void addChats(hostapp::HostApp& host) {
  for (long i = 0; i < 1000; ++i) {
    hostapp::Friend f;
    f.username = "wxid_" + std::to_string(i);
    host.model.friends.push_back(f);
    host.model.sessions.push_back(f.username);
  }
}

void leaveTheApp(benchmark::State& state, bool hooked) {
  sim::Device device;
  hostapp::HostApp host;
  addChats(host);
  sim::Process process(device);
  sim::LaunchHooks hooks = host.launchHooks();
  if (hooked) hooks.libraryEntry = core::libraryEntry;
  process.launch(hooks);
  process.advance(5);
  if (hooked)
    for (long i = 0; i < 1000; i += 10)
      core::QBConfig::shared().addSecretUser("wxid_" + std::to_string(i));
  for (auto _ : state) {
    state.PauseTiming();
    if (hooked) {
      core::QBConfig::shared().setUnlocked(true);
      hiding::QBSessionHooks::refreshFilterCache();
    }
    process.advance(2);
    state.ResumeTiming();
    process.enterBackground();
    state.PauseTiming();
    process.enterForeground();
    state.ResumeTiming();
  }
}

void BM_Background_HostReload(benchmark::State& state) {
  sim::Device device;
  hostapp::HostApp host;
  addChats(host);
  sim::Process process(device);
  process.launch(host.launchHooks());
  process.advance(5);
  rt::Id table = rt::probeKey(host.mainFrame(), "m_tableView");
  for (auto _ : state) rt::send<void>(table, "reloadData");
}

void BM_Background_Unhooked(benchmark::State& state) { leaveTheApp(state, false); }
void BM_Background_Hooked(benchmark::State& state) { leaveTheApp(state, true); }
BENCHMARK(BM_Background_HostReload)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Background_Unhooked)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Background_Hooked)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
