#!/usr/bin/env bash
# make test: installs, builds and runs every test.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/test-data.sh
scripts/install-deps.sh
scripts/build.sh release
ctest --preset release "$@"
