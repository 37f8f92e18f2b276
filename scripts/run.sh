#!/usr/bin/env bash
# Set up, build and start Mirepan on its embedded database.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
scripts/build.sh
exec build/bin/mirepan "$@"
