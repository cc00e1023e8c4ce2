// Who made an object is read from its stack at alloc: the frame-pointer walk
// must give the very frames the unwinder gives, on the main thread's deep
// stacks and on a thread the C++ library began, where it hands over.
#include <execinfo.h>
#include <gtest/gtest.h>

#include <thread>

#include "sim/runtime/alloc_sites.hpp"

namespace qbtest {

struct Taken {
  sim::AllocSite site{};
  void* unwound[sim::AllocSite{}.size() + 1] = {};
  int depth = 0;
};

[[gnu::noinline]] void takeHere(Taken& t) {
  sim::captureAllocSite(t.site);
  t.depth = backtrace(t.unwound, int(t.site.size() + 1));
}

[[gnu::noinline]] void nested(Taken& t, int levels) {
  if (levels == 0) return takeHere(t);
  nested(t, levels - 1);
  asm volatile("");  // keeps the call from becoming a jump
}

void expectTheUnwindersFrames(const Taken& t) {
  // The first frame is the return into takeHere from each call, which differ;
  // the rest are the same stack.
  ASSERT_GT(t.depth, 2);
  for (int i = 1; i + 1 < t.depth; ++i) EXPECT_EQ(t.site[std::size_t(i)], t.unwound[i]) << i;
  EXPECT_EQ(sim::madeIn(t.site), "qbtest::takeHere(qbtest::Taken&)");
  EXPECT_EQ(sim::makerOf(t.site), sim::Maker::Other);
}

TEST(AllocSites, TheSiteIsTheStackAsTheUnwinderReadsIt) {
  for (int levels : {0, 3, 20}) {
    Taken t;
    nested(t, levels);
    SCOPED_TRACE(levels);
    expectTheUnwindersFrames(t);
  }
}

TEST(AllocSites, AThreadTheLibraryBeganIsReadToo) {
  Taken t;
  std::thread([&] { nested(t, 1); }).join();
  expectTheUnwindersFrames(t);
}

}  // namespace qbtest
