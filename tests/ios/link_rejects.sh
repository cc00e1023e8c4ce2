#!/usr/bin/env bash
# Runs a link that must fail and checks that the linker names each given
# symbol as undefined: against the SDK's stubs, a name no library exports
# stops the build.
# Usage: link_rejects.sh NAME... -- LINK_COMMAND...
set -uo pipefail
names=()
while [ $# -gt 0 ] && [ "$1" != -- ]; do
  names+=("$1")
  shift
done
if [ $# -lt 2 ] || [ ${#names[@]} -eq 0 ]; then
  echo "usage: link_rejects.sh NAME... -- LINK_COMMAND..." >&2
  exit 2
fi
shift
out=$("$@" 2>&1)
rc=$?
echo "$out"
if [ "$rc" -eq 0 ]; then
  echo "link_rejects: the link succeeded" >&2
  exit 1
fi
status=0
for name in "${names[@]}"; do
  if ! grep -qF "undefined symbol: $name" <<<"$out"; then
    echo "link_rejects: $name was not reported undefined" >&2
    status=1
  fi
done
exit $status
