#!/usr/bin/env bash
# Configures and builds Mirepan into build/ (Release with debug info).
set -euo pipefail
cd "$(dirname "$0")/.."
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build
