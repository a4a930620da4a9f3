#!/usr/bin/env bash
# make bench: builds and runs every benchmark program; the tables go to build/bench/.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/test-data.sh
scripts/install-deps.sh
scripts/build.sh release
mkdir -p build/bench
for program in build/release/bin/bench_*; do
  name=$(basename "$program")
  echo "== $name"
  "$program" "$@" | tee "build/bench/$name.txt"
done
echo "== bench_python"
PYTHONPATH=build/release/python /usr/bin/python3 benchmarks/bench_python.py | tee build/bench/bench_python.txt
