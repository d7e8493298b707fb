#!/usr/bin/env bash
# The Windows-only code, checked on Linux: every file with a Windows branch must compile
# for Windows with MinGW (warnings are errors), the WIC decoding core must decode and fail as
# expected when run under wine, the job object must end a child with its program, and the
# caption font must be looked for in the system's Fonts folder. Exits 77 (skipped) when the tools are missing.
#
# check_windows.sh SOURCE_DIR WORK_DIR FIXTURE_TOOL QT_INCLUDE_DIRS(|-separated)
set -uo pipefail
src="$1"
work="$2"
fixtures_tool="$3"
IFS='|' read -r -a qt_includes <<< "$4"

cxx=x86_64-w64-mingw32-g++-posix
command -v "$cxx" >/dev/null 2>&1 || cxx=x86_64-w64-mingw32-g++
for tool in "$cxx" wine wineserver; do
    if ! command -v "$tool" >/dev/null 2>&1; then
        echo "SKIPPED: $tool is not installed (./test installs it)"
        exit 77
    fi
done

mkdir -p "$work"
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

# a. Every file with Windows-only code compiles for Windows.
isystem=()
for dir in "${qt_includes[@]}"; do isystem+=(-isystem "$dir"); done
windows_files=(
    src/app/main_lite.cpp
    src/cli/main_pack.cpp
    src/playlist/Volumes.cpp
    src/playlist/CardMediumWin.cpp
    src/images/WicDecodeWin.cpp
    src/images/HeifDecoderWic.cpp
    src/app/MainWindowRun.cpp
    src/app/MainWindowProcessor.cpp
    src/processor/ChildProcessGuard.cpp
    src/processor/JobObjectWin.cpp
    src/preprocess/CaptionFontFilesWin.cpp
)
for file in "${windows_files[@]}"; do
    if ! "$cxx" -std=c++17 -fsyntax-only -Wall -Wextra -Werror -DVELORA_VERSION='"0"' -I "$src/src" "${isystem[@]}" "$src/$file" 2>"$work/syntax.log"; then
        fail "$file does not compile for Windows:"
        head -20 "$work/syntax.log"
    fi
done

# b. The WIC core, cross-compiled and run under wine.
if ! "$cxx" -std=c++17 -O1 -Wall -Wextra -Werror -static -municode -I "$src/src" \
        "$src/tests/windows/wic_probe.cpp" "$src/src/images/WicDecodeWin.cpp" \
        -o "$work/wic_probe.exe" -lole32 -luuid -lwindowscodecs 2>"$work/link.log"; then
    fail "the WIC probe does not build:"
    head -20 "$work/link.log"
    exit 1
fi
"$fixtures_tool" "$work/fixtures" || { fail "cannot write the fixtures"; exit 1; }

export WINEPREFIX="$work/wineprefix" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
# wine's server keeps an inherited pipe open: the output goes to a file, then the server ends.
(cd "$work/fixtures" && timeout 120 wine "$work/wic_probe.exe" half.png photo.jpg "ünïcödé-名前.png" \
    missing.png notes.png phone.heic p3.png p3.jpg > "$work/probe.out" 2>"$work/probe.err" </dev/null)
status=$?
wineserver -k 2>/dev/null || true
[ "$status" -eq 0 ] || fail "the probe exited with $status under wine"
tr -d '\r' < "$work/probe.out" > "$work/probe.txt"
cat "$work/probe.txt"

expect() {
    grep -qx -- "$1" "$work/probe.txt" || fail "expected the line: $1"
}
expect "1 ok 3 2 50 100 200 128"          # BGRA, straight alpha
expect "3 ok 3 2 50 100 200 128"          # the UTF-16 path reached the decoder
expect "4 fail CreateDecoderFromFilename 0x80070002"   # file not found
expect "5 fail CreateDecoderFromFilename 0x88982f50"   # no decoder for a text file
expect "6 fail CreateDecoderFromFilename 0x88982f50"   # wine has no HEIF codec
expect "threads ok 3 2"                   # COM joined on each worker thread
# The colour context: the PNG's Display P3 profile, whole; the tagged JPEG still decodes (wine's
# JPEG decoder reports no colour context, Windows' does).
p3_size="$(cat "$work/fixtures/p3.size")"
expect "7 ok 8 6 250 250 250 255"
expect "7 colour $p3_size 1 0"
expect "8 ok 8 6 250 250 250 255"
if grep -q '^8 colour' "$work/probe.txt"; then expect "8 colour $p3_size 1 0"; fi
grep -q '^[1-6] colour' "$work/probe.txt" && fail "an untagged picture reported a colour context"
grep -Eq '^2 ok 8 6 2(4[5-9]|5[0-5]) 2(4[5-9]|5[0-5]) 2(4[5-9]|5[0-5]) 255$' "$work/probe.txt" \
    || fail "the JPEG did not decode to 8x6 near-white opaque pixels"

# A probe (its sources after its name) cross-compiled and run under wine; what it printed, without
# carriage returns, in $work/NAME.txt. False when it does not build or does not exit with 0.
run_probe() {
    local name="$1"
    shift
    if ! "$cxx" -std=c++17 -O1 -Wall -Wextra -Werror -static -municode -I "$src/src" "$@" \
            -o "$work/$name.exe" 2>"$work/${name}_link.log"; then
        fail "the $name does not build:"
        head -20 "$work/${name}_link.log"
        return 1
    fi
    timeout 120 wine "$work/$name.exe" > "$work/$name.out" 2>"$work/$name.err" </dev/null
    local status=$?
    wineserver -k 2>/dev/null || true
    tr -d '\r' < "$work/$name.out" > "$work/$name.txt"
    cat "$work/$name.txt"
    [ "$status" -eq 0 ] || { fail "the $name exited with $status under wine"; return 1; }
}

# c. The job object that ends the processor with the program.
if run_probe job_probe "$src/tests/windows/job_probe.cpp" "$src/src/processor/JobObjectWin.cpp"; then
    grep -qx "guarded ended" "$work/job_probe.txt" || fail "a child in the job outlived the program that started it"
    grep -qx "unguarded outlived" "$work/job_probe.txt" || fail "the probe cannot tell a guarded child from another"
fi

# d. The caption font's files, in the system's Fonts folder: Microsoft YaHei first.
if run_probe font_probe "$src/tests/windows/font_probe.cpp" "$src/src/preprocess/CaptionFontFilesWin.cpp"; then
    head -1 "$work/font_probe.txt" | grep -Eqi '^[a-z]:\\windows\\Fonts\\msyh\.ttc$' \
        || fail "the caption font is not looked for as Microsoft YaHei in the Fonts folder"
    [ "$(wc -l < "$work/font_probe.txt")" -eq 4 ] || fail "expected four caption font files"
fi

if [ "$failures" -gt 0 ]; then
    echo "$failures check(s) failed"
    exit 1
fi
echo "Windows checks passed"
