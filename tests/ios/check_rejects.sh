#!/usr/bin/env bash
# The dylib check must reject a dylib that calls a glibc-only function and a
# facade function nobody defines, that names a class the declaration set does
# not declare, and that binds an iOS 15 class strongly, naming each.
# Usage: check_rejects.sh CHECK_SCRIPT BAD_DYLIB SOURCE_ROOT
set -uo pipefail
out=$("$1" "$2" "$3" 2>&1)
rc=$?
echo "$out"
if [ "$rc" -eq 0 ]; then
  echo "check_rejects: the check accepted a bad dylib" >&2
  exit 1
fi
for name in ___errno_location __ZN2ui '_OBJC_CLASS_$_UIAlertControler'; do
  if ! grep -qF "undefined symbol not provided on iOS: $name" <<<"$out"; then
    echo "check_rejects: $name was not reported" >&2
    exit 1
  fi
done
if ! grep -qF 'binds _OBJC_CLASS_$_UISheetPresentationControllerDetent strongly' <<<"$out"; then
  echo "check_rejects: the strong iOS 15 binding was not reported" >&2
  exit 1
fi
