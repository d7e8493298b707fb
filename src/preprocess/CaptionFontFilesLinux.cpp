#include "preprocess/CaptionFontFiles.h"

namespace CaptionFontFiles {

std::vector<std::string> candidates()
{
    return {
        "/usr/share/fonts/truetype/wqy/wqy-microhei.ttc", // fonts-wqy-microhei
        "/usr/share/fonts/truetype/wqy/wqy-zenhei.ttc",
        "/usr/share/fonts/opentype/noto/NotoSansCJK-Regular.ttc",
    };
}

} // namespace CaptionFontFiles
