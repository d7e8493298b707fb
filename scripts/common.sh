#!/usr/bin/env bash
# Shared by ./run and ./test: install the Debian packages that are missing, then
# configure and build the project in build/ (Release).
set -euo pipefail

ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
BUILD_DIR="${BUILD_DIR:-$ROOT/build}"

# Packages every build needs.
BASE_PACKAGES=(
    qt6-base-dev qt6-base-dev-tools qt6-image-formats-plugins libheif-dev liblcms2-dev
    libopencv-objdetect-dev libopencv-contrib-dev opencv-data
    cmake ninja-build g++ pkgconf ccache fonts-wqy-microhei
)

# Further packages the tests need (GUI tests run offscreen): MinGW and wine, to compile the
# Windows-only code for Windows and run the WIC decoding core; and what builds and checks the
# Debian package (dpkg-shlibdeps and file for its dependencies, the validators, lintian); and
# exFAT's tools and FUSE driver, to copy onto a real card image and pull it out mid-copy.
TEST_PACKAGES=(g++-mingw-w64-x86-64-posix mingw-w64-x86-64-dev wine wine64
               dpkg-dev file desktop-file-utils appstream lintian exfatprogs exfat-fuse)

# Install what is missing among the given packages; silent when nothing is.
ensure_packages() {
    local missing=() pkg
    for pkg in "$@"; do
        if ! dpkg-query -W -f='${Status}' "$pkg" 2>/dev/null | grep -q 'install ok installed'; then
            missing+=("$pkg")
        fi
    done
    [ ${#missing[@]} -eq 0 ] && return 0

    local sudo=()
    if [ "$(id -u)" -ne 0 ]; then
        sudo=(sudo)
    fi
    echo "Installing missing packages: ${missing[*]}"
    export DEBIAN_FRONTEND=noninteractive
    "${sudo[@]}" apt-get update -qq
    "${sudo[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# The tests' photograph of a face: astronaut.png (a NASA photograph in the public domain),
# taken from Debian's python3-skimage package without installing it, into the build tree.
ensure_test_data() {
    local data="$BUILD_DIR/test-data"
    [ -s "$data/astronaut.png" ] && return 0
    mkdir -p "$data"
    local scratch
    scratch="$(mktemp -d)"
    chmod 755 "$scratch" # apt's download user must be able to write there
    if ! (cd "$scratch" && apt-get download -qq python3-skimage >/dev/null 2>&1); then
        # The package lists may never have been fetched on this machine.
        local sudo=()
        [ "$(id -u)" -ne 0 ] && sudo=(sudo)
        "${sudo[@]}" apt-get update -qq
        (cd "$scratch" && apt-get download -qq python3-skimage >/dev/null)
    fi
    dpkg-deb --fsys-tarfile "$scratch"/python3-skimage_*.deb |
        tar -xO ./usr/lib/python3/dist-packages/skimage/data/astronaut.png >"$data/astronaut.png.part"
    mv "$data/astronaut.png.part" "$data/astronaut.png"
    rm -rf "$scratch"
}

# Configure (once) and build the Release tree.
build_project() {
    local launcher=()
    if command -v ccache >/dev/null 2>&1; then
        launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache)
    fi
    if [ ! -f "$BUILD_DIR/build.ninja" ]; then
        cmake -S "$ROOT" -B "$BUILD_DIR" -G Ninja -DCMAKE_BUILD_TYPE=Release "${launcher[@]}" >/dev/null
    fi
    cmake --build "$BUILD_DIR" -- --quiet
}
