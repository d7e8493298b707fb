// Windows only: the WIC steps of the HEIC/HEIF decode.
#include "images/WicDecode.h"

#include <wincodec.h>
#include <windows.h>

#include <climits>

namespace {

// Spelled out rather than taken from the SDK headers, whose spellings differ between
// toolchains.
const CLSID kClsidWicImagingFactory1 = {
    0xcacaf262, 0x9370, 0x4615, {0xa1, 0x3b, 0x9f, 0x55, 0x39, 0xda, 0x4c, 0x0a}};
const IID kIidWicImagingFactory = {
    0xec5ec8a9, 0xc395, 0x4314, {0x9c, 0x77, 0x54, 0xd7, 0xa9, 0x35, 0xff, 0x70}};
const GUID kPixelFormat32bppBGRA = {
    0x6fddc324, 0x4e03, 0x4bfe, {0xb1, 0x85, 0x3d, 0x77, 0x76, 0x8d, 0xc9, 0x0f}};

// Per thread: pictures are decoded on worker threads, each of which joins COM once (as a
// single-threaded apartment) and never leaves it.
thread_local bool g_comInitialised = false;

template <typename T> void release(T *&pointer)
{
    if (pointer) {
        pointer->Release();
        pointer = nullptr;
    }
}

WicResult failure(HRESULT hr, WicStep step)
{
    WicResult result;
    result.hresult = static_cast<int32_t>(hr);
    result.failedStep = step;
    return result;
}

} // namespace

const char *wicStepName(WicStep step)
{
    switch (step) {
    case WicStep::None:
        return "none";
    case WicStep::CoInitialize:
        return "CoInitializeEx";
    case WicStep::CreateFactory:
        return "CoCreateInstance(WICImagingFactory)";
    case WicStep::CreateDecoder:
        return "CreateDecoderFromFilename";
    case WicStep::GetFrame:
        return "GetFrame";
    case WicStep::CreateConverter:
        return "CreateFormatConverter";
    case WicStep::InitializeConverter:
        return "IWICFormatConverter::Initialize";
    case WicStep::GetSize:
        return "GetSize";
    case WicStep::CopyPixels:
        return "CopyPixels";
    }
    return "unknown";
}

WicResult wicDecodeFile(const wchar_t *path, WicImage *out)
{
    if (!g_comInitialised) {
        const HRESULT hr = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        if (FAILED(hr) && hr != RPC_E_CHANGED_MODE)
            return failure(hr, WicStep::CoInitialize); // the next call tries again
        g_comInitialised = true;
    }

    IWICImagingFactory *factory = nullptr;
    IWICBitmapDecoder *decoder = nullptr;
    IWICBitmapFrameDecode *frame = nullptr;
    IWICFormatConverter *converter = nullptr;
    WicResult result;

    HRESULT hr = CoCreateInstance(kClsidWicImagingFactory1, nullptr, CLSCTX_INPROC_SERVER,
                                  kIidWicImagingFactory, reinterpret_cast<void **>(&factory));
    if (FAILED(hr)) {
        result = failure(hr, WicStep::CreateFactory);
    } else if (FAILED(hr = factory->CreateDecoderFromFilename(path, nullptr, GENERIC_READ,
                                                              WICDecodeMetadataCacheOnLoad, &decoder))) {
        result = failure(hr, WicStep::CreateDecoder);
    } else if (FAILED(hr = decoder->GetFrame(0, &frame))) {
        result = failure(hr, WicStep::GetFrame);
    } else if (FAILED(hr = factory->CreateFormatConverter(&converter))) {
        result = failure(hr, WicStep::CreateConverter);
    } else if (FAILED(hr = converter->Initialize(frame, kPixelFormat32bppBGRA, WICBitmapDitherTypeNone,
                                                 nullptr, 0.0, WICBitmapPaletteTypeCustom))) {
        result = failure(hr, WicStep::InitializeConverter);
    } else {
        UINT width = 0;
        UINT height = 0;
        hr = converter->GetSize(&width, &height);
        const unsigned long long bytes = 4ull * width * height;
        if (FAILED(hr)) {
            result = failure(hr, WicStep::GetSize);
        } else if (width == 0 || height == 0 || width > INT_MAX / 4 || bytes > UINT_MAX) {
            result = failure(E_FAIL, WicStep::GetSize);
        } else {
            std::vector<uint8_t> pixels(static_cast<size_t>(bytes));
            hr = converter->CopyPixels(nullptr, width * 4, static_cast<UINT>(bytes), pixels.data());
            if (FAILED(hr)) {
                result = failure(hr, WicStep::CopyPixels);
            } else if (out) {
                out->width = static_cast<int>(width);
                out->height = static_cast<int>(height);
                out->bgra = std::move(pixels);
            }
        }
    }

    release(converter);
    release(frame);
    release(decoder);
    release(factory);
    return result;
}
