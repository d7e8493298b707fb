#include "playlist/PlaylistExporter.h"

#include "playlist/PackageWriter.h"
#include "ui/AppStrings.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

namespace PlaylistExporter {

namespace {
PanelSpec validPanel(const char *code, int width, int height)
{
    return PanelSpec{QString::fromLatin1(code), QSize(width, height), true, QString()};
}
} // namespace

QString frameName(int index) { return QStringLiteral("frame_%1.bin").arg(index, 3, 10, QLatin1Char('0')); }

QByteArray buildPlaylistJson(const PlaylistExportRequest &request)
{
    QJsonObject screen;
    screen.insert(QStringLiteral("panel"), request.panel.panel);
    screen.insert(QStringLiteral("width"), request.panel.size.width());
    screen.insert(QStringLiteral("height"), request.panel.size.height());

    QJsonObject play;
    play.insert(QStringLiteral("mode"), QStringLiteral("sequence"));
    play.insert(QStringLiteral("loop"), request.loop);

    QJsonObject schedule;
    schedule.insert(QStringLiteral("type"), QStringLiteral("interval"));
    schedule.insert(QStringLiteral("interval_min"), request.intervalMinutes);

    QJsonObject encrypt;
    encrypt.insert(QStringLiteral("enabled"), request.encrypt);
    if (request.encrypt) {
        encrypt.insert(QStringLiteral("scheme"), QStringLiteral("ecies-p256-gcm-v1"));
        encrypt.insert(QStringLiteral("require_provisioned"), true);
        encrypt.insert(QStringLiteral("account_uid"), request.accountUid);
        encrypt.insert(QStringLiteral("recipient_count"), int(request.deviceIds.size()));
        encrypt.insert(QStringLiteral("device_ids"), QJsonArray::fromStringList(request.deviceIds));
    }

    QJsonArray frames;
    for (const QString &name : request.frameNames)
        frames.append(QJsonObject{{QStringLiteral("file"), name}});

    QJsonObject root;
    root.insert(QStringLiteral("version"), request.encrypt ? 3 : 1);
    root.insert(QStringLiteral("boot_policy"), QStringLiteral("exclusive"));
    root.insert(QStringLiteral("screen"), screen);
    root.insert(QStringLiteral("play"), play);
    root.insert(QStringLiteral("schedule"), schedule);
    root.insert(QStringLiteral("encrypt"), encrypt);
    root.insert(QStringLiteral("frames"), frames);
    return QJsonDocument(root).toJson(QJsonDocument::Indented);
}

QString exportPlaylist(const PlaylistExportRequest &request)
{
    if (!request.panel.ok)
        return Str::panelInfoInvalid();
    if (request.frameNames.size() != request.sourcePaths.size())
        return Str::playlistFrameCountMismatch();
    if (request.frameNames.isEmpty())
        return Str::playlistNeedsFrame();
    if (request.intervalMinutes < kMinIntervalMinutes)
        return Str::playlistIntervalTooShort();
    if (request.intervalMinutes > kMaxIntervalMinutes)
        return Str::playlistIntervalTooLong();
    if (request.frameNames.size() > kMaxFrames)
        return Str::playlistTooManyFrames(kMaxFrames);

    const QString outputDir = QDir::fromNativeSeparators(request.outputDir);
    if (outputDir.isEmpty())
        return Str::playlistOutputDirMissing();
    QList<PackageWriter::Frame> frames;
    frames.reserve(request.frameNames.size());
    for (int i = 0; i < request.frameNames.size(); ++i)
        frames.append({request.frameNames.at(i), request.sourcePaths.at(i)});
    return PackageWriter::write(outputDir, frames, buildPlaylistJson(request));
}

QString pubkeyPanelToGuiType(const QString &panel)
{
    if (panel == QLatin1String("7.09"))
        return QStringLiteral("070");
    if (panel == QLatin1String("13.3"))
        return QStringLiteral("133");
    if (panel == QLatin1String("25.3"))
        return QStringLiteral("253");
    if (panel == QLatin1String("28.5"))
        return QStringLiteral("285");
    if (panel == QLatin1String("10"))
        return QStringLiteral("100");
    return QString();
}

PanelSpec panelFromGuiType(const QString &guiType, const QString &customText)
{
    if (guiType == QLatin1String("133"))
        return validPanel("13.3", 1200, 1600);
    if (guiType == QLatin1String("070") || guiType == QLatin1String("7.09"))
        return validPanel("7.09", 1200, 1600);
    if (guiType == QLatin1String("100"))
        return validPanel("10", 1200, 1600);
    if (guiType == QLatin1String("253"))
        return validPanel("25.3", 1800, 3200);
    if (guiType == QLatin1String("285"))
        return validPanel("28.5", 2160, 3060);

    PanelSpec panelSpec;
    if (guiType == QLatin1String("custom")) {
        static const QRegularExpression customSize(QStringLiteral("^(\\d+)\\s*[xX×]\\s*(\\d+)$"));
        panelSpec.error = customSize.match(customText.trimmed()).hasMatch() ? Str::customPanelNoPlaylist()
                                                                            : Str::customPanelSizeInvalid();
    } else {
        panelSpec.error = Str::unknownPanelType(guiType);
    }
    return panelSpec;
}

} // namespace PlaylistExporter
