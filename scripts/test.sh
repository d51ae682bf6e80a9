#!/usr/bin/env bash
# Installs what is needed, builds everything and runs every test.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/install-deps.sh"
"$root/scripts/build.sh"
build=${KIV_BUILD_DIR:-$root/build}
cd "$build"
QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j"$(nproc)"
