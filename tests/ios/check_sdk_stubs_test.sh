#!/usr/bin/env bash
# The stub generator refuses a declaration set that does not say where a name
# lives: the same name given to two libraries, a header declaring names
# outside any library's folder, a line of exports.txt with no names, a folder
# with no include/. Each refusal names the problem and writes no SDK folder.
# Usage: check_sdk_stubs_test.sh DECLARATIONS GENERATOR...
set -uo pipefail
declarations=$1
shift
generator=("$@")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
status=0

# A copy of the set changed by the shell command CHANGE must be refused with MESSAGE.
refused() {
  local change=$1 message=$2 set="$work/set" out
  rm -rf "$set" "$work/sdk"
  cp -r "$declarations" "$set"
  (cd "$set" && eval "$change")
  if out=$("${generator[@]}" "$set" "$work/sdk" 2>&1); then
    echo "check_sdk_stubs_test: accepted a set after: $change" >&2
    status=1
  elif ! grep -qF "$message" <<<"$out"; then
    echo "check_sdk_stubs_test: after '$change' said '$out', not '$message'" >&2
    status=1
  fi
  if [ -e "$work/sdk" ]; then
    echo "check_sdk_stubs_test: after '$change' an SDK folder was written" >&2
    status=1
  fi
}

refused 'echo "libSystem _NSLog" >>exports.txt' '_NSLog (exports.txt:'
refused 'echo "extern \"C\" void QBLoose(void);" >include/xlocale.h' 'include/xlocale.h declares _QBLoose but is in no library'
refused 'echo "libobjc" >>exports.txt' 'a library with no names'
refused 'rm -r include' 'has no include/ folder'
exit $status
