#pragma once

#include "preprocess/PreviewRenderer.h"

#include <QHash>
#include <QImage>
#include <QList>
#include <QMutex>
#include <QObject>
#include <QSet>
#include <QSize>
#include <QThreadPool>

// The framed tiles of the picture grid, drawn on worker threads of the lowest priority and kept
// within a memory budget (the tiles shown longest ago go first), so that a thousand pictures can
// be scrolled through without a thousand tiles held at once. tile() hands out at once what is
// kept for a picture (null: nothing yet; it may be drawn for an older state or another size) and
// asks for the tile again unless it is current. The newest requests are drawn first and only the
// newest few wait: tiles scrolled past are dropped, and asked for again when they are painted
// again. A finished tile is committed on the GUI thread and announced by tileReady(id).
// Destroying the renderer waits for the tiles under way; none is delivered after that.
class TileRenderer : public QObject
{
    Q_OBJECT

public:
    explicit TileRenderer(qsizetype budgetBytes, QObject *parent = nullptr);
    ~TileRenderer() override;

    QImage tile(quint64 id, const PreviewRenderer::Request &request, const QSize &outer);
    // Whether the tile kept for id was drawn from request at outer.
    bool isCurrent(quint64 id, const PreviewRenderer::Request &request, const QSize &outer) const;
    qsizetype keptBytes() const { return m_bytes; }
    int keptTiles() const { return m_keptTiles; }
    // Forgets every picture but those of ids (the rest were removed).
    void keepOnly(const QSet<quint64> &ids);

Q_SIGNALS:
    void tileReady(quint64 id);

private:
    struct Entry {
        PreviewRenderer::Request drawn; // what image shows
        QSize drawnSize;
        QImage image;
        PreviewRenderer::Request wanted; // asked for under ticket, while ticket is not 0
        QSize wantedSize;
        quint64 ticket = 0;
        quint64 shown = 0; // when it was last handed out
    };
    struct Job {
        quint64 id;
        quint64 ticket;
        PreviewRenderer::Request request;
        QSize outer;
    };

    void ask(quint64 id, Entry &entry, const PreviewRenderer::Request &request, const QSize &outer);
    void deliver(quint64 id, quint64 ticket, const QImage &image);
    void keepWithinBudget();

    QThreadPool m_pool;
    QMutex m_pendingMutex;
    QList<Job> m_pending; // the newest last; guarded by m_pendingMutex
    QHash<quint64, Entry> m_entries;
    qsizetype m_budget;
    qsizetype m_bytes = 0;
    int m_keptTiles = 0;
    quint64 m_clock = 0;
    quint64 m_nextTicket = 1;
};
