#!/usr/bin/env bash
# Builds the Debian package from a build folder and checks it as a packager would: the
# desktop entry and the AppStream metadata validate, lintian reports no error, the package
# unpacked into a scratch root holds every file it should, and the programs in it answer
# --version and make a package with the stand-in processor they carry.
#   check-package.sh BUILD_DIR [CPACK]
set -euo pipefail

SOURCE_DIR="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
BUILD_DIR="$(cd "$1" && pwd)"
CPACK="${2:-cpack}"
SCRATCH="$(mktemp -d)"
trap 'rm -rf "$SCRATCH"' EXIT

fail() { echo "FAIL: $*" >&2; exit 1; }

cd "$BUILD_DIR"
CPACK_LOG="$("$CPACK" -G DEB -B "$SCRATCH/cpack" 2>&1)" || { echo "$CPACK_LOG"; fail "cpack"; }
DEB="$(ls "$SCRATCH"/cpack/*.deb)"
echo "built $(basename "$DEB")"

ROOT="$SCRATCH/root"
dpkg-deb -x "$DEB" "$ROOT"
APP_ID=org.velora.OfflineTool

desktop-file-validate "$ROOT/usr/share/applications/$APP_ID.desktop" || fail "desktop-file-validate"
appstreamcli validate --no-net "$ROOT/usr/share/metainfo/$APP_ID.metainfo.xml" >/dev/null \
    || fail "appstreamcli validate"
LINTIAN="$(lintian --tag-display-limit 0 "$DEB" 2>&1 | grep -v 'root privileges' || true)"
echo "$LINTIAN"
if grep -q '^E:' <<<"$LINTIAN"; then
    fail "lintian reports errors"
fi

EXPECTED=(
    usr/bin/VeloraOfflineTool
    usr/bin/velora-pack
    usr/lib/velora-offline-tool/VeloraOfflineTool
    usr/lib/velora-offline-tool/velora-pack
    usr/lib/velora-offline-tool/tarngui_lite.json
    usr/lib/velora-offline-tool/demo-processor-stand-in/tarn-sim
    usr/lib/velora-offline-tool/demo-processor-stand-in/processor_manifest.json
    usr/lib/velora-offline-tool/demo-processor-stand-in/README.txt
    "usr/share/applications/$APP_ID.desktop"
    "usr/share/metainfo/$APP_ID.metainfo.xml"
    usr/share/doc/velora-offline-tool/user-guide.html
    usr/share/doc/velora-offline-tool/copyright
    usr/share/doc/velora-offline-tool/changelog.gz
    usr/share/man/man1/VeloraOfflineTool.1.gz
    usr/share/man/man1/velora-pack.1.gz
)
for size in 16 22 24 32 48 64 128 256; do
    EXPECTED+=("usr/share/icons/hicolor/${size}x${size}/apps/$APP_ID.png")
done
for file in "${EXPECTED[@]}"; do
    [ -e "$ROOT/$file" ] || fail "the package lacks /$file"
done
for size in 16 22 24 32 48 64 128 256; do
    file "$ROOT/usr/share/icons/hicolor/${size}x${size}/apps/$APP_ID.png" | grep -q "PNG image data, $size x $size" \
        || fail "the ${size}x${size} icon is not ${size} x ${size}"
done
grep -q '^Name=Velora Offline Tool$' "$ROOT/usr/share/applications/$APP_ID.desktop" || fail "desktop entry name"
grep -q '^Icon=org.velora.OfflineTool$' "$ROOT/usr/share/applications/$APP_ID.desktop" || fail "desktop entry icon"

# The programs as installed, found through their links in /usr/bin, without a window system.
VERSION="$(env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM "$ROOT/usr/bin/VeloraOfflineTool" --version)"
[ "$VERSION" = "Velora Offline Tool 1.0.3" ] || fail "VeloraOfflineTool --version printed: $VERSION"
"$ROOT/usr/bin/velora-pack" --version | grep -q '^velora-pack 1.0.3$' || fail "velora-pack --version"

# velora-pack finds the configuration and the stand-in it was installed with.
PICTURE="$SCRATCH/picture.png"
cp "$SOURCE_DIR/docs/screenshot.png" "$PICTURE"
(cd "$SCRATCH" && TMPDIR="$SCRATCH" "$ROOT/usr/bin/velora-pack" --out "$SCRATCH/out" "$PICTURE" >/dev/null 2>&1) \
    || fail "the installed velora-pack made no package"
[ -f "$SCRATCH/out/vl_play/frame_000.bin" ] && [ -f "$SCRATCH/out/vl_play/playlist.json" ] \
    || fail "the installed velora-pack's package is incomplete"
echo "the package checks out"
