#!/usr/bin/env bash
# Builds the libFuzzer targets of fuzz/ with clang 15 into build-fuzz/ and
# runs them one after the other.
#
#   scripts/fuzz.sh [--ci] [--time=SECONDS] [TARGET...]
#
# Without TARGET, every target. Each run prints its number of executions.
#   --ci            at most 60 seconds per target, on a copy of its seed
#                   corpus in a temporary folder
#   (default)       10,000,000 executions or 30 minutes per target, whichever
#                   comes first, on build-fuzz/corpus/<target> (kept between
#                   runs) and the seeds
#   --time=SECONDS  another time limit per target
# A crash, a broken property, a hang or a sanitizer report makes the exit
# status non-zero; the input that caused it is kept in build-fuzz/crashes/.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
all=(fuzz_date_parser fuzz_xml_name fuzz_user_files fuzz_xmp_containers fuzz_packet_text fuzz_packet_panels)

ci=0
seconds=""
targets=()
for arg in "$@"; do
  case "$arg" in
  --ci) ci=1 ;;
  --time=*) seconds=${arg#--time=} ;;
  -*)
    echo "usage: $0 [--ci] [--time=SECONDS] [TARGET...]  (targets: ${all[*]})" >&2
    exit 2
    ;;
  *) targets+=("$arg") ;;
  esac
done
[ ${#targets[@]} -eq 0 ] && targets=("${all[@]}")
if [ -z "$seconds" ]; then
  if [ $ci -eq 1 ]; then seconds=60; else seconds=1800; fi
fi

"$root/scripts/install-deps.sh"
# llvm-15 for its symbolizer: reports with function names and lines.
missing=()
for p in clang-15 libfuzzer-15-dev llvm-15; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  sudo=""
  [ "$(id -u)" -ne 0 ] && sudo="sudo"
  export DEBIAN_FRONTEND=noninteractive
  $sudo apt-get update -qq
  $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi

build=$root/build-fuzz
# The libraries get the sanitizers and the fuzzer's coverage hooks; the
# targets add the fuzzer runtime itself (fuzz/CMakeLists.txt).
flags="-fsanitize=address,undefined -fsanitize=fuzzer-no-link -fno-omit-frame-pointer"
CC=clang-15 CXX=clang++-15 cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DKIV_BUILD_FUZZERS=ON -DKIV_BUILD_TESTS=OFF -DKIV_BUILD_BENCHMARKS=OFF \
  -DCMAKE_C_FLAGS="$flags" -DCMAKE_CXX_FLAGS="$flags" >/dev/null
cmake --build "$build" -j"$(nproc)" --target "${targets[@]}"

# Leak checking needs ptrace, which CI containers do not allow; undefined
# behaviour stops the run like a crash.
export ASAN_OPTIONS=detect_leaks=0
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
symbolizer=/usr/lib/llvm-15/bin/llvm-symbolizer
if [ -x "$symbolizer" ]; then
  export ASAN_SYMBOLIZER_PATH=$symbolizer UBSAN_SYMBOLIZER_PATH=$symbolizer
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$build/crashes"
failed=()
for target in "${targets[@]}"; do
  seeds=$root/fuzz/corpus/$target
  if [ $ci -eq 1 ]; then
    corpus=$work/$target
    cp -r "$seeds" "$corpus"
    limits=(-max_total_time="$seconds")
    dirs=("$corpus")
  else
    corpus=$build/corpus/$target
    mkdir -p "$corpus"
    limits=(-runs=10000000 -max_total_time="$seconds")
    dirs=("$corpus" "$seeds")
  fi
  log=$work/$target.log
  echo "== $target (${limits[*]})"
  status=0
  start=$(date +%s)
  # The library's own messages (the XMP toolkit writes its errors to
  # stderr) are muted; the fuzzer's report is not.
  "$build/fuzz/$target" "${limits[@]}" -print_final_stats=1 -timeout=30 -rss_limit_mb=2560 \
    -close_fd_mask=3 -artifact_prefix="$build/crashes/$target-" "${dirs[@]}" >"$log" 2>&1 || status=$?
  elapsed=$(($(date +%s) - start))
  executions=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
  echo "$target: ${executions:-?} executions in ${elapsed} s"
  if [ $status -ne 0 ]; then
    failed+=("$target")
    echo "$target FAILED (exit status $status):"
    tail -n 60 "$log"
    echo "(replay an input with: $build/fuzz/$target <file>; a broken property names itself)"
  fi
done
if [ ${#failed[@]} -gt 0 ]; then
  echo "failed: ${failed[*]}" >&2
  exit 1
fi
