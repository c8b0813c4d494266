#!/usr/bin/env bash
# Builds Praxa and runs the main job on the bundled servo diagram: the linearized model
# is written to out/servo.m and the transfer function dialogs are printed.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/build.sh
mkdir -p out
./build/praxa --settings out/tervan.ini --out out --script examples/servo_session.txt examples/servo.json
