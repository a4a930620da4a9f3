#!/usr/bin/env bash
# Configures and builds a preset (release unless named) with both cores: scripts/build.sh [PRESET] [TARGET...]
set -euo pipefail
cd "$(dirname "$0")/.."
preset=${1:-release}
shift || true
cmake --preset "$preset" -Wno-dev >/dev/null
targets=()
[ $# -gt 0 ] && targets=(--target "$@")
cmake --build --preset "$preset" "${targets[@]}" -- --quiet
