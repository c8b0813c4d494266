#!/usr/bin/env bash
# Runs every fuzzer of BUILD_DIR (default build-sanitize) for SECONDS each (default 60)
# but those named in FUZZ_SKIP (space-separated),
# starting from its seed corpus fuzz/corpus/NAME. Fails on a crash, a leak, an input
# taking over 10 s or a process over 2 GB; the input is left in BUILD_DIR/fuzz-findings/.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build-sanitize}
seconds=${2:-60}
findings="$build/fuzz-findings"
mkdir -p "$findings"
export ASAN_OPTIONS=detect_leaks=1
export UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1
status=0
for seeds in fuzz/corpus/*/; do
  name=$(basename "$seeds")
  case " ${FUZZ_SKIP:-} " in *" $name "*) echo "fuzz_$name: skipped"; continue ;; esac
  work=$(mktemp -d)
  cp "$seeds"* "$work"/
  echo "fuzz_$name: ${seconds}s"
  if ! "$build/fuzz_$name" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -detect_leaks=1 \
       -print_final_stats=1 -artifact_prefix="$findings/$name-" "$work" 2>"$findings/$name.log"; then
    tail -n 60 "$findings/$name.log"
    echo "fuzz_$name failed: input in $findings/" >&2
    status=1
  fi
  grep -E '^stat::number_of_executed_units' "$findings/$name.log" || true
  rm -rf "$work"
done
exit $status
