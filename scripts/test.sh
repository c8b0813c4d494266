#!/usr/bin/env bash
# Builds Praxa and runs every test: the CTest suite, then the browser session of
# `praxa serve` (Playwright from tests/web's lock file, driving Debian's chromium).
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/build.sh
ctest --test-dir build --output-on-failure -j"$(nproc)"
cd tests/web
npm ci --no-audit --no-fund
PRAXA_EXE="$PWD/../../build/praxa" node --test
