#!/usr/bin/env bash
# The dylib check must reject a dylib that calls a glibc-only function and a
# facade function nobody defines, naming both.
# Usage: check_rejects.sh CHECK_SCRIPT BAD_DYLIB SOURCE_ROOT
set -uo pipefail
out=$("$1" "$2" "$3" 2>&1)
rc=$?
echo "$out"
if [ "$rc" -eq 0 ]; then
  echo "check_rejects: the check accepted a bad dylib" >&2
  exit 1
fi
for name in ___errno_location __ZN2ui; do
  if ! grep -q "undefined symbol not provided on iOS: $name" <<<"$out"; then
    echo "check_rejects: $name was not reported" >&2
    exit 1
  fi
done
