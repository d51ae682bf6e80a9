#!/usr/bin/env bash
# Installs what is needed, builds everything and runs every test.
#
#   scripts/test.sh                    every test in build/ (or $KIV_BUILD_DIR),
#                                      the format check, the model and core tests
#                                      under the sanitizers, and each fuzz target
#                                      for $KIV_FUZZ_SECONDS (10) seconds
#   scripts/test.sh --sanitize         everything under AddressSanitizer and
#                                      UndefinedBehaviorSanitizer, in build-sanitize/
#   scripts/test.sh --sanitize=model   the same for the kivcore and kivmetadata tests only
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)

sanitize=""
case "${1:-}" in
"") ;;
--sanitize) sanitize=all ;;
--sanitize=model) sanitize=model ;;
*)
  echo "usage: $0 [--sanitize | --sanitize=model]" >&2
  exit 2
  ;;
esac

"$root/scripts/install-deps.sh" --tests

if [ -z "$sanitize" ]; then
  "$root/scripts/build.sh" -DKIV_BUILD_TESTS=ON -DKIV_BUILD_BENCHMARKS=ON
  build=${KIV_BUILD_DIR:-$root/build}
  (cd "$build" && QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j"$(nproc)")
  "$root/scripts/check-format.sh"
  # The model and core tests again under the sanitizers, and each fuzz
  # target briefly on its seeds.
  "$root/scripts/test.sh" --sanitize=model
  "$root/scripts/fuzz.sh" --ci --time="${KIV_FUZZ_SECONDS:-10}"
  exit
fi

build=$root/build-sanitize
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Debug -DKIV_SANITIZE=ON -DKIV_BUILD_BENCHMARKS=OFF >/dev/null
# Leak detection needs ptrace, which is not available everywhere (CI
# containers); the other checks stop the test at the first report.
export ASAN_OPTIONS=detect_leaks=0:abort_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
export QT_QPA_PLATFORM=offscreen
if [ "$sanitize" = model ]; then
  cmake --build "$build" -j"$(nproc)" --target kiv_model_tests
  # ctest in a test folder runs only the tests defined there.
  for dir in tests/kivcore tests/kivmetadata; do
    ctest --test-dir "$build/$dir" --output-on-failure -j"$(nproc)"
  done
else
  cmake --build "$build" -j"$(nproc)"
  ctest --test-dir "$build" --output-on-failure -j"$(nproc)"
fi
