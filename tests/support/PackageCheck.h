#pragma once

#include <QColor>
#include <QImage>
#include <QList>
#include <QString>
#include <QStringList>

// What a written vl_play package holds, as a user would check it: its files, the frames its
// playlist.json lists, and the colour each frame shows when the stand-in processor turns it
// back into a picture (tarn-sim --decode), read at the frame's centre. Tests give every row a
// picture of its own palette colour, so a frame's colour names the row it came from.
namespace PackageCheck {

QStringList files(const QString &packageDir);
QStringList listedFrames(const QString &packageDir);
// The picture a frame holds, as the stand-in decodes it; null when it cannot.
QImage frameImage(const QString &framePath);
QColor frameColour(const QString &framePath);
// The colours of the frames playlist.json lists, in its order.
QList<QColor> colours(const QString &packageDir);

// The six colours the stand-in's frames can show.
const QList<QColor> &palette();

} // namespace PackageCheck
