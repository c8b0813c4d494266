#!/usr/bin/env bash
# Mutation check: applies each mutation of a list (default scripts/mutations.txt) to its
# source file, rebuilds only the test binary it names, runs that binary and reports
# whether a test failed (caught) or all passed (survived). Each file is restored after
# its run, and on exit, when the binaries it mutated are built once more from the restored
# sources. Needs a configured build/ (see scripts/build.sh).
#   scripts/mutate.sh [list] [pattern]    pattern: only mutations of files matching it
set -uo pipefail
cd "$(dirname "$0")/.."
list=${1:-scripts/mutations.txt}
pattern=${2:-}
backup=$(mktemp)
current=""
targets=()
restore() { if [ -n "$current" ]; then cp "$backup" "$current"; current=""; fi; }
rebuild() { for t in $(printf '%s\n' "${targets[@]}" | sort -u); do cmake --build build -j2 --target "$t" >/dev/null 2>&1; done; }
trap 'restore; rm -f "$backup"; rebuild' EXIT
trap 'exit 130' INT TERM

# Fields are separated by " @ " (C++ code has '|' but no '@').
caught=0 survived=0 skipped=0
while IFS= read -r line; do
    [ -z "${line// }" ] || [ "${line:0:1}" = "#" ] && continue
    file=${line%% @ *}
    [ -n "$pattern" ] && [[ "$file" != *$pattern* ]] && continue
    cp "$file" "$backup"
    current=$file
    label=$(LINE="$line" python3 - <<'PY'
import os, sys
fields = os.environ["LINE"].split(" @ ")
path, old, new, target = (f.strip() for f in fields[:4])
n = int(fields[4]) if len(fields) > 4 else 1
text = open(path).read()
at = -1
for _ in range(n):
    at = text.find(old, at + 1)
    if at < 0:
        print("MISSING " + target + " " + path + ": text not found: " + old)
        sys.exit(0)
open(path, "w").write(text[:at] + new + text[at + len(old):])
print("OK " + target + " " + path + ": '" + old + "' -> '" + new + "'")
PY
)
    status=${label%% *}; label=${label#* }
    target=${label%% *}; label=${label#* }
    targets+=("$target")
    if [ "$status" != OK ]; then
        echo "SKIPPED   $label"
        skipped=$((skipped + 1))
    elif ! cmake --build build -j2 --target "$target" >/dev/null 2>&1; then
        echo "NO BUILD  $label"
        skipped=$((skipped + 1))
    elif timeout 600 "build/$target" --gtest_brief=1 >/dev/null 2>&1; then
        echo "SURVIVED  $label"
        survived=$((survived + 1))
    else
        echo "CAUGHT    $label"
        caught=$((caught + 1))
    fi
    restore
done < "$list"
echo "caught $caught, survived $survived, skipped $skipped"
