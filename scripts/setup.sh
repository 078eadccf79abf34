#!/usr/bin/env bash
# Installs the Debian packages the toolset needs to build, test and run. Safe to run again:
# it installs only what is missing and prints nothing when all is present.
set -euo pipefail

packages=(
    cmake ninja-build g++ pkg-config
    libgtest-dev libgmock-dev libbenchmark-dev
    clang libclang-rt-14-dev          # libFuzzer for the fuzz targets
    libsqlite3-dev libpq-dev postgresql
    libexpat1-dev
    qt6-base-dev libgl-dev
    libhunspell-dev hunspell-en-us
    libespeak-ng-dev espeak-ng
)

missing=()
for p in "${packages[@]}"; do
    status=$(dpkg-query -W -f='${Status}' "$p" 2>/dev/null || true)
    [[ "$status" == "install ok installed" ]] || missing+=("$p")
done
[[ ${#missing[@]} -eq 0 ]] && exit 0

echo "setup: installing ${missing[*]}"
sudo_cmd=()
[[ $(id -u) -eq 0 ]] || sudo_cmd=(sudo)
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -qq
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
