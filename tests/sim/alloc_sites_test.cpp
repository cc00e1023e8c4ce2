// Who made an object is read from its stack at alloc: the frame-pointer walk
// must read the frames the unwinder reads and decide as the unwinder's frames
// would, on the main thread's deep stacks and on threads the C++ library
// began, where the walk leaves the executable.
#include <execinfo.h>
#include <gtest/gtest.h>

#include <thread>

#include "sim/runtime/alloc_sites.hpp"

namespace qbtest {

struct Taken {
  sim::AllocSite site{};
  sim::AllocSite unwound{};  // frame 0 is the return into the taker from backtrace
  int depth = 0;
};

void unwind(Taken& t) {
  void* frames[sim::AllocSite{}.size()];
  t.depth = backtrace(frames, int(t.unwound.size()));
  for (int i = 0; i < t.depth; ++i) t.unwound[std::size_t(i)] = frames[i];
}

[[gnu::noinline]] void takeHere(Taken& t) {
  sim::captureAllocSite(t.site);
  unwind(t);
}

[[gnu::noinline]] void nested(Taken& t, int levels) {
  if (levels == 0) return takeHere(t);
  nested(t, levels - 1);
  asm volatile("");  // keeps the call from becoming a jump
}

// Frame 0 differs (each is the return from its own call); the rest the walk
// read are the unwinder's, and both decide alike.
void expectTheUnwindersReading(const Taken& t, std::size_t atLeast) {
  ASSERT_GT(t.depth, 2);
  std::size_t read = 0;
  while (read < t.site.size() && t.site[read]) ++read;
  EXPECT_GE(read, atLeast);
  for (std::size_t i = 1; i < read; ++i) EXPECT_EQ(t.site[i], t.unwound[i]) << i;
  EXPECT_EQ(sim::madeIn(t.site), sim::madeIn(t.unwound));
  EXPECT_EQ(sim::makerOf(t.site), sim::makerOf(t.unwound));
}

TEST(AllocSites, TheSiteIsTheStackAsTheUnwinderReadsIt) {
  for (int levels : {0, 3, 20}) {
    Taken t;
    nested(t, levels);
    SCOPED_TRACE(levels);
    expectTheUnwindersReading(t, std::min<std::size_t>(std::size_t(levels) + 2, t.site.size()));
    EXPECT_EQ(sim::madeIn(t.site), "qbtest::takeHere(qbtest::Taken&)");
    EXPECT_EQ(sim::makerOf(t.site), sim::Maker::Other);
  }
}

// A function template's name begins with its return type; the frame is still
// its namespace's, not passed over for its caller's.
template <typename T>
[[gnu::noinline]] T takeInTemplate(Taken& t) {
  sim::captureAllocSite(t.site);
  asm volatile("");
  return T{};
}

TEST(AllocSites, AFunctionTemplateDecidesByItsOwnName) {
  Taken t;
  takeInTemplate<long>(t);
  // The optimizer may name a clone of it: "… [clone .isra.0]".
  EXPECT_EQ(sim::madeIn(t.site).rfind("long qbtest::takeInTemplate<long>(qbtest::Taken&)", 0), 0u)
      << sim::madeIn(t.site);
  EXPECT_EQ(sim::makerOf(t.site), sim::Maker::Other);
}

TEST(AllocSites, AThreadTheLibraryBeganIsDecidedAsTheUnwinderDecides) {
  Taken t;
  std::thread([&] { nested(t, 1); }).join();
  expectTheUnwindersReading(t, 2);
  EXPECT_EQ(sim::madeIn(t.site), "qbtest::takeHere(qbtest::Taken&)");
}

}  // namespace qbtest

namespace {

// No frame in a layer before the walk leaves the executable: the unwinder
// reads the whole stack.
// (Its own body, so that the linker does not fold it into takeHere's.)
[[gnu::noinline]] void takeFromNowhere(qbtest::Taken& t) {
  t.depth = -1;
  sim::captureAllocSite(t.site);
  qbtest::unwind(t);
}

TEST(AllocSites, AStackNoLayerDecidesIsReadWhole) {
  qbtest::Taken t;
  std::thread([&] { takeFromNowhere(t); }).join();
  for (int i = 1; i < t.depth; ++i)
    EXPECT_EQ(t.site[std::size_t(i)], t.unwound[std::size_t(i)]) << i;
  EXPECT_GT(t.depth, 3) << "past the C++ library's thread start";
  EXPECT_EQ(sim::madeIn(t.site), "");
}

}  // namespace
