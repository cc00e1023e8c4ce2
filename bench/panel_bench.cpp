// The contact picker's search on every keystroke over a large address book,
// and the panel's whole table asked row by row with many secrets.
#include <benchmark/benchmark.h>

#include "core/config.hpp"
#include "panel/contact_pick_controller.hpp"
#include "panel/panel_controller.hpp"
#include "startup/startup.hpp"
#include "sim/hostapp/host_app.hpp"
#include "sim/device/device.hpp"
#include "sim/process.hpp"
#include "sim/frameworks/uikit/tables.hpp"
#include "sim/frameworks/uikit/uikit.hpp"

namespace {

void BM_PickerSearch(benchmark::State& state) {
  std::vector<panel::PickItem> items;
  for (long i = 0; i < state.range(0); ++i)
    items.push_back({"wxid_friend_" + std::to_string(i), "好友 " + std::to_string(i),
                     "Friend " + std::to_string(i), i % 5 ? "" : "Remark " + std::to_string(i)});
  sim::Device device;
  sim::Process process(device);  // lower-casing goes through the platform's string facade
  for (auto _ : state)
    benchmark::DoNotOptimize(panel::QBContactPickController::filter(items, "ND_12"));
}
BENCHMARK(BM_PickerSearch)->Arg(5000)->Unit(benchmark::kMillisecond);

void BM_PanelTable(benchmark::State& state) {
  sim::Device device;
  hostapp::HostApp host;
  for (long i = 0; i < state.range(0); ++i) {
    hostapp::Friend f;
    f.username = "wxid_friend_" + std::to_string(i);
    f.nickname = "Friend " + std::to_string(i);
    host.model.friends.push_back(f);
  }
  sim::Process process(device);
  sim::LaunchHooks hooks = host.launchHooks();
  hooks.libraryEntry = core::libraryEntry;
  process.launch(hooks);
  process.advance(2);
  for (const auto& f : host.model.friends) core::QBConfig::shared().addSecretUser(f.username);
  panel::QBPanelController::presentPanelOn(panel::QBPanelController::topVC());
  rt::Id table = sim::tableOf(sim::topController());
  for (auto _ : state) benchmark::DoNotOptimize(sim::showTable(table));
}
BENCHMARK(BM_PanelTable)->Arg(200)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
