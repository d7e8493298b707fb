#include "app/PictureList.h"

#include "playlist/PlaylistExporter.h"
#include "preprocess/Caption.h"
#include "preprocess/Framing.h"
#include "preprocess/Tone.h"
#include "ui/AppStrings.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#include <cmath>

namespace {

// A list file is a few hundred bytes a picture; anything far larger is not one.
constexpr qint64 kMaxFileBytes = 16 * 1024 * 1024;

const QList<QPair<FillMode, QString>> &fillModeKeys()
{
    static const QList<QPair<FillMode, QString>> keys = {
        {FillMode::Direct, QStringLiteral("direct")},   {FillMode::BlurFill, QStringLiteral("blur")},
        {FillMode::WhiteFill, QStringLiteral("white")}, {FillMode::BlackFill, QStringLiteral("black")},
        {FillMode::CenterCrop, QStringLiteral("crop")},
    };
    return keys;
}

bool isNumberIn(const QJsonValue &value, double low, double high)
{
    return value.isDouble() && std::isfinite(value.toDouble()) && value.toDouble() >= low &&
           value.toDouble() <= high;
}

QJsonObject toneObject(const ToneSettings &tone)
{
    return QJsonObject{
        {QStringLiteral("preset"), Tone::presetKey(tone.preset)},
        {QStringLiteral("exposure"), tone.exposure},
        {QStringLiteral("contrast"), tone.contrast},
        {QStringLiteral("saturation"), tone.saturation},
    };
}

QJsonObject captionObject(const CaptionSettings &caption)
{
    QJsonObject object{
        {QStringLiteral("kind"), Caption::kindKey(caption.kind)},
        {QStringLiteral("corner"), Caption::cornerKey(caption.corner)},
        {QStringLiteral("style"), Caption::styleKey(caption.style)},
    };
    if (caption.kind == CaptionKind::Custom)
        object.insert(QStringLiteral("text"), caption.custom);
    return object;
}

// A picture's caption, or the reason it is not one. A picture without one has none. Its text
// is made when it reaches its row.
std::optional<CaptionSettings> readCaption(const QJsonValue &value, QString *fault)
{
    CaptionSettings caption;
    if (value.isUndefined())
        return caption;
    const QJsonObject object = value.toObject();
    const QString kind = object.value(QStringLiteral("kind")).toString();
    const QString corner =
        object.value(QStringLiteral("corner")).toString(Caption::cornerKey(caption.corner));
    const QString style = object.value(QStringLiteral("style")).toString(Caption::styleKey(caption.style));
    const QJsonValue text = object.value(QStringLiteral("text"));
    const std::optional<CaptionKind> knownKind = Caption::kindFromKey(kind);
    const std::optional<CaptionCorner> knownCorner = Caption::cornerFromKey(corner);
    const std::optional<CaptionStyle> knownStyle = Caption::styleFromKey(style);
    if (!value.isObject() || !knownKind)
        *fault = Str::captionUnknownValue(QStringLiteral("kind"), kind);
    else if (!knownCorner)
        *fault = Str::captionUnknownValue(QStringLiteral("corner"), corner);
    else if (!knownStyle)
        *fault = Str::captionUnknownValue(QStringLiteral("style"), style);
    else if (!text.isUndefined() && !text.isString())
        *fault = Str::captionUnknownValue(QStringLiteral("text"), text.toVariant().toString());
    if (!fault->isEmpty())
        return std::nullopt;
    caption.kind = *knownKind;
    caption.corner = *knownCorner;
    caption.style = *knownStyle;
    caption.custom = text.toString();
    return caption;
}

// A picture's tone, or the reason it is not one. A picture without a tone is Neutral.
std::optional<ToneSettings> readTone(const QJsonValue &value, QString *fault)
{
    if (value.isUndefined())
        return ToneSettings();
    const QJsonObject object = value.toObject();
    const QString key = object.value(QStringLiteral("preset")).toString();
    const std::optional<TonePreset> preset = Tone::presetFromKey(key);
    if (!value.isObject() || !preset) {
        *fault = Str::toneUnknownPreset(key);
        return std::nullopt;
    }
    ToneSettings tone;
    tone.preset = *preset;
    const struct {
        const char *field;
        double *into;
        double low, high;
    } sliders[] = {
        {"exposure", &tone.exposure, Tone::kMinExposure, Tone::kMaxExposure},
        {"contrast", &tone.contrast, Tone::kMinContrast, Tone::kMaxContrast},
        {"saturation", &tone.saturation, Tone::kMinSaturation, Tone::kMaxSaturation},
    };
    for (const auto &slider : sliders) {
        const QJsonValue number = object.value(QLatin1String(slider.field));
        if (!isNumberIn(number, slider.low, slider.high)) {
            *fault = Str::toneOutOfRange(QLatin1String(slider.field), number.toVariant().toString(),
                                         slider.low, slider.high);
            return std::nullopt;
        }
        *slider.into = number.toDouble();
    }
    return tone;
}

std::optional<PictureList::Picture> readPicture(const QJsonValue &value, const QString &baseDir)
{
    const QJsonObject object = value.toObject();
    const QString path = object.value(QStringLiteral("path")).toString();
    const std::optional<FillMode> fill =
        PictureList::fillModeFromKey(object.value(QStringLiteral("fill")).toString());
    const QJsonValue rotation = object.value(QStringLiteral("rotation"));
    const QJsonValue focusX = object.value(QStringLiteral("focus_x"));
    const QJsonValue focusY = object.value(QStringLiteral("focus_y"));
    const QJsonValue zoom = object.value(QStringLiteral("zoom"));
    if (!value.isObject() || path.isEmpty() || !fill || !isNumberIn(rotation, 0, 270) ||
        rotation.toInt() % 90 != 0 || rotation.toDouble() != rotation.toInt() || !isNumberIn(focusX, 0, 1) ||
        !isNumberIn(focusY, 0, 1) || !isNumberIn(zoom, Framing::kMinZoom, Framing::kMaxZoom))
        return std::nullopt;
    PictureList::Picture picture;
    picture.path = QDir::fromNativeSeparators(QDir::cleanPath(QDir(baseDir).absoluteFilePath(path)));
    picture.state = {*fill, rotation.toInt(), focusX.toDouble(), focusY.toDouble(), zoom.toDouble()};
    return picture;
}

} // namespace

QString PictureList::formatName() { return QStringLiteral("velora-picture-list"); }

QString PictureList::fillModeKey(FillMode mode)
{
    for (const auto &[known, key] : fillModeKeys()) {
        if (known == mode)
            return key;
    }
    return QString();
}

std::optional<FillMode> PictureList::fillModeFromKey(const QString &key)
{
    for (const auto &[mode, known] : fillModeKeys()) {
        if (known == key)
            return mode;
    }
    return std::nullopt;
}

QByteArray PictureList::toJson() const
{
    QJsonArray rows;
    for (const Picture &picture : pictures) {
        rows.append(QJsonObject{
            {QStringLiteral("path"), QDir::fromNativeSeparators(QFileInfo(picture.path).absoluteFilePath())},
            {QStringLiteral("fill"), fillModeKey(picture.state.fillMode)},
            {QStringLiteral("rotation"), picture.state.rotationDegrees},
            {QStringLiteral("focus_x"), picture.state.focusX},
            {QStringLiteral("focus_y"), picture.state.focusY},
            {QStringLiteral("zoom"), picture.state.zoom},
            {QStringLiteral("tone"), toneObject(picture.state.tone)},
        });
        if (picture.state.caption.kind != CaptionKind::None) {
            QJsonObject row = rows.last().toObject();
            row.insert(QStringLiteral("caption"), captionObject(picture.state.caption));
            rows.replace(rows.size() - 1, row);
        }
    }
    const QJsonObject settings{
        {QStringLiteral("key_file"),
         keyFile.isEmpty() ? QString() : QDir::fromNativeSeparators(QFileInfo(keyFile).absoluteFilePath())},
        {QStringLiteral("panel"), panelType},
        {QStringLiteral("orientation"), landscape ? QStringLiteral("landscape") : QStringLiteral("portrait")},
        {QStringLiteral("interval_minutes"), intervalMinutes},
        {QStringLiteral("loop"), loop},
        {QStringLiteral("save_location"),
         saveLocation.isEmpty() ? QString()
                                : QDir::fromNativeSeparators(QFileInfo(saveLocation).absoluteFilePath())},
    };
    const QJsonObject root{
        {QStringLiteral("format"), formatName()},
        {QStringLiteral("version"), kVersion},
        {QStringLiteral("settings"), settings},
        {QStringLiteral("pictures"), rows},
    };
    return QJsonDocument(root).toJson(QJsonDocument::Indented);
}

std::optional<PictureList> PictureList::fromJson(const QByteArray &json, const QString &baseDir,
                                                 QString *error)
{
    const auto fail = [&](const QString &reason) {
        if (error)
            *error = reason;
        return std::nullopt;
    };
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(json, &parseError);
    if (parseError.error != QJsonParseError::NoError)
        return fail(Str::listNotJson(parseError.errorString(), int(parseError.offset)));
    const QJsonObject root = document.object();
    if (!document.isObject() || root.value(QStringLiteral("format")).toString() != formatName())
        return fail(Str::listNotAList());
    const QJsonValue version = root.value(QStringLiteral("version"));
    if (!version.isDouble() || version.toDouble() != version.toInt() || version.toInt() < kOldestVersion ||
        version.toInt() > kVersion)
        return fail(Str::listWrongVersion(version.toVariant().toString(), kOldestVersion, kVersion));
    const bool withTones = version.toInt() >= 2;

    PictureList list;
    const QJsonObject settings = root.value(QStringLiteral("settings")).toObject();
    const QString orientation = settings.value(QStringLiteral("orientation")).toString();
    const QJsonValue interval = settings.value(QStringLiteral("interval_minutes"));
    const QJsonValue loop = settings.value(QStringLiteral("loop"));
    if (!root.value(QStringLiteral("settings")).isObject() ||
        !settings.value(QStringLiteral("panel")).isString() ||
        (orientation != QLatin1String("portrait") && orientation != QLatin1String("landscape")) ||
        !isNumberIn(interval, PlaylistExporter::kMinIntervalMinutes, PlaylistExporter::kMaxIntervalMinutes) ||
        !loop.isBool() || !settings.value(QStringLiteral("key_file")).isString() ||
        !settings.value(QStringLiteral("save_location")).isString())
        return fail(Str::listBadSettings());
    list.panelType = settings.value(QStringLiteral("panel")).toString();
    list.landscape = orientation == QLatin1String("landscape");
    list.intervalMinutes = interval.toInt();
    list.loop = loop.toBool();
    const auto absolute = [&](const QString &path) {
        return path.isEmpty()
                   ? QString()
                   : QDir::fromNativeSeparators(QDir::cleanPath(QDir(baseDir).absoluteFilePath(path)));
    };
    list.keyFile = absolute(settings.value(QStringLiteral("key_file")).toString());
    list.saveLocation = absolute(settings.value(QStringLiteral("save_location")).toString());

    const QJsonValue rows = root.value(QStringLiteral("pictures"));
    if (!rows.isArray())
        return fail(Str::listBadPicture(0));
    for (const QJsonValue &row : rows.toArray()) {
        std::optional<Picture> picture = readPicture(row, baseDir);
        const int number = int(list.pictures.size()) + 1;
        if (!picture)
            return fail(Str::listBadPicture(number));
        if (withTones) { // a list from before tones has none: its pictures stay Neutral
            QString fault;
            const std::optional<ToneSettings> tone =
                readTone(row.toObject().value(QStringLiteral("tone")), &fault);
            if (!tone)
                return fail(Str::listBadTone(number, fault));
            picture->state.tone = *tone;
            const std::optional<CaptionSettings> caption =
                readCaption(row.toObject().value(QStringLiteral("caption")), &fault);
            if (!caption)
                return fail(Str::listBadCaption(number, fault));
            picture->state.caption = *caption;
        }
        list.pictures << *picture;
    }
    return list;
}

bool PictureList::save(const QString &path, QString *error) const
{
    // QSaveFile writes beside the target and renames at commit: a failure leaves the old list.
    QSaveFile file(path);
    const QByteArray json = toJson();
    if (!file.open(QIODevice::WriteOnly) || file.write(json) != json.size() || !file.commit()) {
        if (error)
            *error = Str::listCannotWrite(QDir::toNativeSeparators(path), file.errorString());
        return false;
    }
    return true;
}

std::optional<PictureList> PictureList::load(const QString &path, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error)
            *error = Str::listCannotRead(QDir::toNativeSeparators(path), file.errorString());
        return std::nullopt;
    }
    if (file.size() > kMaxFileBytes) {
        if (error)
            *error = Str::listCannotRead(QDir::toNativeSeparators(path), Str::listTooLarge());
        return std::nullopt;
    }
    QString reason;
    std::optional<PictureList> list = fromJson(file.readAll(), QFileInfo(path).absolutePath(), &reason);
    if (!list && error)
        *error = Str::listCannotRead(QDir::toNativeSeparators(path), reason);
    return list;
}
