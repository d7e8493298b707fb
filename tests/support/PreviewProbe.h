#pragma once

#include "preprocess/ImagePreviewDialog.h"

#include <QLabel>
#include <QTest>

// What the preview dialog shows: at once, and once its render at the panel's resolution has
// come from the worker (null when it does not come within 10 s).

inline QImage shownPixmap(const ImagePreviewDialog &dialog)
{
    return dialog.previewLabel()->pixmap().toImage();
}

inline QImage renderedPixmap(const ImagePreviewDialog &dialog)
{
    if (!QTest::qWaitFor([&dialog] { return !dialog.isShowingQuickPreview(); }, 10000))
        return QImage();
    return shownPixmap(dialog);
}
