#!/usr/bin/env bash
# Kills saves of the command-line host at random points, many times over: each trial starts a real
# import, kills it with SIGKILL while it writes, then checks that the module passes its integrity
# check and holds the old or the new version of the resource whole.
#   scripts/kill_test.sh [TRIALS]     (default 2000; the test command runs 30)
# Uses the sanitizer build of scripts/test.sh (TS_TEST_BUILD, default build-test).
set -euo pipefail
cd "$(dirname "$0")/.."
build=${TS_TEST_BUILD:-build-test}
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DTS_SANITIZE=ON -DTS_WERROR=ON >/dev/null
cmake --build "$build" --target cli_tests toolset-cli
TS_KILL_TRIALS=${1:-2000} "$build/bin/cli_tests" --gtest_filter='KillDuringSave.*'
