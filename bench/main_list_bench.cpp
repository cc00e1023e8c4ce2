// The main list's table with 1,000 chats as UIKit asks it: a reload (the count,
// then the rows on screen) and a full pass (the count, then every row, as
// scrolling through the whole list asks). Four worlds side by side: the host
// alone; the library loaded with no secrets (inactive); 10% secret but
// revealed; 10% secret and hidden (hooked); and hidden after a restart before
// the first unlock, when only the secrets' salted hashes are known (locked).
#include <benchmark/benchmark.h>

#include <string>

#include "core/config.hpp"
#include "startup/startup.hpp"
#include "hiding/session_hooks.hpp"
#include "sim/hostapp/host_app.hpp"
#include "rt/foundation.hpp"
#include "rt/kvc.hpp"
#include "rt/send.hpp"
#include "sim/device/device.hpp"
#include "sim/process.hpp"

namespace {

enum class World { Unhooked, Inactive, Revealed, Hooked, Locked };
constexpr long kChats = 1000;

void tablePass(benchmark::State& state, World world, bool fullPass) {
  sim::Device device;
  hostapp::HostApp host;
  for (long i = 0; i < kChats; ++i) {
    hostapp::Friend f;
    f.username = "wxid_" + std::to_string(i);
    host.model.friends.push_back(f);
    host.model.sessions.push_back(f.username);
  }
  sim::LaunchHooks hooks = host.launchHooks();
  if (world != World::Unhooked) hooks.libraryEntry = core::libraryEntry;
  if (world == World::Locked) {  // a run that saved the secrets, then a restart
    sim::Process before(device);
    before.launch(hooks);
    for (long i = 0; i < kChats; i += 10)
      core::QBConfig::shared().addSecretUser("wxid_" + std::to_string(i));
    device.setLockedSinceRestart(true);
  }
  sim::Process process(device);
  process.launch(hooks);
  process.advance(5);
  if (world == World::Revealed || world == World::Hooked) {
    for (long i = 0; i < kChats; i += 10)
      core::QBConfig::shared().addSecretUser("wxid_" + std::to_string(i));
    core::QBConfig::shared().setUnlocked(world == World::Revealed);
    hiding::QBSessionHooks::refreshFilterCache();
  }
  rt::Id frame = host.mainFrame();
  rt::Id table = rt::probeKey(frame, "m_tableView");
  if (!fullPass) {
    for (auto _ : state) rt::send<void>(table, "reloadData");
    return;
  }
  for (auto _ : state) {
    long rows = rt::send<long>(frame, "tableView:numberOfRowsInSection:", table, 0L);
    for (long r = 0; r < rows; ++r)
      benchmark::DoNotOptimize(
          rt::send<rt::Id>(frame, "tableView:cellForRowAtIndexPath:", table, rt::indexPath(r, 0)));
  }
}

void BM_MainListReload_Unhooked(benchmark::State& s) { tablePass(s, World::Unhooked, false); }
void BM_MainListReload_Inactive(benchmark::State& s) { tablePass(s, World::Inactive, false); }
void BM_MainListReload_Revealed(benchmark::State& s) { tablePass(s, World::Revealed, false); }
void BM_MainListReload_Hooked(benchmark::State& s) { tablePass(s, World::Hooked, false); }
void BM_MainListReload_Locked(benchmark::State& s) { tablePass(s, World::Locked, false); }
void BM_MainListFullPass_Unhooked(benchmark::State& s) { tablePass(s, World::Unhooked, true); }
void BM_MainListFullPass_Inactive(benchmark::State& s) { tablePass(s, World::Inactive, true); }
void BM_MainListFullPass_Hooked(benchmark::State& s) { tablePass(s, World::Hooked, true); }
void BM_MainListFullPass_Locked(benchmark::State& s) { tablePass(s, World::Locked, true); }

BENCHMARK(BM_MainListReload_Unhooked)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_MainListReload_Inactive)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_MainListReload_Revealed)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_MainListReload_Hooked)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_MainListReload_Locked)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_MainListFullPass_Unhooked)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MainListFullPass_Inactive)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MainListFullPass_Hooked)->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(BM_MainListFullPass_Locked)->Unit(benchmark::kMillisecond)->Iterations(2);

}  // namespace

BENCHMARK_MAIN();
