#!/usr/bin/env bash
# Installs what is missing, builds with ASan and UBSan (warnings are errors) and runs the whole test
# suite, then builds the release preset (library, examples, benchmarks with their peers) so that
# example and benchmark code can't rot unseen.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
scripts/install-bench-peers.sh
cmake --preset ci
cmake --build --preset ci -j "$(nproc)"
ctest --preset ci -j "$(nproc)"
cmake --preset release
cmake --build --preset release -j "$(nproc)"
