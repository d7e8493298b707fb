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

QString frameFacesButton() { return pick("按人脸构图", "Frame faces"); }
QString frameFacesButtonTip()
{
    return pick("移动裁剪窗口（需要时缩小放大倍数），让所有人脸都在画面内；没有人脸时对准主体",
                "Move the crop (and lower the zoom where needed) so that every face is inside the frame; "
                "without faces, onto the subject");
}
QString showFaces() { return pick("显示人脸", "Show faces"); }
QString showFacesTip() { return pick("在预览中框出找到的人脸", "Outline the faces found in the preview"); }
QString facesSearching() { return pick("正在查找人脸…", "Looking for faces…"); }
QString facesFound(int faces)
{
    return faces == 1 ? pick("找到 1 张脸", "1 face found")
                      : pick("找到 %1 张脸", "%1 faces found").arg(faces);
}
QString facesNoneFound() { return pick("没有找到人脸，按主体构图", "No face found: the subject is framed"); }
QString facesUnavailable() { return pick("无法查找人脸", "Faces cannot be looked for"); }

QString batchAutoFrameButton() { return pick("自动构图", "Auto-frame"); }
QString batchAutoFrameTip()
{
    return pick("让选中图片的裁剪包含所有人脸（居中裁剪或放大时）",
                "Move the crop of the checked pictures onto their faces (centre crop or zoomed)");
}
QString batchAutoFrameSearching(int done, int total)
{
    return pick("正在查找人脸：%1 / %2", "Looking for faces: %1 of %2").arg(done).arg(total);
}
QString batchAutoFrameApplied(int count)
{
    return pick("已按人脸构图 %1 张图片", "%1 picture(s) framed around their faces").arg(count);
}
QString packOptionAutoFrame()
{
    return pick("按人脸（没有人脸时按主体）为每张图片构图。",
                "Frame every picture around its faces (or its subject).");
}

} // namespace Str
