// One full pass of the main list's table (the row count, then every row), as
// UIKit asks it on a reload: the host alone, and with the library hiding 10%
// of the chats.
#include <benchmark/benchmark.h>

#include "core/config.hpp"
#include "core/startup.hpp"
#include "hiding/session_hooks.hpp"
#include "hostapp/host_app.hpp"
#include "rt/foundation.hpp"
#include "rt/kvc.hpp"
#include "rt/send.hpp"
#include "sim/device.hpp"
#include "sim/process.hpp"

namespace {

void tablePass(benchmark::State& state, bool hooked) {
  sim::Device device;
  hostapp::HostApp host;
  const long sessions = state.range(0);
  for (long i = 0; i < sessions; ++i) {
    hostapp::Friend f;
    f.username = "wxid_" + std::to_string(i);
    host.model.friends.push_back(f);
    host.model.sessions.push_back(f.username);
  }
  sim::Process process(device);
  sim::LaunchHooks hooks = host.launchHooks();
  if (hooked) hooks.libraryEntry = core::libraryEntry;
  process.launch(hooks);
  process.advance(5);
  if (hooked) {
    for (long i = 0; i < sessions; i += 10) core::QBConfig::shared().addSecretUser("wxid_" + std::to_string(i));
    hiding::QBSessionHooks::refreshFilterCache();
  }
  rt::Id frame = host.mainFrame();
  rt::Id table = rt::probeKey(frame, "m_tableView");
  if (state.range(1) == 0) {
    // A reload: the count, then the rows on screen.
    for (auto _ : state) rt::send<void>(table, "reloadData");
  } else {
    // Every row, as scrolling through the whole list asks for them.
    for (auto _ : state) {
      long rows = rt::send<long>(frame, "tableView:numberOfRowsInSection:", table, 0L);
      for (long r = 0; r < rows; ++r)
        benchmark::DoNotOptimize(rt::send<rt::Id>(frame, "tableView:cellForRowAtIndexPath:", table, rt::indexPath(r, 0)));
    }
  }
}

void BM_MainListPassUnhooked(benchmark::State& state) { tablePass(state, false); }
void BM_MainListPassHooked(benchmark::State& state) { tablePass(state, true); }
BENCHMARK(BM_MainListPassUnhooked)->Args({1000, 0})->Args({1000, 1})->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MainListPassHooked)->Args({1000, 0})->Args({1000, 1})->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
