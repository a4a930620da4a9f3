#!/usr/bin/env bash
# Installs from Debian what the build, the tests and the benchmarks need. Says what and why, and
# skips what is there. Runs apt-get as root, or through sudo.
set -euo pipefail

# package | what for
packages() {
  cat <<'LIST'
g++|the compiler (C++20, OpenMP)
cmake|the build
ninja-build|the build
ccache|repeated builds
libocct-foundation-dev|OpenCASCADE: base classes
libocct-modeling-data-dev|OpenCASCADE: geometry and topology
libocct-modeling-algorithms-dev|OpenCASCADE: builders, booleans, mesher
libocct-ocaf-dev|OpenCASCADE: documents
libocct-data-exchange-dev|OpenCASCADE: STEP, IGES, XCAF
libocct-visualization-dev|OpenCASCADE: linked by its document toolkits
libfontconfig-dev|OpenCASCADE: linked by its visualization toolkits
libtbb-dev|OpenCASCADE: its threads, linked by its toolkits
qt6-base-dev|Qt 6 Core
libfparser-dev|expressions
libcli11-dev|the command line
libgtest-dev|tests
libgmock-dev|tests
libbenchmark-dev|benchmarks
libfcl-dev|benchmarks: the peer of collision checks
libembree-dev|benchmarks: the peer of picks on triangles
pybind11-dev|the Python package
python3-dev|the Python package
python3-numpy|the Python package: samples and meshes as arrays
python3|checks that the tests run
python3-pytest|tests of the Python package
mypy|tests of the Python package: its types
python3-jsonschema|tests check JSON output against its schema
LIST
  if [ "${1:-}" = --lint ]; then
    echo "clang-tidy|make lint"
    echo "clang-format|make format"
  fi
}

installed() { dpkg-query -W -f='${Status}' "$1" 2>/dev/null | grep -q 'ok installed'; }

missing=()
while IFS='|' read -r name reason; do
  installed "$name" && continue
  printf 'needed: %-34s %s\n' "$name" "$reason" >&2
  missing+=("$name")
done < <(packages "$@")
[ ${#missing[@]} -eq 0 ] && exit 0

run=()
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || {
    echo "install-deps: needs root or sudo to install: ${missing[*]}" >&2
    exit 1
  }
  run=(sudo)
fi
echo "install-deps: installing ${#missing[@]} packages with apt-get" >&2
export DEBIAN_FRONTEND=noninteractive
"${run[@]}" apt-get update -qq >&2
"${run[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >&2
