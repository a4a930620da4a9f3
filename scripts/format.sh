#!/usr/bin/env bash
# make format: formats all C++ sources; --check only tells whether they are.
set -euo pipefail
cd "$(dirname "$0")/.."
command -v clang-format >/dev/null || scripts/install-deps.sh --lint
mode=-i
[ "${1:-}" = --check ] && mode="--dry-run -Werror"
# shellcheck disable=SC2086
git ls-files -z -- '*.cpp' '*.h' | xargs -0 -r clang-format $mode
