#!/usr/bin/env bash
# Configures and builds Mirepan into build/ (Release with debug info), one compile job per core:
# Ninja's default of cores + 2 overfills a small machine's memory with the Qt headers.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j "$(nproc)"
