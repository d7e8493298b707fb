#pragma once

#include <QColorSpace>
#include <QString>
#include <QStringList>

// The photos the benchmarks work on.

// Writes count 4000 x 3000 JPEG photos with photo-like content (gradients, shapes and grain,
// so that coding and decoding do real work) into folder, as photo_000.jpg, ..., tagged with
// colorSpace's profile when it is valid.
void makePhotos(const QString &folder, int count, const QColorSpace &colorSpace = QColorSpace());

// count photos of one kind ("jpeg": 12-megapixel JPEGs; "jpeg-p3": the same pictures tagged
// Display P3, as phones tag them; "heic": 12-megapixel HEICs with a 320 x 240 thumbnail, as
// phones write them), kept between runs below the temporary folder: up to 20 distinct
// pictures, copied under further names when more are asked for.
QStringList photoSet(const QString &kind, int count);

// The pictures of a supported type in folder, sorted by path.
QStringList photosIn(const QString &folder);

// The resident memory of this process, in bytes (0 where it cannot be read).
qint64 residentBytes();
