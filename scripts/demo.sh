#!/usr/bin/env bash
# Builds Praxa and runs the main job on the bundled example diagram.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/build.sh
mkdir -p out
./build/praxa --out out about
