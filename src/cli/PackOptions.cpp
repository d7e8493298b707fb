#include "cli/PackOptions.h"

#include "run/PackageJob.h"

#include "images/ImageLoader.h"
#include "playlist/PlaylistExporter.h"
#include "preprocess/Caption.h"
#include "preprocess/Tone.h"
#include "ui/AppStrings.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QSet>

namespace {

QList<QCommandLineOption> optionList()
{
    return {
        {QStringLiteral("out"), Str::packOptionOut(), QStringLiteral("DIR")},
        {QStringLiteral("key"), Str::packOptionKey(), QStringLiteral("KEY.json")},
        {QStringLiteral("panel"), Str::packOptionPanel(), QStringLiteral("PANEL")},
        {QStringLiteral("landscape"), Str::packOptionLandscape()},
        {QStringLiteral("fill"), Str::packOptionFill(), QStringLiteral("blur|white|black|crop")},
        {QStringLiteral("tone"), Str::packOptionTone(),
         QStringLiteral("neutral|balanced|vivid|soft|monochrome")},
        {QStringLiteral("caption"), Str::packOptionCaption(), QStringLiteral("none|date|name")},
        {QStringLiteral("auto-frame"), Str::packOptionAutoFrame()},
        {QStringLiteral("interval"), Str::packOptionInterval(), QStringLiteral("MIN")},
        {QStringLiteral("no-loop"), Str::packOptionNoLoop()},
        {QStringLiteral("jobs"), Str::packOptionJobs(), QStringLiteral("N")},
        {QStringLiteral("list"), Str::packOptionList(), QStringLiteral("LIST.json")},
        {QStringLiteral("verbose"), Str::packOptionVerbose()},
        {QStringLiteral("help"), Str::packOptionHelp()},
        {QStringLiteral("version"), Str::packOptionVersion()},
    };
}

} // namespace

QString PackOptions::helpText()
{
    QCommandLineParser parser;
    parser.addOptions(optionList());
    parser.setApplicationDescription(Str::packDescription());
    parser.addPositionalArgument(QStringLiteral("PICTURE_OR_FOLDER"), Str::packPositional(),
                                 QStringLiteral("PICTURE_OR_FOLDER…"));
    return parser.helpText().replace(QStringLiteral("[options]"), QStringLiteral("[OPTIONS]")) +
           QStringLiteral("\n") + Str::packExitCodes();
}

std::optional<PackOptions> PackOptions::parse(const QStringList &arguments, QString *error)
{
    const auto fail = [&](const QString &reason) {
        *error = reason;
        return std::nullopt;
    };
    QCommandLineParser parser;
    parser.addOptions(optionList());
    if (!parser.parse(QStringList{QStringLiteral("velora-pack")} + arguments))
        return fail(parser.errorText());

    PackOptions options;
    if (parser.isSet(QStringLiteral("help")) || parser.isSet(QStringLiteral("version"))) {
        options.action = parser.isSet(QStringLiteral("help")) ? Action::Help : Action::Version;
        return options;
    }

    QSet<QString> seen;
    const auto addPicture = [&](const PictureList::Picture &picture) {
        const QString key = QDir::fromNativeSeparators(QFileInfo(picture.path).absoluteFilePath());
        if (!seen.contains(key)) {
            seen.insert(key);
            options.pictures << PictureList::Picture{key, picture.state};
        }
    };
    const PreprocState defaultState{defaultFillMode(), 0};
    if (parser.isSet(QStringLiteral("list"))) {
        QString listError;
        const std::optional<PictureList> list =
            PictureList::load(parser.value(QStringLiteral("list")), &listError);
        if (!list)
            return fail(listError);
        options.keyFile = list->keyFile;
        options.panelType = list->panelType;
        options.landscape = list->landscape;
        options.intervalMinutes = list->intervalMinutes;
        options.loop = list->loop;
        options.outputParent = list->saveLocation;
        for (const PictureList::Picture &picture : list->pictures) {
            if (!QFileInfo(picture.path).isFile())
                return fail(Str::packPictureMissing(QDir::toNativeSeparators(picture.path)));
            addPicture(picture);
        }
    }
    for (const QString &argument : parser.positionalArguments()) {
        const QFileInfo info(argument);
        if (!info.exists())
            return fail(Str::packPictureMissing(QDir::toNativeSeparators(argument)));
        // A folder's pictures as the window adds them (its subfolders included).
        const QStringList files =
            info.isDir() ? *ImageLoader::findPictures(info.absoluteFilePath(), true) : QStringList{argument};
        for (const QString &file : files)
            addPicture({file, defaultState});
    }

    if (parser.isSet(QStringLiteral("out")))
        options.outputParent = parser.value(QStringLiteral("out"));
    if (parser.isSet(QStringLiteral("key")))
        options.keyFile = parser.value(QStringLiteral("key"));
    if (parser.isSet(QStringLiteral("panel"))) {
        options.panelType = parser.value(QStringLiteral("panel"));
        options.panelGiven = true;
        if (!PlaylistExporter::panelFromGuiType(options.panelType, QString()).ok)
            return fail(Str::packBadPanel(options.panelType));
    }
    options.landscape = options.landscape || parser.isSet(QStringLiteral("landscape"));
    if (parser.isSet(QStringLiteral("fill"))) {
        const QString fill = parser.value(QStringLiteral("fill"));
        options.fill = PictureList::fillModeFromKey(fill);
        if (!options.fill || *options.fill == FillMode::Direct)
            return fail(Str::packBadFill(fill));
    }
    if (parser.isSet(QStringLiteral("tone"))) {
        const QString tone = parser.value(QStringLiteral("tone"));
        options.tone = Tone::presetFromKey(tone);
        if (!options.tone)
            return fail(Str::packBadTone(tone));
    }
    if (parser.isSet(QStringLiteral("caption"))) {
        const QString caption = parser.value(QStringLiteral("caption"));
        options.caption = Caption::kindFromKey(caption);
        if (!options.caption || *options.caption == CaptionKind::Custom)
            return fail(Str::packBadCaption(caption));
    }
    options.autoFrame = parser.isSet(QStringLiteral("auto-frame"));
    if (parser.isSet(QStringLiteral("interval"))) {
        bool ok = false;
        options.intervalMinutes = parser.value(QStringLiteral("interval")).toInt(&ok);
        if (!ok || options.intervalMinutes < PlaylistExporter::kMinIntervalMinutes ||
            options.intervalMinutes > PlaylistExporter::kMaxIntervalMinutes)
            return fail(Str::packBadInterval(parser.value(QStringLiteral("interval"))));
    }
    options.loop = options.loop && !parser.isSet(QStringLiteral("no-loop"));
    if (parser.isSet(QStringLiteral("jobs"))) {
        bool ok = false;
        options.jobs = parser.value(QStringLiteral("jobs")).toInt(&ok);
        if (!ok || options.jobs < 1 || options.jobs > PackageJob::maxProcessorsAtOnce())
            return fail(
                Str::packBadJobs(parser.value(QStringLiteral("jobs")), PackageJob::maxProcessorsAtOnce()));
    }
    options.verbose = parser.isSet(QStringLiteral("verbose"));

    if (options.outputParent.isEmpty())
        return fail(Str::packNoOutput());
    if (options.pictures.isEmpty())
        return fail(Str::packNoPictures());
    if (options.pictures.size() > PlaylistExporter::kMaxFrames)
        return fail(Str::playlistTooManyFrames(PlaylistExporter::kMaxFrames));
    for (PictureList::Picture &picture : options.pictures) {
        if (options.fill)
            picture.state.fillMode = *options.fill;
        if (options.tone)
            picture.state.tone = ToneSettings{*options.tone};
        if (options.caption) {
            picture.state.caption = CaptionSettings();
            picture.state.caption.kind = *options.caption;
        }
    }
    return options;
}
