#!/usr/bin/env bash
# Installs what is missing, builds with ASan and UBSan (warnings are errors) and runs the whole test suite.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
cmake --preset ci
cmake --build --preset ci -j "$(nproc)"
ctest --preset ci -j "$(nproc)"
