#!/usr/bin/env bash
# Installs what the build needs from Debian's packages; does nothing when all
# of it is already there.
set -euo pipefail

packages=(
  g++ clang cmake ninja-build pkg-config
  googletest libgtest-dev libgmock-dev libbenchmark-dev
  libplist-dev libicu-dev
  python3  # scripts/bench.sh reads the benchmarks' JSON
  # The simulator's pictures: cairo and pango, and a font with the Chinese texts.
  libcairo2-dev libpango1.0-dev fonts-noto-cjk
  # The simulator's REPL: line editing, history and completion.
  libedit-dev
  # The iOS check build: ld64.lld, libc++'s headers, glibc's arm64 headers,
  # llvm-nm/-objdump/-lipo to read the Mach-O files.
  lld-14 llvm-14 libc++-14-dev libc++abi-14-dev libc6-dev-arm64-cross file
  # The iOS package and side-loading tests: dpkg-deb, and the load-command
  # tool's Mach-O library.
  dpkg python3-macholib
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

echo "setup: installing ${missing[*]}"
sudo=""
if [ "$(id -u)" -ne 0 ]; then
  if command -v sudo >/dev/null; then sudo="sudo"; else
    echo "setup: need root (or sudo) to install: ${missing[*]}" >&2
    exit 1
  fi
fi
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
