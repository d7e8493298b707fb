#pragma once

#include "preprocess/ImagePreprocess.h"

#include <QDateTime>
#include <QFont>
#include <QImage>
#include <QList>
#include <QString>

#include <optional>

// A picture's caption, written into its composition at the panel's resolution (so that the
// thumbnail, the preview, the e-paper view and the frame agree): the date it was taken in the
// system's short date format, its file name, or a text of the owner's, in a bottom corner,
// white on a black band or white outlined in black, so that it stays legible after six-colour
// dithering. Its size is a share of the composition's height, whatever the size it is made at.
// The font has Chinese characters (CaptionFontFiles says where the system keeps it). Drawing
// is safe on any thread.
namespace Caption {

// The text's height as a share of the composition's height, and the least it may be.
constexpr double kHeightShare = 0.035;
constexpr int kMinPixels = 3;

// The caption with its text made for a picture: its date taken (none without one), its file
// name without the extension, or the custom text.
CaptionSettings resolved(CaptionSettings caption, const QString &path, const QDateTime &dateTaken);
// The date as the caption writes it.
QString dateText(const QDateTime &dateTaken);

// Writes the caption into the image, in place; nothing for an empty text.
void draw(QImage &image, const CaptionSettings &caption);
// Where draw() writes the caption in an image of that size: the band, or the outlined text's
// box; empty when it writes nothing.
QRect area(const QSize &size, const CaptionSettings &caption);

// The font captions are written in, at a pixel size; the first use loads it.
QFont font(int pixelSize);

QList<CaptionKind> kinds();
// The names in picture lists and on velora-pack's command line (read in any case).
QString kindKey(CaptionKind kind);
std::optional<CaptionKind> kindFromKey(const QString &key);
QString cornerKey(CaptionCorner corner);
std::optional<CaptionCorner> cornerFromKey(const QString &key);
QString styleKey(CaptionStyle style);
std::optional<CaptionStyle> styleFromKey(const QString &key);

// For people: what the caption says, e.g. "Date taken, bottom right".
QString description(const CaptionSettings &caption);

} // namespace Caption
