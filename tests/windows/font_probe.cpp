// Runs under wine: the font files captions are written with, as the Windows half of the caption
// font finds them; one path a line, in UTF-8.
#include "preprocess/CaptionFontFiles.h"

#include <cstdio>

int wmain()
{
    for (const std::string &file : CaptionFontFiles::candidates())
        std::printf("%s\n", file.c_str());
    return 0;
}
