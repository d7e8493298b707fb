#pragma once

#include "run/ExportRender.h"

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QSize>
#include <QString>

#include <memory>
#include <optional>

// Renders the export pictures of a run's next rows on worker threads, so that the processor
// does not wait for them: a render is asked for by row id, with the stamp of what it is made
// from; take() hands a finished one over once (its file, or an empty path when it failed),
// and only for the same stamp; ready() says when one has finished. Each render writes into a
// folder of its own below the output folder, so two rows of the same file name never meet.
// Renders that are not taken are discarded with their files (discard(), clear(), and the
// destructor). The renders run on the application's pool (QThreadPool::globalInstance(), which
// the application waits for as it ends); the destructor does not wait for those under way
// beyond the writing of one file: a render that ends after its queue writes nothing.
class RenderAheadQueue : public QObject
{
    Q_OBJECT

public:
    explicit RenderAheadQueue(const QString &outputDir, QObject *parent = nullptr);
    ~RenderAheadQueue() override;

    void request(quint64 rowId, const QByteArray &stamp, const RenderRequest &request);
    bool has(quint64 rowId) const { return m_renders.contains(rowId); }
    // colourProblem: what the render found wrong with the picture's colour profile.
    std::optional<QString> take(quint64 rowId, const QByteArray &stamp,
                                ColourProfile::Problem *colourProblem = nullptr);
    void discard(quint64 rowId);
    void clear();

Q_SIGNALS:
    void ready(quint64 rowId);

private:
    struct Render {
        quint64 ticket = 0;
        QByteArray stamp;
        bool finished = false;
        QString file;
        ColourProfile::Problem problem;
    };

    void finish(quint64 rowId, quint64 ticket, const QString &file, ColourProfile::Problem problem);
    static void removeRender(const QString &file, const QString &folder);

    QString m_outputDir;
    struct Life;
    std::shared_ptr<Life> m_life;
    QHash<quint64, Render> m_renders;
    QHash<quint64, QString> m_abandoned; // ticket -> folder of renders still under way, dropped
    quint64 m_nextTicket = 1;
};
