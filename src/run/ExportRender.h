#pragma once

#include "images/ColourProfile.h"
#include "preprocess/ImagePreprocess.h"

#include <QImage>
#include <QSize>
#include <QString>

// What the export picture of one row is made from, and where it goes.
struct RenderRequest {
    QString source; // the picture file (for a HEIC/HEIF row, its converted copy)
    PreprocState state;
    QSize panel;
    bool landscape = false;
    QString fileName; // "<base name>_preproc.jpg"
};

// The one way the picture handed to the processor is made, for a run, a rendering ahead,
// buildArgs and velora-pack alike: the picture decoded no larger than the composition needs
// (fitted into the frame for the fills, covering it for the crop), then composed at the
// panel's resolution. Safe on any thread.
namespace ExportRender {

// The composed picture; null when the picture cannot be read or is sent as it is (Direct).
// A colour profile of the picture's that cannot be used is reported through colourProblem.
QImage image(const RenderRequest &request, ColourProfile::Problem *colourProblem = nullptr);
// The picture written as the program's JPEGs are written (ImageLoader::writeJpeg) to path;
// path, or an empty text when that fails.
QString write(const RenderRequest &request, const QString &path,
              ColourProfile::Problem *colourProblem = nullptr);
// A composed picture written so (its folder made first); path, or an empty text.
QString save(const QImage &composed, const QString &path);

} // namespace ExportRender
