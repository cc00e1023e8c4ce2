#!/usr/bin/env bash
# Feeds scripts/check_layers.sh a small tree, clean and then with one bypass
# at a time, and expects it to pass the clean tree and fail each bypass with
# a line naming what was included.
#
#   tests/layers/check_layers_test.sh CHECK_LAYERS_SCRIPT
set -u
check=$1
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
failures=0

# A tree whose includes all run downward, in every spelling allowed.
make_tree() {
  local root=$1
  mkdir -p "$root"/src/{base,core,host,hiding,triggers,notify,panel,startup,sys} "$root"/platform/sim
  echo "add_library(x STATIC)" >"$root/src/CMakeLists.txt"
  : >"$root/src/base/value.hpp"
  : >"$root/src/sys/log.hpp"
  : >"$root/platform/sim/process.hpp"
  printf '#include "base/value.hpp"\n' >"$root/src/core/config.hpp"
  printf '#include "sys/log.hpp"\n' >"$root/src/host/hook.hpp"
  printf '#include "host/hook.hpp"\n' >"$root/src/hiding/filter.hpp"
  printf '#include "hiding/filter.hpp"\n' >"$root/src/triggers/unlock.hpp"
  printf '#include "hiding/filter.hpp"\n' >"$root/src/notify/probes.hpp"
  printf '#include "triggers/unlock.hpp"\n#include "notify/probes.hpp"\n' \
    >"$root/src/panel/panel_controller.hpp"
  printf '#include "panel/panel_controller.hpp"\n#include "core/config.hpp"\n' \
    >"$root/src/startup/startup.cpp"
  cat >"$root/src/hiding/filter.cpp" <<'CPP'
#include "filter.hpp"
#include "core/config.hpp"
#include "../core/config.hpp"
#include <core/config.hpp>
#  include "host/../sys/log.hpp"
  #include <vector>
#include <string.h>
// #include "panel/panel_controller.hpp" in a comment is not an include
CPP
}

run_check() {
  output=$("$check" "$1" 2>&1)
  rc=$?
}

clean=$scratch/clean
make_tree "$clean"
run_check "$clean"
if [ "$rc" -ne 0 ]; then
  echo "FAIL clean tree: exit $rc"
  echo "$output"
  failures=$((failures + 1))
fi

# NAME FILE TEXT PATTERN: TEXT appended to FILE (created if new) must fail the
# check with a message matching PATTERN.
expect_rejected() {
  local name=$1 file=$2 text=$3 pattern=$4 root=$scratch/$1
  make_tree "$root"
  mkdir -p "$(dirname "$root/$file")"
  printf '%s\n' "$text" >>"$root/$file"
  run_check "$root"
  if [ "$rc" -ne 1 ] || ! grep -q -E -- "$pattern" <<<"$output"; then
    echo "FAIL $name: exit $rc, expected 1 and /$pattern/"
    echo "$output"
    failures=$((failures + 1))
  else
    echo "ok   $name"
  fi
}

up='src/panel/panel_controller.hpp \(panel\): upward'
f=src/hiding/filter.cpp
expect_rejected angle_platform $f '#include <sim/process.hpp>' "$f:[0-9]+ includes platform/sim/process.hpp"
expect_rejected quoted_platform $f '#include "sim/process.hpp"' "$f:[0-9]+ includes platform/sim/process.hpp"
expect_rejected climbs_to_platform $f '#include "../../platform/sim/process.hpp"' 'includes platform/sim/process.hpp'
expect_rejected angle_upward $f '#include <panel/panel_controller.hpp>' "$f:[0-9]+ \(hiding\) includes $up"
expect_rejected spaced_hash $f '#  include "panel/panel_controller.hpp"' "$f:9 \(hiding\) includes $up"
expect_rejected indented $f '   #include "panel/panel_controller.hpp"' "$f:9 \(hiding\) includes $up"
expect_rejected tab_and_import $f $'\t#\timport "panel/panel_controller.hpp"' "$f:9 \(hiding\) includes $up"
expect_rejected dots_inside $f '#include "core/../panel/panel_controller.hpp"' "includes $up"
expect_rejected relative $f '#include "../panel/panel_controller.hpp"' "includes $up"
expect_rejected unreadable $f '#include QB_PANEL_HEADER' 'cannot read: #include QB_PANEL_HEADER'
expect_rejected missing $f '#include "panel/gone.hpp"' 'panel/gone.hpp, found nowhere'
expect_rejected sideways_core_host src/core/config.hpp '#include "host/hook.hpp"' \
  'src/core/config.hpp:2 \(core\) includes src/host/hook.hpp \(host\): upward or sideways'
expect_rejected sideways_triggers_notify src/triggers/unlock.hpp '#include "notify/probes.hpp"' \
  '\(triggers\) includes src/notify/probes.hpp \(notify\)'
expect_rejected new_h_file src/hiding/extra.h '#include "panel/panel_controller.hpp"' \
  "src/hiding/extra.h:1 \(hiding\) includes $up"
expect_rejected new_inl_file src/host/hook.inl '#include "hiding/filter.hpp"' \
  'src/host/hook.inl:1 \(host\) includes src/hiding/filter.hpp'
expect_rejected new_mm_file src/sys/log.mm '#import <sim/process.hpp>' \
  'src/sys/log.mm:1 includes platform/sim/process.hpp'
expect_rejected file_in_no_layer src/misc/helper.cpp '#include "base/value.hpp"' \
  'src/misc/helper.cpp is in no layer'
expect_rejected loose_header src/loose.h '' 'src/loose.h is in no layer'

[ "$failures" -eq 0 ] && echo "every bypass rejected, the clean tree passed"
exit $((failures > 0))
