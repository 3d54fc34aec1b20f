# Shared by the scripts of this folder: where the project is, its Debian packages, quiet builds.
# shellcheck shell=bash disable=SC2034

set -euo pipefail
unset CDPATH # it would lead `cd` elsewhere
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

packages_build=(g++ cmake ninja-build qt6-base-dev libcli11-dev libfmt-dev libdeflate-dev)
packages_test=(libgtest-dev libgmock-dev librapidcheck-dev python3 python3-jsonschema)
packages_costs=(binutils python3 valgrind)
packages_docs=(doxygen graphviz)
packages_check=(git clang-19 clang-tidy-19 clang-format-19 libclang-19-dev libclang-rt-19-dev llvm-19-dev python3 python3-clang-19)

say() { printf '%s\n' "$*" >&2; }

# need PACKAGE...: installs those that are missing, or names them and stops.
need() {
    local missing=() package
    for package in "$@"; do
        dpkg-query -W -f '${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed || missing+=("$package")
    done
    ((${#missing[@]})) || return 0

    local as_root=()
    if ((EUID != 0)); then
        if ! command -v apt-get >/dev/null || ! command -v sudo >/dev/null || { [[ ! -t 0 ]] && ! sudo -n true 2>/dev/null; }; then
            say "These Debian packages are missing: ${missing[*]}"
            say "Install them as root and try again: apt-get install ${missing[*]}"
            exit 1
        fi
        as_root=(sudo)
    fi
    say "Installing ${missing[*]} ..."
    local log
    log=$(mktemp)
    if ! { "${as_root[@]}" apt-get update && "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y --no-install-recommends -o Dpkg::Options::=--force-confold "${missing[@]}"; } \
        >"$log" 2>&1 </dev/null; then
        cat "$log" >&2
        rm -f "$log"
        say "The packages could not be installed. Install them by hand and try again: apt-get install ${missing[*]}"
        exit 1
    fi
    rm -f "$log"
}

# quietly LOG COMMAND...: runs a command and shows what it printed only if it fails.
quietly() {
    local log=$1
    shift
    mkdir -p "$(dirname "$log")" && : >"$log" || return
    if ! "$@" >"$log" 2>&1 </dev/null; then
        cat "$log" >&2
        say "Failed: $*"
        return 1
    fi
}

# configured PRESET: whether its build folder is ready, and belongs to this folder and no copy of it.
configured() {
    [[ -f build/$1/build.ninja ]] && grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$PWD" "build/$1/CMakeCache.txt"
}

# configure PRESET [OPTION...]
configure() {
    local preset=$1 fresh=()
    shift
    configured "$preset" || fresh=(--fresh)
    quietly "build/$preset.configure.log" cmake "${fresh[@]}" --preset "$preset" "$@"
}

# build PRESET [TARGET...]: builds the targets, or everything.
build() {
    local preset=$1
    shift
    quietly "build/$preset.build.log" cmake --build --preset "$preset" ${@:+--target "$@"}
}
