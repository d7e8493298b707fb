#pragma once

#include "preprocess/ImagePreprocess.h"

#include <QList>
#include <QString>

#include <optional>

// A saved picture list: the table's rows in order, each with its source path and its full
// state (framing and tone included), and the settings a package is made with. Stored as JSON
// with a format name and a version (docs/picture-list.md); lists of version 1, from before
// tones, are read with every picture Neutral. Reading checks everything and gives nothing on
// any fault; writing goes through a temporary file and a rename, so a list on disk is always
// whole.
struct PictureList {
    struct Picture {
        QString path; // absolute, forward slashes
        PreprocState state{FillMode::BlurFill, 0};
    };

    static constexpr int kVersion = 2;
    static constexpr int kOldestVersion = 1;
    static QString formatName();
    static QString fileSuffix() { return QStringLiteral("json"); }

    QList<Picture> pictures;
    QString keyFile;
    QString panelType = QStringLiteral("133");
    bool landscape = false;
    int intervalMinutes = 30;
    bool loop = true;
    QString saveLocation;

    QByteArray toJson() const;
    // Paths that are not absolute are taken relative to baseDir.
    static std::optional<PictureList> fromJson(const QByteArray &json, const QString &baseDir,
                                               QString *error);

    bool save(const QString &path, QString *error) const;
    static std::optional<PictureList> load(const QString &path, QString *error);

    // The names of the fill modes in a list file and on velora-pack's command line.
    static QString fillModeKey(FillMode mode);
    static std::optional<FillMode> fillModeFromKey(const QString &key);
};
