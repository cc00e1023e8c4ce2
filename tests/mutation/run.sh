#!/usr/bin/env bash
# Mutation run: applies each mutant of a list alone, rebuilds the test
# binaries it names, runs them (and the scenario scripts when the list says
# so), reports whether a test failed, and always puts the file back.
#
#   tests/mutation/run.sh [LIST] [NAME...]
#
# LIST defaults to tests/mutation/mutants.tsv; NAMEs pick some of its mutants.
# Each line: name, file, tests (comma-separated test binaries; "scenario"
# runs `ctest -R scenario`), original text, mutated text, separated by tabs.
# The original must occur exactly once; "\n" in either text is a line break.
# Builds in build/default with -j2; configure it first (cmake --preset default).
# The test binaries left behind are the last mutant's: rebuild before use.
set -u
root=$(cd "$(dirname "$0")/../.." && pwd)
list=${1:-$root/tests/mutation/mutants.tsv}
shift $(($# > 0 ? 1 : 0))
build=$root/build/default
backup=$(mktemp)
current=""
restore() { [[ -n "$current" ]] && cp "$backup" "$root/$current" && current=""; }
trap 'restore; rm -f "$backup"; exit 130' INT TERM
trap 'restore; rm -f "$backup"' EXIT

wanted() {
  [[ ${#picked[@]} -eq 0 ]] && return 0
  local p
  for p in "${picked[@]}"; do [[ "$p" == "$1" ]] && return 0; done
  return 1
}
picked=("$@")
killed=0 survived=0 invalid=0
printf '%-5s %-8s %-40s %s\n' "name" "result" "file" "failing tests"
while IFS=$'\t' read -r name file tests original mutated; do
  [[ -z "$name" || "$name" == \#* ]] && continue
  wanted "$name" || continue
  cp "$root/$file" "$backup"
  current=$file
  if ! python3 - "$root/$file" "$original" "$mutated" <<'PY'
import sys
path, old, new = sys.argv[1], sys.argv[2].replace("\\n", "\n"), sys.argv[3].replace("\\n", "\n")
text = open(path, encoding="utf-8").read()
if text.count(old) != 1:
    sys.exit(f"{path}: the original occurs {text.count(old)} times")
open(path, "w", encoding="utf-8").write(text.replace(old, new))
PY
  then
    restore; invalid=$((invalid + 1)); printf '%-5s %-8s %-40s\n' "$name" "invalid" "$file"; continue
  fi
  targets=()
  IFS=, read -ra names <<<"$tests"
  for t in "${names[@]}"; do [[ "$t" == scenario ]] && targets+=(quenby-sim) || targets+=("$t"); done
  if ! cmake --build "$build" -j2 --target "${targets[@]}" >/tmp/mutant-build.log 2>&1; then
    restore; invalid=$((invalid + 1)); printf '%-5s %-8s %-40s does not build\n' "$name" "invalid" "$file"; continue
  fi
  failing=()
  for t in "${names[@]}"; do
    if [[ "$t" == scenario ]]; then
      ctest --test-dir "$build" -R '^scenario\.' --timeout 120 >/tmp/mutant-ctest.log 2>&1 ||
        failing+=("$(grep -E '\*\*\*(Failed|Timeout)|Exception' /tmp/mutant-ctest.log |
          grep -o 'scenario\.[a-z_]*' | sort -u | tr '\n' ' ')")
    else
      bin=$(find "$build/tests" -type f -name "$t" -perm -u+x | head -1)
      out=$(timeout 600 "$bin" --gtest_brief=1 2>&1)
      if [[ $? -ne 0 ]]; then
        names_failed=$(grep -o '^\[  FAILED  \] [A-Za-z_/.0-9]*' <<<"$out" | sed 's/.*\] //' | sort -u | tr '\n' ' ')
        failing+=("$t: ${names_failed:-$(tail -1 <<<"$out")}")
      fi
    fi
  done
  restore
  if [[ ${#failing[@]} -gt 0 ]]; then
    killed=$((killed + 1)); printf '%-5s %-8s %-40s %s\n' "$name" "killed" "$file" "${failing[*]}"
  else
    survived=$((survived + 1)); printf '%-5s %-8s %-40s\n' "$name" "SURVIVED" "$file"
  fi
done <"$list"
echo "killed $killed, survived $survived, invalid $invalid"
[[ $survived -eq 0 && $invalid -eq 0 ]]
