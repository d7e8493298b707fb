#pragma once

#include "app/PictureList.h"

#include <QString>
#include <QStringList>

#include <optional>

// velora-pack's command line, read and checked: where the package goes, the frame settings,
// and the pictures (files and folders, or a picture list). Options given on the command line
// win over the list's settings.
struct PackOptions {
    enum class Action { Pack, Help, Version };

    // The exit codes of velora-pack, as its --help lists them.
    enum ExitCode {
        kPackageWritten = 0,
        kNoPackage = 1,
        kUsageError = 2,
        kProcessorMissing = 3,
        kKeyProblem = 4,
    };

    Action action = Action::Pack;
    QString outputParent; // the package goes into outputParent/vl_play
    QString keyFile;
    QString panelType = QStringLiteral("133");
    bool panelGiven = false;
    bool landscape = false;
    std::optional<FillMode> fill;       // for every picture; none: each picture's own or the default
    std::optional<TonePreset> tone;     // for every picture, nothing adjusted; none: each one's own
    std::optional<CaptionKind> caption; // for every picture, bottom right on a band; none: each one's own
    bool autoFrame = false;             // every picture framed around its faces
    int intervalMinutes = 30;
    bool loop = true;
    int jobs = 1; // processors at once
    bool verbose = false;
    QList<PictureList::Picture> pictures; // in order, once each

    // Parses arguments (argv without the program's name); on a fault, nothing and the reason.
    static std::optional<PackOptions> parse(const QStringList &arguments, QString *error);
    static QString helpText();
};
