// Building the sorted friend list for the pickers from a large address book.
#include <benchmark/benchmark.h>

#include "host/contact_info.hpp"
#include "sim/hostapp/host_app.hpp"
#include "sim/device/device.hpp"
#include "sim/process.hpp"

namespace {

void BM_ListNormalContactItems(benchmark::State& state) {
  sim::Device device;
  hostapp::HostApp host;
  for (long i = 0; i < state.range(0); ++i) {
    hostapp::Friend f;
    f.username = "wxid_friend_" + std::to_string(i);
    f.nickname = (i % 3 ? "好友" : "friend ") + std::to_string(i);
    f.remark = i % 5 ? "" : "remark " + std::to_string(i);
    f.cacheComplete = i % 10 != 0;  // every tenth needs the database re-read
    host.model.friends.push_back(f);
  }
  sim::Process process(device);
  process.launch(host.launchHooks());
  for (auto _ : state) benchmark::DoNotOptimize(host::QBContactInfo::listNormalContactItems());
  state.counters["objects"] = double(process.runtime().objectCount());
}
BENCHMARK(BM_ListNormalContactItems)->Arg(5000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
