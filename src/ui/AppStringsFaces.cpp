// Texts of the faces found in pictures: the row's mark and the setting that frames new
// pictures around them.
#include "ui/AppStrings.h"

namespace Str {

QString faceCutTip(int faces)
{
    return faces == 1 ? pick("裁剪切掉了一张脸", "The crop cuts a face")
                      : pick("裁剪切掉了 %1 张脸", "The crop cuts %1 faces").arg(faces);
}

QString frameFacesSetting() { return pick("按人脸构图新图片", "Frame new pictures around faces"); }
QString frameFacesSettingTip()
{
    return pick("添加图片时找出人脸，并让裁剪窗口包含它们（居中裁剪或放大时）",
                "Find the faces of pictures as they are added, and move their crop onto them (centre crop or "
                "zoomed)");
}

} // namespace Str
