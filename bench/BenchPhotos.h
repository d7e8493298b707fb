#pragma once

#include <QString>
#include <QStringList>

// The photos the benchmarks work on.

// Writes count 4000 x 3000 JPEG photos with photo-like content (gradients, shapes and grain,
// so that coding and decoding do real work) into folder, as photo_000.jpg, ...
void makePhotos(const QString &folder, int count);

// The pictures of a supported type in folder, sorted by path.
QStringList photosIn(const QString &folder);
