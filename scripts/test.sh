#!/usr/bin/env bash
# Set-up, build, and the whole test suite: unit tests, scenario scripts and a
# bounded fuzz run; then the concurrency tests again under ThreadSanitizer.
# With CI=true warnings are errors.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
scripts/check_layers.sh
preset=default
if [ "${CI:-}" = "true" ]; then preset=ci; fi
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset"
ctest --preset "$preset"

echo "== ThreadSanitizer: concurrent access to the settings, notification hooks from other threads"
cmake --preset tsan >/dev/null
cmake --build --preset tsan --target core_tests notify_tests
TSAN_OPTIONS="halt_on_error=1" build/tsan/tests/core/core_tests --gtest_filter='ConfigConcurrency.*'
TSAN_OPTIONS="halt_on_error=1" build/tsan/tests/notify/notify_tests --gtest_filter='NotifyThreads.*'
