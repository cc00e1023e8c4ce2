#!/usr/bin/env bash
# Set-up, build, and the whole test suite: unit tests and scenario scripts.
# With CI=true warnings are errors.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
preset=default
if [ "${CI:-}" = "true" ]; then preset=ci; fi
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset"
ctest --preset "$preset"
