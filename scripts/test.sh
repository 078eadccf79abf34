#!/usr/bin/env bash
# Builds everything with AddressSanitizer and UndefinedBehaviorSanitizer and runs every test.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
build=${TS_TEST_BUILD:-build-test}
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DTS_SANITIZE=ON -DTS_WERROR=ON >/dev/null
cmake --build "$build"
export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1:abort_on_error=1}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}
ctest --test-dir "$build" --output-on-failure "$@"
