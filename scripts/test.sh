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

# The fuzz targets: a build of their own with clang and libFuzzer, each run for a short while on a
# corpus seeded from the demo module. A finding is kept in $fuzz/artifacts and fails the run.
fuzz=${TS_FUZZ_BUILD:-build-fuzz}
seconds=${TS_FUZZ_SECONDS:-20}
CC=clang CXX=clang++ cmake -S tests/fuzz -B "$fuzz" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$fuzz"
"$fuzz/fuzz_seeds" data/demo "$fuzz/corpus"
mkdir -p "$fuzz/artifacts" "$fuzz/home"
home=$(cd "$fuzz/home" && pwd)
# Each target is NAME:CORPUS:MAX_LEN. Inputs may be as large as the seeds that reach the paths
# whose cost grows with the input (a 100,000-column table, a 100,000-key object, conversations of
# lines owned twice), and one input taking longer than TS_FUZZ_INPUT_SECONDS is a finding.
input_seconds=${TS_FUZZ_INPUT_SECONDS:-10}
for target in resource_decode:decode:65536 text_formats:text:2097152 \
    conversation_open:dlg:1048576; do
    IFS=: read -r name corpus max_len <<<"$target"
    echo "fuzz_$name: ${seconds} s"
    XDG_DATA_HOME="$home" "$fuzz/fuzz_$name" -max_total_time="$seconds" \
        -timeout="$input_seconds" -max_len="$max_len" -rss_limit_mb=2048 \
        -artifact_prefix="$fuzz/artifacts/" "$fuzz/corpus/$corpus" >"$fuzz/$name.log" 2>&1 ||
        { tail -n 40 "$fuzz/$name.log"; echo "fuzz_$name found a fault (see $fuzz/artifacts)"; exit 1; }
    grep -E "^Done [0-9]+ runs" "$fuzz/$name.log" || true
done
