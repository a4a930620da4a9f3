#!/usr/bin/env bash
# make sanitize: the whole suite under AddressSanitizer, LeakSanitizer and UBSan. Leaks of the
# kernel are suppressed by name; ours never.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/test-data.sh
scripts/install-deps.sh
scripts/build.sh sanitize
export UBSAN_OPTIONS="print_stacktrace=1"
# Each damaged file takes several times as long here; the full number runs in make test.
export ORVEX_MUTATIONS="${ORVEX_MUTATIONS:-100}"

usual="detect_stack_use_after_return=0"
# Looking for leaks makes the command line ten times slower; the library's own tests look for them.
ASAN_OPTIONS="$usual:detect_leaks=0:${ASAN_OPTIONS:-}" ctest --preset sanitize -R '^cli\.' "$@"
# The kernel keeps no frame pointers: only the slow unwinder finds the functions that leak.
export ASAN_OPTIONS="$usual:fast_unwind_on_malloc=0:malloc_context_size=12:${ASAN_OPTIONS:-}"
export LSAN_OPTIONS="suppressions=$PWD/scripts/lsan.supp:print_suppressions=0"
ctest --preset sanitize -E '^cli\.' "$@"
