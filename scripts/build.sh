#!/usr/bin/env bash
# Configures and builds into build/ (or $KIV_BUILD_DIR).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${KIV_BUILD_DIR:-$root/build}
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=${KIV_BUILD_TYPE:-Release} "$@" >/dev/null
# KIV_TARGET builds one target and what it needs (scripts/run.sh: kivmeta).
cmake --build "$build" -j"$(nproc)" ${KIV_TARGET:+--target "$KIV_TARGET"}
