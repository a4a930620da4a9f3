#!/usr/bin/env bash
# make demo: installs, builds and shows what the command line can do.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
scripts/build.sh release orvex orvex_python

show() {
  printf '\n$ orvex %s\n' "$*"
  "build/release/bin/orvex" "$@"
}

show version
show info --tree examples/gear-reducer.step
show replay --run --strategy examples/gear-reducer.step
