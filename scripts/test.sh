#!/usr/bin/env bash
# Set-up, build, and the whole test suite: unit tests, scenario scripts and a
# bounded fuzz run; then the concurrency tests again under ThreadSanitizer;
# then the iOS backend's check build and its tests (dylib, link, packages, load-command tool).
# With CI=true warnings are errors.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
scripts/check_layers.sh
scripts/check_sim_layers.sh
preset=default
if [ "${CI:-}" = "true" ]; then preset=ci; fi
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset"
ctest --preset "$preset"

echo "== ThreadSanitizer: concurrent access to the settings, notification hooks, the list filter and a hook being installed from other threads"
cmake --preset tsan >/dev/null
cmake --build --preset tsan --target core_tests notify_tests hiding_tests host_tests
TSAN_OPTIONS="halt_on_error=1" build/tsan/tests/core/core_tests --gtest_filter='ConfigConcurrency.*'
TSAN_OPTIONS="halt_on_error=1" build/tsan/tests/notify/notify_tests --gtest_filter='NotifyThreads.*'
TSAN_OPTIONS="halt_on_error=1" build/tsan/tests/hiding/hiding_tests --gtest_filter='FilterThreads.*'
TSAN_OPTIONS="halt_on_error=1" build/tsan/tests/host/host_tests --gtest_filter='HookThreads.*'

echo "== iOS backend: arm64 Mach-O dylib linked against stubs of the declaration set, its packages and the load-command tool"
ios_tools=(clang++ ld64.lld-14 llvm-nm-14 llvm-objdump-14 llvm-lipo-14 file dpkg-deb)
missing_tools=()
for t in "${ios_tools[@]}"; do command -v "$t" >/dev/null || missing_tools+=("$t"); done
if ! python3 -c 'import macholib' 2>/dev/null && ! /usr/bin/python3 -c 'import macholib' 2>/dev/null; then
  missing_tools+=("python3-macholib")
fi
if [ ! -d /usr/lib/llvm-14/include/c++/v1 ]; then missing_tools+=("libc++-14-dev"); fi
if [ ! -d /usr/aarch64-linux-gnu/include ]; then missing_tools+=("libc6-dev-arm64-cross"); fi
if [ ${#missing_tools[@]} -ne 0 ]; then
  echo "SKIPPED: iOS check build (missing: ${missing_tools[*]})"
else
  cmake --preset ios-check >/dev/null
  cmake --build --preset ios-check
  ctest --preset ios-check
fi
