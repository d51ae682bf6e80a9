#!/usr/bin/env bash
# Fails when a C++ file that git tracks is not formatted as .clang-format says.
#   scripts/check-format.sh          check
#   scripts/check-format.sh --fix    format them in place
set -euo pipefail
cd "$(dirname "$0")/.."
mode=(--dry-run --Werror)
[ "${1:-}" = --fix ] && mode=(-i)
git ls-files -z '*.cpp' '*.h' | xargs -0 clang-format --style=file "${mode[@]}"
