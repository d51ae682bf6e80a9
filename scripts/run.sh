#!/usr/bin/env bash
# Installs what is needed, builds kivmeta alone, and runs it with the given arguments.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/install-deps.sh"
KIV_TARGET=kivmeta "$root/scripts/build.sh"
build=${KIV_BUILD_DIR:-$root/build}
exec "$build/apps/kivmeta/kivmeta" "$@"
