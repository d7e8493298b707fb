#pragma once

// The Windows Imaging Component decode, free of Qt and of windows.h so that it can be
// compiled and run on its own (cross-compiled and run under wine by the tests).

#include <cstdint>
#include <vector>

struct WicImage {
    int width = 0;
    int height = 0;
    std::vector<uint8_t> bgra; // width * height * 4 bytes, rows top to bottom, straight alpha
    // The frame's colour context: its ICC profile, or else the EXIF colour space it names
    // (1 sRGB, 2 Adobe RGB; 0 when it names none). Reading it never fails a decode.
    std::vector<uint8_t> icc;
    unsigned exifColorSpace = 0;
};

enum class WicStep {
    None,
    CoInitialize,
    CreateFactory,
    CreateDecoder,
    GetFrame,
    CreateConverter,
    InitializeConverter,
    GetSize,
    CopyPixels,
};

struct WicResult {
    int32_t hresult = 0; // the failing HRESULT, 0 on success
    WicStep failedStep = WicStep::None;
    bool ok() const { return failedStep == WicStep::None; }
};

// Decodes frame 0 of the file (UTF-16 path) to 32-bit BGRA, with its colour context. Safe on any thread: COM
// is initialised once per calling thread as a single-threaded apartment (a thread already in another mode is
// accepted); every interface obtained is released on every path.
WicResult wicDecodeFile(const wchar_t *path, WicImage *out);

const char *wicStepName(WicStep step);
