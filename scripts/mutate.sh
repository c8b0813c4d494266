#!/usr/bin/env bash
# Mutation check: applies each mutation of a list (default scripts/mutations.txt) to its
# source file, rebuilds only the test binary it names, runs that binary and reports
# whether a test failed (caught) or all passed (survived). Each file is restored after
# its run, and on exit. Needs a configured build/ (see scripts/build.sh).
#   scripts/mutate.sh [list] [pattern]    pattern: only mutations of files matching it
set -uo pipefail
cd "$(dirname "$0")/.."
list=${1:-scripts/mutations.txt}
pattern=${2:-}
backup=$(mktemp)
current=""
restore() { [ -n "$current" ] && cp "$backup" "$current" && current=""; }
trap 'restore; rm -f "$backup"' EXIT
trap 'exit 130' INT TERM

caught=0 survived=0 skipped=0
while IFS='|' read -r file original mutated target occurrence; do
    file=$(echo "$file" | xargs)
    [ -z "$file" ] || [ "${file:0:1}" = "#" ] && continue
    [ -n "$pattern" ] && [[ "$file" != *$pattern* ]] && continue
    target=$(echo "$target" | xargs)
    occurrence=$(echo "${occurrence:-1}" | xargs)
    original=$(echo "$original" | sed 's/^ //; s/ $//')
    mutated=$(echo "$mutated" | sed 's/^ //; s/ $//')
    cp "$file" "$backup"
    current=$file
    if ! ORIGINAL="$original" MUTATED="$mutated" N="$occurrence" python3 - "$file" <<'PY'
import os, sys
path, old, new, n = sys.argv[1], os.environ["ORIGINAL"], os.environ["MUTATED"], int(os.environ["N"])
text = open(path).read()
at = -1
for _ in range(n):
    at = text.find(old, at + 1)
    if at < 0:
        sys.exit(1)
open(path, "w").write(text[:at] + new + text[at + len(old):])
PY
    then
        echo "SKIPPED   $file: text not found: $original"
        skipped=$((skipped + 1)); restore; continue
    fi
    label="$file: '$original' -> '$mutated'"
    if ! cmake --build build -j2 --target "$target" >/dev/null 2>&1; then
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
