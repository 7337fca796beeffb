#!/usr/bin/env bash
# Cross-checks pitch spelling, intervals and keys against an independent music
# theory package from the npm registry. Test-only and optional: the library
# never depends on it, and `make test`/ctest do not run it.
#
# Usage: tests/pitch/reference/run.sh [build-dir]   (default: ./build)
# Needs a built libscoremodel in the build dir, a C++ compiler, node and npm.
# Without node or npm it says so and exits 0.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../../.." && pwd)
build=$(cd "${1:-$root/build}" && pwd)

if ! command -v node >/dev/null || ! command -v npm >/dev/null; then
  echo "node or npm not found: pitch reference check skipped"
  exit 0
fi

work="$build/pitch-reference"
mkdir -p "$work"
cp "$here/package.json" "$here/compare.mjs" "$work/"
(cd "$work" && npm install --no-audit --no-fund --silent >/dev/null)

"${CXX:-c++}" -std=c++20 -I"$root" "$here/dump_pitch.cc" \
  -L"$build/scoremodel" -lscoremodel -Wl,-rpath,"$build/scoremodel" -o "$work/dump_pitch"
"$work/dump_pitch" > "$work/pitch.tsv"
cd "$work" && node compare.mjs pitch.tsv
