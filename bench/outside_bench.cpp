// What a donation and an index call pay for the check that keeps the secrets
// out of the system's suggestions and search index, against the system's own
// call (the implementation the library replaced, called directly), measured
// side by side in one run. 200 secrets; a donation from a non-secret (passed
// on) and from a secret (answered without the system); an index call of 10
// chats with none or one of them secret. The simulated frameworks apply
// writes on the next turn: the queue is drained between timed batches.
#include <benchmark/benchmark.h>

#include <chrono>
#include <string>

#include "core/config.hpp"
#include "startup/startup.hpp"
#include "hiding/session_hooks.hpp"
#include "sim/hostapp/host_app.hpp"
#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/device/device.hpp"
#include "sim/process.hpp"

namespace {

using rt::Id;
using Clock = std::chrono::steady_clock;

constexpr const char* kDonate = "donateInteractionWithCompletion:";
constexpr const char* kIndex = "indexSearchableItems:completionHandler:";
constexpr int kBatch = 500;

struct World {
  sim::Device device;
  hostapp::HostApp host;
  std::unique_ptr<sim::Process> process;
  rt::IMP systemDonate = nullptr, systemIndex = nullptr;
  World() {
    for (const char* u : {"alice", "bob"}) host.model.friends.push_back({u, u, "", ""});
    process = std::make_unique<sim::Process>(device);
    // The system's own implementations, before the library replaces them.
    systemDonate = rt::methodImplementation(
        rt::getInstanceMethod(rt::getClass("INInteraction"), rt::sel(kDonate)));
    systemIndex = rt::methodImplementation(
        rt::getInstanceMethod(rt::getClass("CSSearchableIndex"), rt::sel(kIndex)));
    sim::LaunchHooks hooks = host.launchHooks();
    hooks.libraryEntry = core::libraryEntry;
    process->launch(hooks);
    core::QBConfig& c = core::QBConfig::shared();
    for (int i = 0; i < 200; ++i) c.addSecretUser("wxid_secret_" + std::to_string(i));
    c.addSecretUser("bob");
    hiding::QBSessionHooks::refreshFilterCache();
    process->advance(5);
  }
  void drain() {
    process->runDue();
    device.records().deleteAllDonations();
  }
};

Id alloc(const char* cls) { return rt::send<Id>(rt::getClass(cls), "alloc"); }

Id interaction(const std::string& chat) {
  Id handle = rt::send<Id>(alloc("INPersonHandle"), "initWithValue:type:", rt::str(chat), 0L);
  Id sender = rt::send<Id>(
      alloc("INPerson"),
      "initWithPersonHandle:nameComponents:displayName:image:contactIdentifier:customIdentifier:",
      handle, Id{nullptr}, rt::str(chat), Id{nullptr}, Id{nullptr}, Id{nullptr});
  Id intent = rt::send<Id>(
      alloc("INSendMessageIntent"),
      "initWithRecipients:outgoingMessageType:content:speakableGroupName:conversationIdentifier:"
      "serviceName:sender:attachments:",
      rt::array({}), 1L, rt::str("hello"), Id{nullptr}, rt::str(chat), Id{nullptr}, sender,
      Id{nullptr});
  Id i = rt::send<Id>(alloc("INInteraction"), "initWithIntent:response:", intent, Id{nullptr});
  rt::send<void>(i, "setGroupIdentifier:", rt::str(chat));
  return i;
}

Id items(bool withSecret) {
  std::vector<Id> list;
  for (int k = 0; k < 10; ++k) {
    std::string chat = withSecret && k == 3 ? "bob" : "friend_" + std::to_string(k);
    Id a = rt::send<Id>(alloc("CSSearchableItemAttributeSet"),
                        "initWithItemContentType:", rt::str("public.message"));
    rt::send<void>(a, "setTitle:", rt::str(chat));
    rt::send<void>(a, "setKeywords:", rt::array({rt::str(chat)}));
    list.push_back(rt::send<Id>(alloc("CSSearchableItem"),
                                "initWithUniqueIdentifier:domainIdentifier:attributeSet:",
                                rt::str("msg.session." + chat), rt::str("msg.session"), a));
  }
  return rt::array(list);
}

// Seconds per call over timed batches, the queue drained untimed between them.
template <typename F>
double perCall(World& w, F&& call, int batches) {
  double total = 0;
  for (int b = 0; b < batches; ++b) {
    auto start = Clock::now();
    for (int i = 0; i < kBatch; ++i) call();
    total += std::chrono::duration<double>(Clock::now() - start).count();
    w.drain();
  }
  return total / (double(batches) * kBatch);
}

template <typename Hooked, typename System>
void measure(benchmark::State& state, World& w, Hooked&& hooked, System&& system) {
  double systemPerCall = perCall(w, system, 20);
  double hookedPerCall = 0;
  for (auto _ : state) {
    hookedPerCall = perCall(w, hooked, 1);
    state.SetIterationTime(hookedPerCall * kBatch);
  }
  state.counters["vs_system"] = hookedPerCall / systemPerCall;
}

void BM_Donate(benchmark::State& state) {
  World w;
  Id i = interaction(state.range(0) ? "bob" : "alice");
  rt::SEL sel = rt::sel(kDonate);
  measure(
      state, w, [&] { rt::send<void>(i, kDonate, Id{nullptr}); },
      [&] { rt::call<void>(w.systemDonate, i, sel, Id{nullptr}); });
  state.SetLabel(state.range(0) ? "secret, dropped" : "non-secret, passed on");
}

void BM_Index(benchmark::State& state) {
  World w;
  Id index = rt::send<Id>(rt::getClass("CSSearchableIndex"), "defaultSearchableIndex");
  Id list = items(state.range(0) != 0);
  rt::SEL sel = rt::sel(kIndex);
  measure(
      state, w, [&] { rt::send<void>(index, kIndex, list, Id{nullptr}); },
      [&] { rt::call<void>(w.systemIndex, index, sel, list, Id{nullptr}); });
  state.SetLabel(state.range(0) ? "10 items, one secret" : "10 items, no secret");
}

BENCHMARK(BM_Donate)->Arg(0)->Arg(1)->UseManualTime();
BENCHMARK(BM_Index)->Arg(0)->Arg(1)->UseManualTime();

}  // namespace

BENCHMARK_MAIN();
