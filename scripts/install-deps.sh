#!/usr/bin/env bash
# Installs what the build needs from Debian's packages. Idempotent: when
# everything is there it only checks and returns at once. Without root (or
# without apt-get) it names exactly what is missing and fails.
#
#   scripts/install-deps.sh          # build, tests, benchmarks
#   scripts/install-deps.sh --fuzz   # also clang and its sanitizer runtime
#   scripts/install-deps.sh --bench  # also Boost.Serialization and portSMF,
#                                    # the points of comparison of the
#                                    # document and envelope benchmarks
#   scripts/install-deps.sh --coverage  # also gcovr, for `make coverage`
set -euo pipefail

packages=(cmake ninja-build g++ make pkg-config libpugixml-dev libgtest-dev libgmock-dev libbenchmark-dev doxygen)
# The MIDI cross-check (CTest midi_crosscheck): abc2midi makes its corpus,
# midicsv and csvmidi are the tools it compares with.
packages+=(abcmidi midicsv)
case "${1:-}" in
  --fuzz) packages+=(clang libclang-rt-14-dev) ;;
  --bench) packages+=(libboost-serialization-dev libportsmf-dev) ;;
  --coverage) packages+=(gcovr) ;;
esac

# The independent checks of pitch and chord spelling (CTest theory_check and
# chord_check) compare with npm packages, pinned by the lock file. Where node
# and npm are on the machine they are installed here; without them the two
# checks report themselves skipped.
theory="$(dirname "$0")/../tools/theory-check"
if command -v npm >/dev/null 2>&1 && [[ ! -d "$theory/node_modules" ]]; then
  echo "install-deps: installing the npm packages of the theory checks"
  npm ci --prefix "$theory" --no-audit --no-fund --loglevel=error >/dev/null ||
    echo "install-deps: npm ci failed; the theory checks will be skipped" >&2
fi

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done

if [[ ${#missing[@]} -eq 0 ]]; then
  exit 0
fi

if [[ $(id -u) -eq 0 ]] && command -v apt-get >/dev/null 2>&1; then
  echo "install-deps: installing ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  # A stale package list makes installs fail with 404s; refresh it once.
  apt-get update -qq || apt-get update
  apt-get install -y -qq --no-install-recommends "${missing[@]}"
  exit 0
fi

if command -v sudo >/dev/null 2>&1 && sudo -n true 2>/dev/null; then
  echo "install-deps: installing ${missing[*]} with sudo"
  sudo DEBIAN_FRONTEND=noninteractive apt-get update -qq
  sudo DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}"
  exit 0
fi

echo "install-deps: missing Debian packages: ${missing[*]}" >&2
echo "install-deps: run as root: apt-get install ${missing[*]}" >&2
exit 1
