#!/usr/bin/env bash
# make python: installs, builds, and says how to import the package.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
scripts/build.sh release orvex_python
PYTHONPATH=build/release/python /usr/bin/python3 -c \
  'import orvex; print("orvex", orvex.__version__, "is ready: PYTHONPATH=build/release/python")'
