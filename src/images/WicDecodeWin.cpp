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

// ICC profiles larger than this are not taken (the decode itself goes on).
constexpr UINT kMaxProfileBytes = 4 * 1024 * 1024;
constexpr UINT kMaxColourContexts = 8;

// The frame's ICC profile, or the EXIF colour space it names, into out (left as they are when
// the frame has no colour context or it cannot be read).
void readColourContext(IWICImagingFactory *factory, IWICBitmapFrameDecode *frame, WicImage *out)
{
    UINT count = 0;
    if (FAILED(frame->GetColorContexts(0, nullptr, &count)) || count == 0)
        return;
    count = count < kMaxColourContexts ? count : kMaxColourContexts;
    IWICColorContext *contexts[kMaxColourContexts] = {};
    UINT made = 0;
    while (made < count && SUCCEEDED(factory->CreateColorContext(&contexts[made])))
        ++made;
    UINT actual = 0;
    if (made == count && SUCCEEDED(frame->GetColorContexts(count, contexts, &actual))) {
        for (UINT i = 0; i < actual && i < count && out->icc.empty(); ++i) {
            WICColorContextType type = WICColorContextUninitialized;
            UINT size = 0;
            if (FAILED(contexts[i]->GetType(&type)))
                continue;
            if (type == WICColorContextExifColorSpace) {
                contexts[i]->GetExifColorSpace(&out->exifColorSpace);
            } else if (type == WICColorContextProfile &&
                       SUCCEEDED(contexts[i]->GetProfileBytes(0, nullptr, &size)) && size > 0 &&
                       size <= kMaxProfileBytes) {
                std::vector<uint8_t> bytes(size);
                if (SUCCEEDED(contexts[i]->GetProfileBytes(size, bytes.data(), &size)) &&
                    size == bytes.size())
                    out->icc = std::move(bytes);
            }
        }
    }
    for (UINT i = 0; i < made; ++i)
        release(contexts[i]);
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
                out->icc.clear();
                out->exifColorSpace = 0;
                readColourContext(factory, frame, out);
            }
        }
    }

    release(converter);
    release(frame);
    release(decoder);
    release(factory);
    return result;
}
