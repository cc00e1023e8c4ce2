// Loading and saving the settings file with a large secret list.
#include <benchmark/benchmark.h>

#include "core/config.hpp"
#include "sim/device/device.hpp"
#include "sim/process.hpp"
#include "sys/files.hpp"

namespace {

struct World {
  sim::Device device;
  sim::Process process{device};
  explicit World(long secrets) {
    base::Array names;
    for (long i = 0; i < secrets; ++i) names.emplace_back("wxid_friend_" + std::to_string(i));
    core::QBConfig c;
    sys::writePropertyList(
        c.configURL(), base::Value(base::Dictionary{{"secrets", base::Value(std::move(names))}}));
  }
};

void BM_LoadSettings(benchmark::State& state) {
  World w(state.range(0));
  for (auto _ : state) {
    core::QBConfig c;
    c.load();
    benchmark::DoNotOptimize(c.secretCount());
  }
}
BENCHMARK(BM_LoadSettings)->Arg(10000)->Unit(benchmark::kMillisecond);

void BM_SaveSettings(benchmark::State& state) {
  World w(state.range(0));
  core::QBConfig c;
  c.load();
  for (auto _ : state) c.save();
}
BENCHMARK(BM_SaveSettings)->Arg(10000)->Unit(benchmark::kMillisecond);

void BM_LoadAndSaveSettings(benchmark::State& state) {
  World w(state.range(0));
  for (auto _ : state) {
    core::QBConfig c;
    c.load();
    c.save();
  }
}
BENCHMARK(BM_LoadAndSaveSettings)->Arg(10000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
