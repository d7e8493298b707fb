#include "run/ExportRender.h"

#include "images/ImageLoader.h"
#include "preprocess/Framing.h"

#include <QDir>
#include <QFileInfo>
#include <QtMath>

namespace ExportRender {

QImage image(const RenderRequest &request, ColourProfile::Problem *colourProblem)
{
    if (colourProblem)
        *colourProblem = ColourProfile::Problem::None;
    if (request.state.fillMode == FillMode::Direct)
        return QImage();
    // The box is in the picture's own orientation, before its rotation.
    QSize box = effectiveFrameResolution(request.panel, request.landscape);
    if (request.state.rotationDegrees % 180 != 0)
        box.transpose();
    // A zoomed picture shows a part of itself at the frame's size: the whole is needed larger.
    const double zoom = Framing::clamped(request.state).zoom;
    box = QSize(qCeil(box.width() * zoom), qCeil(box.height() * zoom));
    const Qt::AspectRatioMode mode =
        request.state.fillMode == FillMode::CenterCrop ? Qt::KeepAspectRatioByExpanding : Qt::KeepAspectRatio;
    const QImage source = ImageLoader::loadCovering(request.source, box, mode, colourProblem);
    return source.isNull() ? QImage()
                           : renderPreprocExport(source, request.state, request.panel, request.landscape);
}

QString write(const RenderRequest &request, const QString &path, ColourProfile::Problem *colourProblem)
{
    return save(image(request, colourProblem), path);
}

QString save(const QImage &composed, const QString &path)
{
    if (composed.isNull())
        return QString();
    QDir().mkpath(QFileInfo(path).absolutePath());
    return ImageLoader::writeJpeg(composed, path) ? path : QString();
}

} // namespace ExportRender
