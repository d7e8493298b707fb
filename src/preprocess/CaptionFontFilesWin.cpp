#include "preprocess/CaptionFontFiles.h"

#include <windows.h>

namespace CaptionFontFiles {

namespace {

std::string utf8(const std::wstring &text)
{
    const int size =
        WideCharToMultiByte(CP_UTF8, 0, text.c_str(), int(text.size()), nullptr, 0, nullptr, nullptr);
    std::string out(size_t(size > 0 ? size : 0), '\0');
    if (size > 0)
        WideCharToMultiByte(CP_UTF8, 0, text.c_str(), int(text.size()), &out[0], size, nullptr, nullptr);
    return out;
}

} // namespace

std::vector<std::string> candidates()
{
    wchar_t folder[MAX_PATH];
    const UINT length = GetWindowsDirectoryW(folder, MAX_PATH);
    if (length == 0 || length >= MAX_PATH)
        return {};
    const std::wstring fonts = std::wstring(folder, length) + L"\\Fonts\\";
    // Microsoft YaHei (every Windows since Vista), then the older SimHei and SimSun.
    std::vector<std::string> files;
    for (const wchar_t *name : {L"msyh.ttc", L"msyh.ttf", L"simhei.ttf", L"simsun.ttc"})
        files.push_back(utf8(fonts + name));
    return files;
}

} // namespace CaptionFontFiles
