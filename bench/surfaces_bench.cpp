// The host's other screens with and without the library hiding 10% of the
// people: the Moments screen (the count, then the items that fit on a phone
// screen) over a 1,000-item timeline, and one load of the contacts screen
// with 5,000 friends. Each pair runs in the same program, and the hooked /
// unhooked time ratios are printed at the end.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>

#include "core/config.hpp"
#include "startup/startup.hpp"
#include "sim/hostapp/host_app.hpp"
#include "rt/foundation.hpp"
#include "rt/kvc.hpp"
#include "rt/send.hpp"
#include "sim/device/device.hpp"
#include "sim/process.hpp"

namespace {

// About this many Moments items fit on a phone screen at once.
constexpr long kMomentsOnScreen = 9;

struct World {
  sim::Device device;
  hostapp::HostApp host;
  std::unique_ptr<sim::Process> process;

  // `people` friends, each with one Moments item; with the library, every
  // tenth is secret and hidden.
  World(long people, bool hooked) {
    for (long i = 0; i < people; ++i) {
      hostapp::Friend f;
      f.username = "wxid_" + std::to_string(i);
      f.nickname = (i % 3 ? "friend " : "好友 ") + std::to_string(i);
      host.model.friends.push_back(f);
      host.model.addMoment(f.username, "");
    }
    process = std::make_unique<sim::Process>(device);
    sim::LaunchHooks hooks = host.launchHooks();
    if (hooked) hooks.libraryEntry = core::libraryEntry;
    process->launch(hooks);
    process->advance(5);
    if (hooked)
      for (long i = 0; i < people; i += 10)
        core::QBConfig::shared().addSecretUser("wxid_" + std::to_string(i));
  }
};

void momentsScreen(benchmark::State& state, bool hooked) {
  World w(1000, hooked);
  rt::Id facade = hostapp::hostService("WCFacade");
  for (auto _ : state) {
    unsigned long n = rt::send<unsigned long>(facade, "countOfTimelineDataItem");
    for (long i = 0; i < kMomentsOnScreen && i < long(n); ++i)
      benchmark::DoNotOptimize(rt::send<rt::Id>(facade, "getTimelineDataItemOfIndex:", i));
  }
}

void contactsLoad(benchmark::State& state, bool hooked) {
  World w(5000, hooked);
  w.process->runGuarded([&] { w.host.selectTab(1); });
  rt::Id table = rt::probeKey(w.host.contactsScreen(), "m_tableView");
  for (auto _ : state) rt::send<void>(table, "reloadData");
}

void BM_MomentsScreen_unhooked(benchmark::State& s) { momentsScreen(s, false); }
void BM_MomentsScreen_hooked(benchmark::State& s) { momentsScreen(s, true); }
void BM_ContactsLoad_unhooked(benchmark::State& s) { contactsLoad(s, false); }
void BM_ContactsLoad_hooked(benchmark::State& s) { contactsLoad(s, true); }
BENCHMARK(BM_MomentsScreen_unhooked)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_MomentsScreen_hooked)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ContactsLoad_unhooked)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ContactsLoad_hooked)->Unit(benchmark::kMillisecond);

// The console report, then "NAME hooked/unhooked: R" for each pair.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& r : runs)
      if (r.iterations > 0)
        perIteration_[r.benchmark_name()] = r.real_accumulated_time / double(r.iterations);
  }
  void Finalize() override {
    ConsoleReporter::Finalize();
    for (const auto& [name, t] : perIteration_) {
      auto cut = name.rfind("_unhooked");
      if (cut == std::string::npos) continue;
      auto hooked = perIteration_.find(name.substr(0, cut) + "_hooked");
      if (hooked != perIteration_.end() && t > 0)
        std::printf("%s hooked/unhooked: %.2f\n", name.substr(3, cut - 3).c_str(),
                    hooked->second / t);
    }
  }

 private:
  std::map<std::string, double> perIteration_;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}
