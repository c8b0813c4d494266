#!/usr/bin/env bash
# Builds Praxa once more with AddressSanitizer and UndefinedBehaviorSanitizer (clang) into
# build-sanitize/, runs every test and the examples with leak detection on, then each
# fuzzer of fuzz/ for FUZZ_SECONDS (default 60).
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
launcher=()
command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
cmake -S . -B build-sanitize -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=clang++ \
      -DPRAXA_FUZZ=ON "${launcher[@]}" >/dev/null
cmake --build build-sanitize -j"$(nproc)"

export ASAN_OPTIONS=detect_leaks=1:detect_stack_use_after_return=1:check_initialization_order=1
export UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1
export LSAN_OPTIONS=suppressions=$PWD/scripts/lsan.supp:print_suppressions=0
ctest --test-dir build-sanitize --output-on-failure -j"$(nproc)"

# The examples, every analysis on each: a sanitizer report makes praxa exit with 99.
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
export ASAN_OPTIONS=$ASAN_OPTIONS:exitcode=99 UBSAN_OPTIONS=$UBSAN_OPTIONS:exitcode=99
for diagram in examples/*.json; do
  for command in linearize tf bode nyquist rlocus "compensator --replot --ok"; do
    status=0
    # shellcheck disable=SC2086
    build-sanitize/praxa --settings "$out/tervan.ini" --out "$out" "$diagram" $command >/dev/null 2>"$out/err" || status=$?
    if [ "$status" -ge 2 ]; then
      cat "$out/err" >&2
      echo "praxa $diagram $command: exit $status" >&2
      exit 1
    fi
  done
done
build-sanitize/praxa --settings "$out/tervan.ini" --out "$out" examples/servo.json --script examples/servo_session.txt >/dev/null

bash fuzz/run.sh build-sanitize "${FUZZ_SECONDS:-60}"
