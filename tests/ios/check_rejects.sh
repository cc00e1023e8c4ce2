#!/usr/bin/env bash
# The dylib check must reject a dylib that links but binds an iOS 15 class
# strongly and leaves a name to dynamic lookup, naming each.
# Usage: check_rejects.sh CHECK_SCRIPT BAD_DYLIB SOURCE_ROOT
set -uo pipefail
out=$("$1" "$2" "$3" 2>&1)
rc=$?
echo "$out"
if [ "$rc" -eq 0 ]; then
  echo "check_rejects: the check accepted a bad dylib" >&2
  exit 1
fi
status=0
for message in 'binds _OBJC_CLASS_$_UISheetPresentationControllerDetent strongly' \
               'bound by dynamic lookup, from no library: _QBNotInAnyLibrary'; do
  if ! grep -qF "$message" <<<"$out"; then
    echo "check_rejects: not reported: $message" >&2
    status=1
  fi
done
exit $status
