#!/usr/bin/env bash
# Installs what is needed, builds kivmeta alone, and runs it with the given arguments.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${KIV_BUILD_DIR:-$root/build}
"$root/scripts/install-deps.sh"
# A first build configures without tests and benchmarks (their packages are
# not needed for kivmeta); a build folder that has them keeps them.
options=()
[ -f "$build/CMakeCache.txt" ] || options=(-DKIV_BUILD_TESTS=OFF -DKIV_BUILD_BENCHMARKS=OFF)
KIV_TARGET=kivmeta "$root/scripts/build.sh" "${options[@]}"
exec "$build/apps/kivmeta/kivmeta" "$@"
