// Side-by-side timing inside one benchmark: the seconds one call takes over a
// fixed number of calls, for the baseline a figure is divided by.
#pragma once

#include <chrono>

namespace qbbench {

template <typename F>
double secondsPerCall(F&& call) {
  constexpr int kCalls = 20000;
  auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < kCalls; ++i) call();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() / kCalls;
}

}  // namespace qbbench
