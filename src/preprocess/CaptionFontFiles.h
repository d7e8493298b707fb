#pragma once

#include <string>
#include <vector>

// Where the system keeps the fonts that captions are written with: fonts with Chinese
// characters, best first, as UTF-8 paths that may or may not exist. On Linux these are the
// files of Debian's fonts-wqy-microhei (then of other CJK fonts); on Windows the system's own
// fonts in its Fonts folder (CaptionFontFilesWin.cpp). No Qt here, so that the Windows half
// can be built and run on its own.
namespace CaptionFontFiles {

std::vector<std::string> candidates();

} // namespace CaptionFontFiles
