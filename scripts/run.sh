#!/usr/bin/env bash
# Builds the toolset (release) and runs its main job.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
build=${TS_BUILD:-build}
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build"
exec "$build/bin/toolset-cli" "$@"
