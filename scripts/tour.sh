#!/usr/bin/env bash
# Installs what is missing, builds the release library and runs the tour on the bundled sample files.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
cmake --preset release
cmake --build --preset release -j "$(nproc)" --target tour
build/release/examples/tour examples/data
