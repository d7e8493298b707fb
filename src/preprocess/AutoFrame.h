#pragma once

#include "images/FaceDetector.h"
#include "preprocess/ImagePreprocess.h"

#include <QList>
#include <QRectF>
#include <QSize>

// Framing a picture around its faces. A state's crop window is the part of the rotated picture
// that its frame shows. frame() moves that window (the focus) so that every face fits in it
// when all of them can, lowering the zoom where the fill mode uses one and only as far as that
// needs; otherwise it keeps the largest group by face area and says that faces are cut. A
// picture without faces is framed around its salient subject instead. Fill mode, rotation and
// tone stay, and a state whose window is the whole picture (a fill at zoom 1) comes back as
// it is. Faces are in fractions of the upright picture, as FaceDetector gives them.
namespace AutoFrame {

struct Result {
    PreprocState state;
    bool allFacesFit = true;
};

Result frame(const PreprocState &state, const QSize &picture, const PictureSubjects &subjects,
             const QSize &panel, bool landscape);

// Rectangles in fractions of the upright picture, in fractions of the picture turned clockwise
// by degrees (a multiple of 90).
QList<QRectF> turned(const QList<QRectF> &rects, int degrees);

// The crop window: the part of the rotated picture the frame shows, in its fractions.
QRectF window(const QSize &picture, const PreprocState &state, const QSize &panel, bool landscape);

// A face counts as cut when less than this share of its box is inside the crop window.
constexpr double kKeptShare = 0.9;
// How many of the faces (upright fractions) the state's crop window cuts.
int cutFaces(const QSize &picture, const PreprocState &state, const QSize &panel, bool landscape,
             const QList<QRectF> &faces);

} // namespace AutoFrame
