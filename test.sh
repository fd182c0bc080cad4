#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test.
#   ./test.sh [--sanitize] [CTEST-ARGUMENT ...]
# --sanitize: the same tests, built with AddressSanitizer and UndefinedBehaviorSanitizer.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")"

preset=release
if [ "${1:-}" = "--sanitize" ]; then
    preset=debug
    shift
fi
./build.sh --preset "$preset"
ctest --preset "$preset" -j2 "$@"
