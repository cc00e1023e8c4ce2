// The lock-screen guard's cost per notification request in SpringBoard: a
// request of the host's bundle from a non-secret (presented as it came), from
// a secret in mode 0 (dropped) and in mode 1 (a silent copy presented, one
// vibration), the gate holding 201 hashed secrets and stamped on every
// request. Each is measured beside a second SpringBoard without the library,
// its dispatcher unhooked, reported as "vs_host"; mode 1 also beside the unhooked
// dispatcher presenting a silent copy made the same way. No virtual time
// passes, so the gate's stamp is looked at once: on this machine a stat(2) of
// its path costs about 2 us, paid at most twice a second.
#include <benchmark/benchmark.h>

#include "seconds_per_call.hpp"

#include <chrono>
#include <memory>

#include "core/gate_file.hpp"
#include "sim/runtime/lifetimes.hpp"
#include "sim/springboard/springboard.hpp"
#include "rt/foundation.hpp"
#include "rt/ownership.hpp"
#include "rt/send.hpp"
#include "sim/device/device.hpp"
#include "sim/process.hpp"
#include "startup/startup.hpp"
#include "sys/files.hpp"

namespace qbbench {

// A silent copy presented by the unhooked dispatcher, made from a frame of a
// known layer as the guard's is: the simulation reads who made the copy from
// the frames above its alloc, and stops early at the first that decides.
[[gnu::noinline]] void presentSilentCopy(rt::Id dispatcher, rt::Id request) {
  rt::Strong quiet = rt::Strong::adopt(rt::send<rt::Id>(request, "mutableCopy"));
  rt::send<void>(quiet.get(), "setSound:", rt::Id{nullptr});
  rt::send<void>(dispatcher, "postNotificationWithRequest:", quiet.get());
}

}  // namespace qbbench

namespace {

using rt::Id;

// Two SpringBoards on one device: one with the library, one without.
struct World {
  sim::Device device;
  std::unique_ptr<sim::Process> plainSB, guardedSB;
  rt::Strong plain, hooked, plainRequest, hookedRequest;
  // The simulated request holds its content without retaining it (a phone's
  // retains): the world keeps each one alive for its request.
  rt::Strong plainContent, hookedContent;
  World(long mode, const char* from) {
    {
      sim::Process app(device);
      core::GateRecord r;
      r.salt = core::newGateSalt();
      for (int i = 0; i < 200; ++i)
        r.hashes.insert(core::gateHash(r.salt, "wxid_secret_" + std::to_string(i)));
      r.hashes.insert(core::gateHash(r.salt, "bob"));
      r.notifyMode = mode;
      sys::createDirectories(device.documentsPath() + "/Quenby");
      sys::writePropertyList(core::gateFilePath(), core::gateValue(r), sys::PlistFormat::Xml,
                             nullptr, sys::FileProtection::None);
    }
    auto none = [](const std::string&, const std::string&) { return false; };
    plainSB = std::make_unique<sim::Process>(device, sim::ProcessKind::SpringBoard);
    springboard::boot(*plainSB, none, nullptr);
    guardedSB = std::make_unique<sim::Process>(device, sim::ProcessKind::SpringBoard);
    springboard::boot(*guardedSB, none, core::libraryEntry);
    {
      sim::InProcess here(*plainSB);
      plain = rt::Strong::adopt(rt::send<Id>(rt::getClass("NCNotificationDispatcher"), "new"));
      plainRequest = request(from, plainContent);
    }
    sim::InProcess here(*guardedSB);
    hooked = rt::Strong::adopt(rt::send<Id>(rt::getClass("NCNotificationDispatcher"), "new"));
    hookedRequest = request(from, hookedContent);
  }
  ~World() {
    {
      sim::InProcess here(*plainSB);
      plain.reset();
      plainRequest.reset();
      plainContent.reset();
    }
    sim::InProcess here(*guardedSB);
    hooked.reset();
    hookedRequest.reset();
    hookedContent.reset();
  }
  // As NCNotificationRequest's own getters read it back.
  static rt::Strong request(const char* from, rt::Strong& keptContent) {
    rt::Strong r =
        rt::Strong::adopt(rt::send<Id>(rt::getClass("NCMutableNotificationRequest"), "new"));
    keptContent = rt::Strong::adopt(rt::send<Id>(rt::getClass("NCNotificationContent"), "new"));
    Id content = keptContent.get();
    rt::send<void>(r.get(), "setSectionIdentifier:", rt::str("com.example.messenger"));
    rt::send<void>(r.get(), "setNotificationIdentifier:", rt::str("n1"));
    rt::send<void>(r.get(), "setThreadIdentifier:", rt::str(from));
    rt::send<void>(r.get(), "setContent:", content);
    rt::send<void>(r.get(), "setSound:",
                   sim::autorelease(rt::send<Id>(rt::getClass("NCNotificationSound"), "new")));
    Id userInfo = rt::dictionary(
        {{rt::str("fromUserName"), rt::str(from)}, {rt::str("msgType"), rt::number(1)}});
    rt::send<void>(r.get(), "setContext:", rt::dictionary({{rt::str("userInfo"), userInfo}}));
    return r;
  }
};

using qbbench::secondsPerCall;

// Arg 0: a non-secret's request; 1: a secret's, mode 0 (dropped); 2: a
// secret's, mode 1 (silent copy and a vibration).
void BM_SpringBoardRequest(benchmark::State& state) {
  long arg = state.range(0);
  World w(arg == 2 ? 1 : 0, arg ? "bob" : "alice");
  const char* sel = "postNotificationWithRequest:";
  double plainPerCall = secondsPerCall([&] {
    sim::InProcess here(*w.plainSB);
    w.plainSB->runGuarded([&] { rt::send<void>(w.plain.get(), sel, w.plainRequest.get()); });
  });
  sim::InProcess here(*w.guardedSB);
  auto start = std::chrono::steady_clock::now();
  for (auto _ : state)
    w.guardedSB->runGuarded([&] { rt::send<void>(w.hooked.get(), sel, w.hookedRequest.get()); });
  double perCall = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() /
                   double(state.iterations());
  state.counters["vs_host"] = perCall / plainPerCall;
  state.counters["unhooked_ns"] = plainPerCall * 1e9;
  if (arg == 2) {
    // What presenting a silent copy costs without the guard.
    double copyPerCall = secondsPerCall([&] {
      sim::InProcess there(*w.plainSB);
      w.plainSB->runGuarded(
          [&] { qbbench::presentSilentCopy(w.plain.get(), w.plainRequest.get()); });
    });
    state.counters["silent_copy_unhooked_ns"] = copyPerCall * 1e9;
  }
  state.SetLabel(arg == 2 ? "secret, mode 1" : arg ? "secret, mode 0 (dropped)" : "non-secret");
}

BENCHMARK(BM_SpringBoardRequest)->Arg(0)->Arg(1)->Arg(2);

}  // namespace

BENCHMARK_MAIN();
