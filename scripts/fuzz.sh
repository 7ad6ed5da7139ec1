#!/usr/bin/env bash
# Builds the fuzz preset and runs one target with its dictionary, e.g.
#   scripts/fuzz.sh sax_reader_fuzz 1800
# The corpus grows in /tmp/fuzz-corpus-<target> (seeded from fuzz/seeds/<target>), findings land in
# /tmp/fuzz-artifacts-<target>/, the log in /tmp/fuzz-<target>.log; nothing is written to the tree.
set -euo pipefail
cd "$(dirname "$0")/.."
target=${1:?usage: scripts/fuzz.sh TARGET [SECONDS]}
seconds=${2:-600}
case $target in
  xpath_fuzz) dict=fuzz/dict/path.dict ;;
  json_*) dict=fuzz/dict/json.dict ;;
  *) dict=fuzz/dict/xml.dict ;;
esac
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j 2 --target "$target"
corpus=/tmp/fuzz-corpus-$target artifacts=/tmp/fuzz-artifacts-$target
mkdir -p "$corpus" "$artifacts"
build/fuzz/fuzz/"$target" -max_total_time="$seconds" -print_final_stats=1 -dict="$dict" \
  -artifact_prefix="$artifacts/" "$corpus" "fuzz/seeds/$target" 2>&1 | tee "/tmp/fuzz-$target.log" | grep -E "INITED|DONE|ERROR|==ERROR" || true
