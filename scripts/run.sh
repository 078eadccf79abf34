#!/usr/bin/env bash
# Builds the toolset (release), makes the demo module on first run and opens the desktop toolset
# on it, showing its first conversation. Without a display it runs the command-line host's
# report on the module instead. With arguments, runs the command-line host with them.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
build=${TS_BUILD:-build}
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build"
cli="$build/bin/toolset-cli"
[[ $# -eq 0 ]] || exec "$cli" "$@"

# The demo module lives in the build folder, made from data/demo; when the sources are newer it
# is made again, and the previous one is kept beside it (demo.tsmod.bak) in case it was edited.
demo="$build/demo/demo.tsmod"
if [[ ! -f "$demo" ]]; then
    mkdir -p "$(dirname "$demo")"
    "$cli" module create data/demo "$demo"
elif [[ -n "$(find data/demo -newer "$demo" -print -quit)" ]]; then
    cp "$demo" "$demo.bak"
    echo "run: data/demo changed, so the demo module is made again (the previous one is $demo.bak)"
    "$cli" module create data/demo "$demo" --force
fi
if [[ -z "${DISPLAY:-}" && -z "${WAYLAND_DISPLAY:-}" && "${QT_QPA_PLATFORM:-}" != offscreen ]]; then
    echo "run: no display (DISPLAY and WAYLAND_DISPLAY are unset), so here is the command-line host's report on the demo module instead of the toolset's window"
    exec "$cli" report "$demo"
fi
exec "$build/bin/toolset" --module "$demo"
