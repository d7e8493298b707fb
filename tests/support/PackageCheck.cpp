#include "PackageCheck.h"

#include "TestFiles.h"

#include <QDir>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

namespace PackageCheck {

QStringList files(const QString &packageDir)
{
    return QDir(packageDir).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

QStringList listedFrames(const QString &packageDir)
{
    QStringList names;
    const QJsonObject root =
        QJsonDocument::fromJson(TestFiles::read(QDir(packageDir).filePath(QStringLiteral("playlist.json"))))
            .object();
    for (const QJsonValue &frame : root.value(QStringLiteral("frames")).toArray())
        names << frame.toObject().value(QStringLiteral("file")).toString();
    return names;
}

QImage frameImage(const QString &framePath)
{
    QTemporaryDir dir;
    const QString png = dir.filePath(QStringLiteral("frame.png"));
    QProcess decoder;
    decoder.start(TestFiles::tarnSimPath(), {QStringLiteral("--decode"), framePath, png});
    if (!decoder.waitForFinished(30000) || decoder.exitCode() != 0)
        return QImage();
    return QImage(png);
}

QColor frameColour(const QString &framePath)
{
    const QImage picture = frameImage(framePath);
    return picture.isNull() ? QColor() : picture.pixelColor(picture.width() / 2, picture.height() / 2);
}

QList<QColor> colours(const QString &packageDir)
{
    QList<QColor> list;
    for (const QString &name : listedFrames(packageDir))
        list << frameColour(QDir(packageDir).filePath(name));
    return list;
}

const QList<QColor> &palette()
{
    static const QList<QColor> colours = {Qt::red, Qt::blue, Qt::green, Qt::yellow, Qt::black, Qt::white};
    return colours;
}

} // namespace PackageCheck
