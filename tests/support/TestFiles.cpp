#include "TestFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace TestFiles {

bool write(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(bytes) == bytes.size();
}

QByteArray read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QImage solidImage(int width, int height, const QColor &colour)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

QString tarnSimPath() { return QStringLiteral(VELORA_TARN_SIM_PATH); }

QString binDir() { return QStringLiteral(VELORA_BIN_DIR); }

} // namespace TestFiles
