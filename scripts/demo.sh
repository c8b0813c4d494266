#!/usr/bin/env bash
# Builds Praxa and runs the main job on the bundled servo diagram: the linearized model
# goes to out/servo.m, the transfer function and margins dialogs are printed, and the
# Bode and root locus plots are written to out/ as SVG files.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/build.sh
mkdir -p out
./build/praxa --settings out/tervan.ini --out out --script examples/servo_session.txt examples/servo.json
