// The simulated runtime's hot paths: a message send whose lookup is cached,
// a call through a stored IMP, and key-value reads through an accessor and an
// instance variable.
#include <benchmark/benchmark.h>

#include "rt/foundation.hpp"
#include "rt/kvc.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/runtime/class_builder.hpp"
#include "sim/device/device.hpp"
#include "sim/process.hpp"

namespace {

using rt::Id;
using rt::SEL;

long answer(Id, SEL, long x) { return x + 1; }
Id username(Id, SEL) { return rt::str("wxid_alice"); }

struct World {
  sim::Device device;
  sim::Process process{device};
  rt::Class cls = sim::ClassBuilder("Session")
                      .method("next:", answer)
                      .method("username", username)
                      .ivar("m_nsUsrName", "@")
                      .build();
  Id obj = rt::send<Id>(cls, "new");
  World() {
    rt::setIvarObject(obj, rt::getInstanceVariable(cls, "m_nsUsrName"), rt::str("wxid_bob"));
  }
};

void BM_CachedSend(benchmark::State& state) {
  World w;
  SEL s = rt::sel("next:");
  long x = 0;
  for (auto _ : state) {
    x = rt::send<long>(w.obj, s, x);
    benchmark::DoNotOptimize(x);
  }
}
BENCHMARK(BM_CachedSend);

void BM_SendBySelectorName(benchmark::State& state) {
  World w;
  long x = 0;
  for (auto _ : state) {
    x = rt::send<long>(w.obj, "next:", x);
    benchmark::DoNotOptimize(x);
  }
}
BENCHMARK(BM_SendBySelectorName);

void BM_StoredImpCall(benchmark::State& state) {
  World w;
  SEL s = rt::sel("next:");
  rt::IMP imp = rt::methodImplementation(rt::getInstanceMethod(w.cls, s));
  long x = 0;
  for (auto _ : state) {
    x = rt::call<long>(imp, w.obj, s, x);
    benchmark::DoNotOptimize(x);
  }
}
BENCHMARK(BM_StoredImpCall);

void BM_KvcAccessorRead(benchmark::State& state) {
  World w;
  for (auto _ : state) benchmark::DoNotOptimize(rt::valueForKey(w.obj, "username"));
}
BENCHMARK(BM_KvcAccessorRead);

void BM_KvcIvarRead(benchmark::State& state) {
  World w;
  for (auto _ : state) benchmark::DoNotOptimize(rt::valueForKey(w.obj, "m_nsUsrName"));
}
BENCHMARK(BM_KvcIvarRead);

void BM_KvcUnknownKeyProbe(benchmark::State& state) {
  World w;
  for (auto _ : state) benchmark::DoNotOptimize(rt::probeKey(w.obj, "m_nsChatRoomName"));
}
BENCHMARK(BM_KvcUnknownKeyProbe);

}  // namespace

BENCHMARK_MAIN();
