#!/usr/bin/env bash
# Checks the iOS check build's dylib: an arm64 Mach-O dylib with an
# initialiser, whose undefined symbols all come from what an iOS process
# provides (the Objective-C runtime, blocks, libdispatch, the frameworks'
# C functions and constants, libc++ and a named handful of libSystem
# functions). Anything else fails: a glibc-only name means the source leans on
# the stand-in C library, and a C++ name of the rt/sys/ui facades means a
# facade the backend does not implement. Also fails when a facade header has
# no file of its own in platform/ios. Ends with the `file` line.
# Usage: check_dylib.sh DYLIB SOURCE_ROOT
set -euo pipefail
dylib=$1
root=$2
nm=${QB_NM:-llvm-nm-14}
objdump=${QB_OBJDUMP:-llvm-objdump-14}
filecmd=${QB_FILE:-file}
status=0

fail() {
  echo "check_dylib: $*" >&2
  status=1
}

kind=$("$filecmd" -b "$dylib")
case "$kind" in
  "Mach-O 64-bit arm64 dynamically linked shared library"*) ;;
  *) fail "not an arm64 Mach-O dylib: $kind" ;;
esac

if ! "$objdump" --section-headers "$dylib" | grep -q '__mod_init_func'; then
  fail "no initialiser (__mod_init_func): the library would not run at load"
fi

# The initialisers must include the library's entry (platform/ios/entry.mm):
# the 64-bit little-endian pointers of __mod_init_func against its address.
entry=$("$nm" "$dylib" | awk '$3 ~ /quenbyLoaded/ && !seen++ {print $1}')
if [ -z "$entry" ]; then
  fail "no library entry function in the dylib"
else
  words=$("$objdump" -s --section=__mod_init_func "$dylib" | awk '/^ [0-9a-f]+ / {for (i = 2; i <= 5; i++) if (length($i) == 8 && $i ~ /^[0-9a-f]+$/) print $i}')
  le() { echo "${1:6:2}${1:4:2}${1:2:2}${1:0:2}"; }
  found=0
  set -- $words
  while [ $# -ge 2 ]; do
    if [ $((16#$(le "$2")$(le "$1"))) -eq $((16#$entry)) ]; then found=1; fi
    shift 2
  done
  [ "$found" -eq 1 ] || fail "the library entry is not among the initialisers"
fi

# Exact libSystem names the system may use; everything else must match a
# family pattern below.
libsystem=(
  _malloc _calloc _realloc _free _posix_memalign _aligned_alloc
  _memcpy _memmove _memset _memcmp _memchr _bzero
  _strlen _strcmp _strncmp _strchr _strrchr _strstr _strpbrk _strtol _strtoll _strtod
  _snprintf _vsnprintf _abort
  # reading the settings file without blocking on what is not a regular file
  _open _fstat _close
  # the install's salt
  _arc4random_buf
  ___stack_chk_fail ___stack_chk_guard
  dyld_stub_binder
  # thread_local storage (the per-thread key-value search memo), from dyld
  __tlv_bootstrap __tlv_atexit
  # @available's check: compiler-rt, which Xcode's clang links into the
  # product itself; only the check build leaves it undefined
  ___isPlatformVersionAtLeast
)

# What the declaration set declares, exactly: its classes and its C functions
# and constants, those newer than iOS 14 marked weak. A class or function of
# the frameworks is allowed only by its exact name, so a misspelt or
# undeclared one fails; a weak one must be bound weakly, or the dylib would
# not load on iOS 14.
declared=$(python3 "$root/tests/ios/declared_symbols.py" "$root/platform/ios/check-sdk/include" 14.0)
declare -A declaredKind=()
while read -r name kind; do
  [ -n "$name" ] && declaredKind[$name]=${kind:-strong}
done <<<"$declared"
weakRefs=$("$nm" -m "$dylib" | awk '/\(undefined\) weak external/ {print $4}')

allowed() {
  local s=$1
  if [ -n "${declaredKind[$s]:-}" ]; then
    if [ "${declaredKind[$s]}" = weak ] && ! grep -qxF "$s" <<<"$weakRefs"; then
      fail "binds $s strongly: it is newer than iOS 14, the dylib would not load there"
    fi
    return 0
  fi
  case "$s" in
    # the runtime's entry points the compiler emits (ARC, message sends, blocks)
    _objc_* | __objc_empty_cache | ___objc_personality_v0) return 0 ;;
    __NSConcrete*Block | __Block_*) return 0 ;;
    # string literals
    ___CFConstantStringClassReference) return 0 ;;
    __ZNSt3__1* | __ZNKSt3__1* | __ZTINSt3__1* | __ZTSNSt3__1* | __ZTVNSt3__1*) return 0 ;;
    # libc++abi: the std:: exception classes, type-info vtables, new/delete.
    __ZNSt* | __ZNKSt* | __ZTISt* | __ZTSSt* | __ZTVSt* | __ZTVN10__cxxabiv1* | __ZSt*) return 0 ;;
    __Znwm | __Znam | __ZdlPv | __ZdaPv | __ZnwmRKSt9nothrow_t | __ZnamRKSt9nothrow_t | __ZdlPvm | __ZdaPvm) return 0 ;;
    __ZnwmSt11align_val_t | __ZdlPvSt11align_val_t | __ZdlPvmSt11align_val_t) return 0 ;;
    ___cxa_* | ___gxx_personality_v0 | __Unwind_*) return 0 ;;
    _pthread_*) return 0 ;;
  esac
  local n
  for n in "${libsystem[@]}"; do
    [ "$s" = "$n" ] && return 0
  done
  return 1
}

# glibc's C++ prototypes of a few string functions bind them by asm label,
# which Mach-O takes without its underscore; Darwin's headers name the same
# functions _strchr and so on. Only these names are put back.
glibc_labels=" strchr strrchr strstr strpbrk memchr "

undefined=$("$nm" -u "$dylib" | while IFS= read -r s; do
  case "$glibc_labels" in *" $s "*) echo "_$s" ;; *) echo "$s" ;; esac
done)
count=0
while IFS= read -r sym; do
  [ -z "$sym" ] && continue
  count=$((count + 1))
  allowed "$sym" || fail "undefined symbol not provided on iOS: $sym"
done <<<"$undefined"
if [ "$count" -eq 0 ]; then fail "no undefined symbols at all: not a real link of the backend"; fi
# The backend was compiled as ARC code with blocks: the compiler's ARC entry
# points and the stack-block class are referenced.
grep -qx '_objc_storeStrong' <<<"$undefined" || fail "no ARC entry points: not built with -fobjc-arc"
grep -qx '__NSConcreteStackBlock' <<<"$undefined" || fail "no blocks in the backend"

# Every facade header with out-of-line functions has an iOS file of the same
# name. Headers of plain data, those whose code is portable (a .cpp beside
# them in src/), and templates over the other facades (sys/guarded) need none.
for header in "$root"/src/rt/*.hpp "$root"/src/sys/*.hpp "$root"/src/ui/*.hpp; do
  dir=$(basename "$(dirname "$header")")
  name=$(basename "$header" .hpp)
  [ -f "$root/src/$dir/$name.cpp" ] && continue
  case "$dir/$name" in rt/types | rt/geometry | sys/guarded) continue ;; esac
  [ -f "$root/platform/ios/$dir/$name.mm" ] || fail "facade src/$dir/$name.hpp has no platform/ios/$dir/$name.mm"
done

[ "$status" -eq 0 ] || exit 1
echo "check_dylib: $count undefined symbols, all provided on iOS; initialiser present"
"$filecmd" "$dylib"
