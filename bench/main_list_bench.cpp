// The main list's table as UIKit asks it, with 100, 1,000 and 10,000 chats: a
// reload (the counts, then the cells of the rows on screen) and a full pass (a
// reload, then scrolling to the end and back, so every row is asked once).
// Worlds side by side: the host alone; the library loaded with no secrets
// (inactive); 10% secret but revealed; 10% secret and hidden (hooked); and
// hidden after a restart before the first unlock, when only the secrets'
// salted hashes are known (locked). The last two at 1,000 chats only.
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
#include "sim/frameworks/uikit/tables.hpp"

namespace {

enum class World { Unhooked, Inactive, Revealed, Hooked, Locked };

void tablePass(benchmark::State& state, World world, bool fullPass) {
  const long kChats = state.range(0);
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
  for (auto _ : state) {
    rt::send<void>(table, "reloadData");
    if (fullPass) sim::scrollThrough(table);
  }
  state.counters["rows"] = double(kChats);
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

void scales(benchmark::internal::Benchmark* b) { b->Arg(100)->Arg(1000)->Arg(10000); }

BENCHMARK(BM_MainListReload_Unhooked)->Apply(scales)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_MainListReload_Inactive)->Apply(scales)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_MainListReload_Revealed)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_MainListReload_Hooked)->Apply(scales)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_MainListReload_Locked)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_MainListFullPass_Unhooked)->Apply(scales)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MainListFullPass_Inactive)->Apply(scales)->Unit(benchmark::kMillisecond);
// A hooked pass over 10,000 rows may take seconds: one pass per repetition.
BENCHMARK(BM_MainListFullPass_Hooked)->Apply(scales)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_MainListFullPass_Locked)->Arg(1000)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace

BENCHMARK_MAIN();
