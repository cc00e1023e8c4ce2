#!/usr/bin/env bash
# Builds the benchmarks, runs them side by side (5 repetitions each, medians),
# and prints one table: absolute figures, and each hooked world as a ratio to
# the host alone measured in the same run. Figures from one machine at one
# time; only the ratios travel.
# Usage: scripts/bench.sh [OUT_DIR]   (JSON results are kept in OUT_DIR)
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
out=${1:-build/bench-results}
mkdir -p "$out"
cmake --preset default >/dev/null
cmake --build --preset default --target main_list_bench contacts_bench surfaces_bench notify_bench background_bench outside_bench springboard_bench

for b in main_list_bench contacts_bench surfaces_bench notify_bench background_bench outside_bench springboard_bench; do
  echo "== $b" >&2
  "build/default/bench/$b" --benchmark_repetitions=5 --benchmark_enable_random_interleaving=true \
    --benchmark_report_aggregates_only=true \
    --benchmark_format=json --benchmark_out="$out/$b.json" --benchmark_out_format=json >/dev/null
done

python3 - "$out" <<'PY'
import json, os, sys
out = sys.argv[1]
median = {}
counters = {}
for f in sorted(os.listdir(out)):
    if not f.endswith(".json"):
        continue
    for b in json.load(open(os.path.join(out, f)))["benchmarks"]:
        if b.get("aggregate_name") != "median":
            continue
        name = b["run_name"].split("/iterations:")[0]  # a fixed count is not part of the name
        scale = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}[b["time_unit"]]
        median[name] = b["cpu_time"] * scale
        counters[name] = {k: v for k, v in b.items()
                          if k in ("vs_host", "vs_system", "unhooked_ns", "silent_copy_unhooked_ns",
                                   "added_s")}

def fmt(seconds):
    for unit, s in (("s", 1.0), ("ms", 1e-3), ("us", 1e-6)):
        if seconds >= s:
            return f"{seconds / s:.3g} {unit}"
    return f"{seconds / 1e-9:.3g} ns"

rows = []
def ratio(label, hooked, base, target=None):
    if hooked in median and base in median:
        r = median[hooked] / median[base]
        rows.append((label, fmt(median[hooked]), f"{r:.2f}x of {fmt(median[base])}", target or ""))
def absolute(label, name, target=None, extra=""):
    if name in median:
        rows.append((label, fmt(median[name]), extra, target or ""))

# A reload asks the rows on screen; a full pass is a reload and a scroll to
# the end and back, which asks every row once.
for chats in (100, 1000, 10000):
    for kind, what in (("Reload", "reload (rows on screen)"), ("FullPass", "full pass (every row)")):
        for world, target in (("Inactive", "<= 1.02x"), ("Hooked", "<= 1.5x")):
            ratio(f"main list {what}, {chats} chats, {world.lower()}",
                  f"BM_MainList{kind}_{world}/{chats}", f"BM_MainList{kind}_Unhooked/{chats}", target)
ratio("main list reload (rows on screen), 1000 chats, revealed",
      "BM_MainListReload_Revealed/1000", "BM_MainListReload_Unhooked/1000", "<= 1.05x")
ratio("main list reload (rows on screen), 1000 chats, locked",
      "BM_MainListReload_Locked/1000", "BM_MainListReload_Unhooked/1000", "<= 1.5x")
ratio("main list full pass (every row), 1000 chats, locked",
      "BM_MainListFullPass_Locked/1000", "BM_MainListFullPass_Unhooked/1000", "<= 1.5x")
absolute("listNormalContactItems, 5000 friends", "BM_ListNormalContactItems/5000", "<= 50 ms")
ratio("Moments screen, 1000 items, hooked", "BM_MomentsScreen_hooked", "BM_MomentsScreen_unhooked", "<= 2x")
ratio("contacts load, 5000 friends, hooked", "BM_ContactsLoad_hooked", "BM_ContactsLoad_unhooked")
# A gating hook decides, then the call goes on to the host's method (or is
# dropped). "decision" is what the hook adds to the host's method measured
# beside it; "whole call" is the hooked call with the host's method in it.
# A secret in mode 1 goes on as a silent copy: that row is the decision plus
# the copy; its decision alone is the mode 0 row's (the same steps up to the
# mode).
for bench, arg, who in (("BM_CanShowPush", "0", "non-secret sender"),
                        ("BM_CanShowPush", "1", "secret sender (mode 1)"),
                        ("BM_SystemRequest", "0", "non-secret sender"),
                        ("BM_SystemRequest", "2", "secret sender (mode 0, dropped; mode 1's too)"),
                        ("BM_SystemRequest", "1", "secret sender (mode 1) + silent copy")):
    n = f"{bench}/{arg}"
    if n not in median:
        continue
    c = counters.get(n, {})
    vs = c.get("vs_host")
    if "added_s" in c:
        rows.append((f"{bench[3:]} decision, {who}", fmt(c["added_s"]), "",
                     "" if arg == "1" and bench == "BM_SystemRequest" else "<= 0.5 us"))
    absolute(f"{bench[3:]} whole call, {who}", n, "",
             f"{vs:.1f}x of the host's method" if vs else "")
for arg, who in (("0", "non-secret"), ("1", "secret, mode 0 (dropped)"), ("2", "secret, mode 1 (silent copy)")):
    n = f"BM_SpringBoardRequest/{arg}"
    if n in median:
        c = counters.get(n, {})
        extra = f"{c['vs_host']:.1f}x of the unhooked dispatcher ({c['unhooked_ns']:.0f} ns)" if "vs_host" in c else ""
        if "silent_copy_unhooked_ns" in c:
            extra += f"; unhooked with the same silent copy {c['silent_copy_unhooked_ns']:.0f} ns"
        absolute(f"SpringBoard request, {who}", n, "<= 2 us", extra)
ratio("leaving the app, 1000 chats, vs one host reload", "BM_Background_Hooked", "BM_Background_HostReload", "<= 2x")
for n, what in (("BM_Donate/0", "donation, non-secret"), ("BM_Donate/1", "donation, secret"),
                ("BM_Index/0", "index 10 chats, no secret"), ("BM_Index/1", "index 10 chats, one secret")):
    n = n + "/manual_time"
    if n in median:
        vs = counters.get(n, {}).get("vs_system")
        rows.append((what + " (500 calls)", fmt(median[n]), f"{vs:.1f}x of the system's call" if vs else "", ""))

w = [max(len(r[i]) for r in rows + [("what", "median", "ratio", "target")]) for i in range(4)]
print(f"{'what':<{w[0]}}  {'median':>{w[1]}}  {'ratio':<{w[2]}}  target")
for r in rows:
    print(f"{r[0]:<{w[0]}}  {r[1]:>{w[1]}}  {r[2]:<{w[2]}}  {r[3]}")
PY
