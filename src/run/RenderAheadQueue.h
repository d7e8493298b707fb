#pragma once

#include "images/ColourProfile.h"
#include "preprocess/ImagePreprocess.h"

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QSize>
#include <QString>
#include <QThreadPool>

#include <optional>

// What the export picture of one row is made from, and where it goes.
struct RenderRequest {
    QString source; // the picture file (for a HEIC/HEIF row, its converted copy)
    PreprocState state;
    QSize panel;
    bool landscape = false;
    QString fileName; // "<base name>_preproc.jpg"
};

// Renders the export pictures of a run's next rows on worker threads, so that the processor
// does not wait for them: a render is asked for by row id, with the stamp of what it is made
// from; take() hands a finished one over once (its file, or an empty path when it failed),
// and only for the same stamp; ready() says when one has finished. Each render writes into a
// folder of its own below the output folder, so two rows of the same file name never meet.
// Renders that are not taken are discarded with their files (discard(), clear(), and the
// destructor, which waits for the renders under way first).
class RenderAheadQueue : public QObject
{
    Q_OBJECT

public:
    explicit RenderAheadQueue(const QString &outputDir, QObject *parent = nullptr);
    ~RenderAheadQueue() override;

    void request(quint64 rowId, const QByteArray &stamp, const RenderRequest &request);
    bool has(quint64 rowId) const { return m_renders.contains(rowId); }
    std::optional<QString> take(quint64 rowId, const QByteArray &stamp);
    void discard(quint64 rowId);
    void clear();

    // The export picture of one row, on any thread, from its picture decoded no larger than the
    // composition needs (fitted into the frame for the fills, covering it for the crop);
    // null when the picture cannot be read. render() writes it as the program's JPEGs are
    // written (ImageLoader::writeJpeg) to path and gives path, or an empty text when that fails.
    // A colour profile of the picture's that cannot be used is reported through colourProblem.
    static QImage renderImage(const RenderRequest &request, ColourProfile::Problem *colourProblem = nullptr);
    static QString render(const RenderRequest &request, const QString &path,
                          ColourProfile::Problem *colourProblem = nullptr);

Q_SIGNALS:
    void ready(quint64 rowId);

private:
    struct Render {
        quint64 ticket = 0;
        QByteArray stamp;
        bool finished = false;
        QString file;
    };

    void finish(quint64 rowId, quint64 ticket, const QString &file);
    static void removeRender(const QString &file, const QString &folder);

    QString m_outputDir;
    QThreadPool m_pool;
    QHash<quint64, Render> m_renders;
    QHash<quint64, QString> m_abandoned; // ticket -> folder of renders still under way, dropped
    quint64 m_nextTicket = 1;
};
