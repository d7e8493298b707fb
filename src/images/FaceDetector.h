#pragma once

#include <QImage>
#include <QList>
#include <QRectF>
#include <QString>

// What a picture shows that its framing should keep. Rectangles are fractions (0 … 1) of the
// picture as decoded: upright, before the row's rotation.
struct PictureSubjects {
    QList<QRectF> faces;   // the faces found, largest first
    QRectF salient;        // where no face is found: the region that stands out; else empty
    bool detected = false; // false when detection could not run (no cascade file, no picture)
};

// Finds the faces in a picture with OpenCV's cascade classifier (frontal faces), and where
// there is none, its most salient region with OpenCV's spectral-residual saliency. It works on
// a copy no larger than kMaxSide on its long side (the reduced decode that adding makes), in
// grey. The cascade file comes from opencv-data, found at run time in the system's data
// folder, or beside the program (haarcascades/), as on Windows; it is never downloaded.
// detect() is safe on any thread (each thread loads its own classifier once) and never throws:
// a picture whose detection fails is reported as not detected.
namespace FaceDetector {

constexpr int kMaxSide = 800;

PictureSubjects detect(const QImage &image);
// The same for a picture file, decoded (ImageLoader) no larger than kMaxSide.
PictureSubjects detectFile(const QString &path);

// The cascade file detection uses; empty when none is installed.
QString cascadePath();

} // namespace FaceDetector
