#!/usr/bin/env bash
# Set up, build and run every test through CTest (offscreen, no display needed).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
scripts/build.sh
export QT_QPA_PLATFORM=offscreen
ctest --test-dir build --output-on-failure -j2
