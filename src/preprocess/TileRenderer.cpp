#include "preprocess/TileRenderer.h"

#include <QMutexLocker>
#include <QThread>

#include <limits>

namespace {
// How many requests may wait: a few screens of tiles.
constexpr int kWaitingLimit = 96;
} // namespace

TileRenderer::TileRenderer(qsizetype budgetBytes, QObject *parent)
    : QObject(parent)
    , m_budget(budgetBytes)
{
    m_pool.setMaxThreadCount(qMax(1, QThread::idealThreadCount()));
}

TileRenderer::~TileRenderer()
{
    {
        const QMutexLocker lock(&m_pendingMutex);
        m_pending.clear();
    }
    m_pool.waitForDone();
}

bool TileRenderer::isCurrent(quint64 id, const PreviewRenderer::Request &request, const QSize &outer) const
{
    const auto entry = m_entries.constFind(id);
    return entry != m_entries.constEnd() && !entry->image.isNull() && entry->drawnSize == outer &&
           PreviewRenderer::sameRequest(entry->drawn, request);
}

QImage TileRenderer::tile(quint64 id, const PreviewRenderer::Request &request, const QSize &outer)
{
    const bool current = isCurrent(id, request, outer);
    Entry &entry = m_entries[id];
    entry.shown = ++m_clock;
    const bool asked =
        entry.ticket != 0 && entry.wantedSize == outer && PreviewRenderer::sameRequest(entry.wanted, request);
    if (!current && !asked && !request.source.isNull())
        ask(id, entry, request, outer);
    return entry.image;
}

void TileRenderer::ask(quint64 id, Entry &entry, const PreviewRenderer::Request &request, const QSize &outer)
{
    entry.ticket = m_nextTicket++;
    entry.wanted = request;
    entry.wantedSize = outer;
    QList<Job> dropped;
    {
        const QMutexLocker lock(&m_pendingMutex);
        m_pending.append({id, entry.ticket, request, outer});
        while (m_pending.size() > kWaitingLimit)
            dropped << m_pending.takeFirst();
    }
    // A dropped request is asked for again when its tile is painted again.
    for (const Job &job : dropped) {
        const auto other = m_entries.find(job.id);
        if (other != m_entries.end() && other->ticket == job.ticket)
            other->ticket = 0;
    }
    m_pool.start([this] {
        QThread::currentThread()->setPriority(QThread::IdlePriority);
        Job job;
        {
            const QMutexLocker lock(&m_pendingMutex);
            if (m_pending.isEmpty())
                return; // taken by another worker, or dropped
            job = m_pending.takeLast();
        }
        const QImage image = PreviewRenderer::render(job.request, job.outer);
        // Delivered on the GUI thread, unless this renderer is gone by then (its destructor waits
        // for this job, and the delivery dies with it).
        QMetaObject::invokeMethod(
            this, [this, id = job.id, ticket = job.ticket, image] { deliver(id, ticket, image); },
            Qt::QueuedConnection);
    });
}

void TileRenderer::deliver(quint64 id, quint64 ticket, const QImage &image)
{
    const auto entry = m_entries.find(id);
    if (entry == m_entries.end() || entry->ticket != ticket)
        return; // asked for again since, or forgotten
    entry->ticket = 0;
    if (image.isNull())
        return;
    if (entry->image.isNull())
        ++m_keptTiles;
    m_bytes += image.sizeInBytes() - entry->image.sizeInBytes();
    entry->image = image;
    entry->drawn = entry->wanted;
    entry->drawnSize = entry->wantedSize;
    entry->wanted = {};
    keepWithinBudget();
    Q_EMIT tileReady(id);
}

void TileRenderer::keepWithinBudget()
{
    while (m_bytes > m_budget && m_keptTiles > 1) {
        auto oldest = m_entries.end();
        quint64 shown = std::numeric_limits<quint64>::max();
        for (auto entry = m_entries.begin(); entry != m_entries.end(); ++entry) {
            if (!entry->image.isNull() && entry->shown < shown) {
                shown = entry->shown;
                oldest = entry;
            }
        }
        m_bytes -= oldest->image.sizeInBytes();
        --m_keptTiles;
        if (oldest->ticket == 0)
            m_entries.erase(oldest);
        else
            oldest->image = QImage();
    }
}

void TileRenderer::keepOnly(const QSet<quint64> &ids)
{
    for (auto entry = m_entries.begin(); entry != m_entries.end();) {
        if (ids.contains(entry.key())) {
            ++entry;
            continue;
        }
        if (!entry->image.isNull()) {
            m_bytes -= entry->image.sizeInBytes();
            --m_keptTiles;
        }
        entry = m_entries.erase(entry);
    }
}
