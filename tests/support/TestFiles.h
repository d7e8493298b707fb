#pragma once

#include <QByteArray>
#include <QColor>
#include <QDateTime>
#include <QImage>
#include <QMap>
#include <QPointF>
#include <QSize>
#include <QString>
#include <QStringList>

// Small helpers for tests that work on real files in temporary folders.
namespace TestFiles {

// Writes bytes to path, creating the parent folders; false on failure.
bool write(const QString &path, const QByteArray &bytes);
QByteArray read(const QString &path);
// Every file directly in a folder (hidden ones too), by name, with its bytes.
QMap<QString, QByteArray> contents(const QString &folder);
// The names of everything directly in a folder, hidden ones too (files and folders).
QStringList entries(const QString &folder);

// Saves the image at path (the format from its suffix), creating the parent folders, and gives
// the path; a test cannot go on without its picture, so a failure ends the test program.
QString savedPicture(const QString &path, const QImage &image);

// Writes count small PNG pictures named <prefix>_0000.png, ... into folder; their paths.
QStringList makePictures(const QString &folder, int count, const QString &prefix = QStringLiteral("pic"),
                         const QSize &size = QSize(16, 12));

// A blue picture whose top-left quarter is red: a marker that shows where a corner went.
QImage markedImage(int width, int height);

// A picture whose colour says where it comes from: red grows from left to right, green from
// top to bottom. shownPosition() reads back which fraction of the picture a pixel of a render
// of it shows.
QImage positionImage(int width, int height);
QPointF shownPosition(const QImage &render, int x, int y);

// Photo-like content: smooth gradients, soft shapes and grain, so that coding, decoding and
// scaling do the work they do on photos. The same seed gives the same picture.
QImage photoLikeImage(int width, int height, quint32 seed);

// A solid-colour RGB32 image.
QImage solidImage(int width, int height, const QColor &colour);

// Gives a file this time of its last change; false when it cannot.
bool setModified(const QString &path, const QDateTime &when);

// A JPEG of the image whose EXIF block says how to turn it for viewing (1..8, EXIF numbering).
QByteArray jpegWithExifOrientation(const QImage &image, int orientation);

// An EXIF block (a little-endian TIFF header, the first directory and the EXIF directory) whose
// DateTimeOriginal is text ("2024:05:17 10:30:00"), and a JPEG of the image carrying it.
QByteArray exifWithDateTaken(const QString &text);
QByteArray jpegWithDateTaken(const QImage &image, const QString &text);

// A PNG whose header declares width x height but which carries no real pixel data: what a
// hostile or damaged file looks like to a reader.
QByteArray pngWithOneRow(int width, int height);

// A photograph of a face (512 x 512, the face about 130 px across, its centre near (0.46, 0.24)),
// which ./test takes from a Debian package into the build tree; a test cannot go on without it,
// so its absence ends the test program with a message that says how to get it.
QImage astronaut();

// The built tarn-sim executable, and the folder holding the GUI and its demo bundle.
QString tarnSimPath();
QString binDir();

} // namespace TestFiles
