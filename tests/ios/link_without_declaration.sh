#!/usr/bin/env bash
# The check's link must fail when the declaration set lacks a name the code
# uses. For each NAME, a copy of the set without that one declaration, its
# stubs made again, and the build's own link against them must fail naming
# it; the untouched copy must link, so each failure is the missing name's.
#   NAME: a C function or constant (its declaration line goes), class:Name
#   (its @interface line), or export:Name (the word in exports.txt).
# Usage: link_without_declaration.sh DECLARATIONS NAME... -- GENERATOR... -- LINK_COMMAND...
# The generator is called with the set's folder and the SDK folder to make; the
# link command's -syslibroot and -o arguments are replaced.
set -uo pipefail
here=$(cd "$(dirname "$0")" && pwd)
declarations=$1
shift
names=()
while [ $# -gt 0 ] && [ "$1" != -- ]; do names+=("$1"); shift; done
shift
generator=()
while [ $# -gt 0 ] && [ "$1" != -- ]; do generator+=("$1"); shift; done
shift
if [ ${#names[@]} -eq 0 ] || [ ${#generator[@]} -eq 0 ] || [ $# -eq 0 ]; then
  echo "usage: link_without_declaration.sh DECLARATIONS NAME... -- GENERATOR... -- LINK_COMMAND..." >&2
  exit 2
fi
link=("$@")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
status=0

# Sets `args` to the link command against SDK, writing OUT.
link_args() {
  local sdk=$1 out=$2 arg replace=""
  args=()
  for arg in "${link[@]}"; do
    case "$replace" in
      sdk) arg=$sdk ;;
      out) arg=$out ;;
    esac
    replace=""
    case "$arg" in
      -syslibroot) replace=sdk ;;
      -o) replace=out ;;
    esac
    args+=("$arg")
  done
}

# Removes NAME's declaration from the copy in SET; fails unless exactly one
# line goes (a name not found would prove nothing).
remove() {
  local set=$1 name=$2 pattern files
  case "$name" in
    class:*) pattern="^@interface ${name#class:}( |:|<|\$)" ;;
    export:*)
      name=${name#export:}
      grep -qwF -- "$name" "$set/exports.txt" || return 1
      sed -i -E "s/(^|[[:space:]])${name}([[:space:]]|\$)/\\1\\2/" "$set/exports.txt"
      ! grep -qwF -- "$name" "$set/exports.txt"
      return
      ;;
    *) pattern="^[^/].*[ *]${name}[[:space:]]*(\\(|;)" ;;
  esac
  files=$(grep -rlE -- "$pattern" "$set/include")
  [ -n "$files" ] && [ "$(cat $files | grep -cE -- "$pattern")" -eq 1 ] || return 1
  sed -i -E "/$pattern/d" $files
}

cp -r "$declarations" "$work/whole"
link_args "$work/whole-sdk" "$work/whole.dylib"
if ! "${generator[@]}" "$work/whole" "$work/whole-sdk" || ! "${args[@]}"; then
  echo "link_without_declaration: the untouched declaration set does not link" >&2
  exit 1
fi

for name in "${names[@]}"; do
  set="$work/without"
  rm -rf "$set" "$work/sdk"
  cp -r "$declarations" "$set"
  if ! remove "$set" "$name"; then
    echo "link_without_declaration: no single declaration of $name to remove" >&2
    status=1
    continue
  fi
  "${generator[@]}" "$set" "$work/sdk" || { status=1; continue; }
  case "$name" in
    class:*) symbol="_OBJC_CLASS_\$_${name#class:}" ;;
    export:*) symbol=${name#export:} ;;
    *) symbol="_$name" ;;
  esac
  link_args "$work/sdk" "$work/without.dylib"
  if "$here/link_rejects.sh" "$symbol" -- "${args[@]}" >"$work/log" 2>&1; then
    echo "link_without_declaration: without $name, the link fails naming $symbol"
  else
    cat "$work/log"
    echo "link_without_declaration: without $name, the link did not fail naming $symbol" >&2
    status=1
  fi
done
exit $status
