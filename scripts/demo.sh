#!/usr/bin/env bash
# Set-up, build, and the simulator's narrated demo.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake --preset default >/dev/null
cmake --build --preset default --target quenby-sim
exec build/default/tools/quenby-sim/quenby-sim demo
