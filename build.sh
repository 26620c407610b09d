#!/usr/bin/env bash
# Builds ocsystem-map on Debian 12 and either maps the shipped examples or runs
# the tests. Installs missing Debian packages first (as root, or with sudo).
#
#   ./build.sh example   build, then map the example requests and responses
#   ./build.sh test      build, then run every test, also under ASan+UBSan
set -euo pipefail
cd "$(dirname "$0")"

PACKAGES=(cmake ninja-build g++ clang libclang-rt-dev libgtest-dev libgmock-dev libbenchmark-dev
          libxml2-dev nlohmann-json3-dev libyang2-dev libyang2-tools pkg-config
          libnetconf2-dev libssh-dev python3-ncclient python3-paramiko yangcli dpkg-dev file doxygen)

install_missing() {
    local missing=()
    for p in "${PACKAGES[@]}"; do
        dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'ok installed' || missing+=("$p")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    local sudo=()
    [ "$(id -u)" -ne 0 ] && sudo=(sudo)
    echo "installing: ${missing[*]}"
    "${sudo[@]}" apt-get update -qq
    DEBIAN_FRONTEND=noninteractive "${sudo[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
}

build() {
    local dir=$1
    shift
    cmake -S . -B "$dir" -G Ninja "$@" >/dev/null
    cmake --build "$dir" -j"$(nproc)"
}

case "${1:-}" in
example)
    install_missing
    build build -DOCSYSMAP_WERROR=ON
    while read -r kind file; do
        echo "== ocsysmap map --kind $kind $file"
        build/tools/ocsysmap map --kind "$kind" "examples/$file"
    done < examples/main-job.txt
    ;;
test)
    install_missing
    build build -DOCSYSMAP_WERROR=ON
    ctest --test-dir build --output-on-failure -j"$(nproc)"
    build build-asan -DOCSYSMAP_WERROR=ON -DOCSYSMAP_SANITIZE=ON -DOCSYSMAP_BENCH=OFF
    ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
        ctest --test-dir build-asan --output-on-failure -j"$(nproc)"
    ;;
*)
    echo "usage: $0 example|test" >&2
    exit 2
    ;;
esac
