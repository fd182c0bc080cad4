#!/usr/bin/env bash
# Installs what is missing (Debian packages) and builds.
#   ./build.sh [--preset release|debug|fuzz] [TARGET ...]
# The release preset leaves the program in build/Zorvex/ and the tools in build/bin/.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")"

preset=release
if [ "${1:-}" = "--preset" ]; then
    preset=${2:?--preset needs a name: release, debug or fuzz}
    shift 2
fi

wanted_packages() {
    grep -v -e '^#' -e '^$' packages.txt
    if [ "$preset" = fuzz ]; then printf '%s\n' clang-14 libclang-rt-14-dev; fi
}

install_missing() {
    local missing=() package
    while read -r package; do
        if ! dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null | grep -qx installed; then
            missing+=("$package")
        fi
    done < <(wanted_packages)
    [ ${#missing[@]} -eq 0 ] && return
    echo "Installing: ${missing[*]}"
    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || { echo "Please install as root: apt-get install ${missing[*]}" >&2; exit 1; }
        as_root=(sudo)
    fi
    "${as_root[@]}" apt-get update -qq
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

if command -v dpkg-query >/dev/null && command -v apt-get >/dev/null; then
    install_missing
else
    echo "This is no Debian system; the packages of packages.txt (or their like) are taken to be there." >&2
fi

build_dir=build
[ "$preset" = release ] || build_dir=build-$preset
cmake --preset "$preset" --log-level=WARNING
cmake --build "$build_dir" ${1:+--target "$@"}
