#!/usr/bin/env bash
# make lint: clang-tidy over our sources, with the checks of .clang-tidy.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh --lint
cmake --preset debug -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON -B build/lint -Wno-dev >/dev/null
git ls-files -z -- 'src/*.cpp' 'apps/*.cpp' |
  xargs -0 -r -n 4 -P 2 clang-tidy -p build/lint --quiet --warnings-as-errors='*'
