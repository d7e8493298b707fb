#include "run/RenderAheadQueue.h"

#include "images/ImageLoader.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMutex>
#include <QThreadPool>

// The queue as its renders see it: null once the queue is gone, so that a render that ends
// later removes its own file.
struct RenderAheadQueue::Life {
    QMutex mutex;
    RenderAheadQueue *queue = nullptr;
};

RenderAheadQueue::RenderAheadQueue(const QString &outputDir, QObject *parent)
    : QObject(parent)
    , m_outputDir(outputDir)
    , m_life(std::make_shared<Life>())
{
    m_life->queue = this;
}

RenderAheadQueue::~RenderAheadQueue()
{
    {
        const QMutexLocker lock(&m_life->mutex);
        m_life->queue = nullptr; // renders under way are not waited for: they clean up after themselves
    }
    for (auto it = m_renders.cbegin(); it != m_renders.cend(); ++it) {
        if (it->finished)
            removeRender(it->file, QDir(m_outputDir).filePath(QString::number(it->ticket)));
    }
}

void RenderAheadQueue::request(quint64 rowId, const QByteArray &stamp, const RenderRequest &request)
{
    const auto existing = m_renders.constFind(rowId);
    if (existing != m_renders.constEnd() && existing->stamp == stamp)
        return; // asked for already
    discard(rowId);
    const quint64 ticket = m_nextTicket++;
    m_renders.insert(rowId, Render{ticket, stamp, false, QString(), ColourProfile::Problem::None});
    const QString path =
        QDir(m_outputDir).filePath(QString::number(ticket) + QLatin1Char('/') + request.fileName);
    // On the application's pool, which the application waits for as it ends.
    QThreadPool::globalInstance()->start([life = m_life, rowId, ticket, request, path] {
        {
            const QMutexLocker lock(&life->mutex);
            if (!life->queue)
                return; // the queue went before this began
        }
        ColourProfile::Problem problem = ColourProfile::Problem::None;
        const QImage composed = ExportRender::image(request, &problem);
        // Written while the queue is known to be there, so that nothing is written into a
        // render folder after its queue (and its window's folders) are gone.
        const QMutexLocker lock(&life->mutex);
        if (!life->queue)
            return;
        const QString file = ExportRender::save(composed, path);
        // A call posted to a queue that is then destroyed is dropped with it.
        RenderAheadQueue *queue = life->queue;
        QMetaObject::invokeMethod(
            queue, [queue, rowId, ticket, file, problem] { queue->finish(rowId, ticket, file, problem); },
            Qt::QueuedConnection);
    });
}

void RenderAheadQueue::finish(quint64 rowId, quint64 ticket, const QString &file,
                              ColourProfile::Problem problem)
{
    const QString folder = QDir(m_outputDir).filePath(QString::number(ticket));
    if (file.isEmpty())
        QDir().rmdir(folder); // a failed render leaves no folder behind
    if (m_abandoned.remove(ticket) > 0) {
        removeRender(file, folder);
        return;
    }
    const auto render = m_renders.find(rowId);
    if (render == m_renders.end() || render->ticket != ticket) {
        removeRender(file, folder);
        return;
    }
    render->finished = true;
    render->file = file;
    render->problem = problem;
    Q_EMIT ready(rowId);
}

std::optional<QString> RenderAheadQueue::take(quint64 rowId, const QByteArray &stamp,
                                              ColourProfile::Problem *problem)
{
    const auto render = m_renders.constFind(rowId);
    if (render == m_renders.constEnd() || !render->finished || render->stamp != stamp)
        return std::nullopt;
    const QString file = render->file;
    if (problem)
        *problem = render->problem;
    m_renders.erase(render);
    return file;
}

void RenderAheadQueue::discard(quint64 rowId)
{
    const auto render = m_renders.constFind(rowId);
    if (render == m_renders.constEnd())
        return;
    const QString folder = QDir(m_outputDir).filePath(QString::number(render->ticket));
    if (render->finished)
        removeRender(render->file, folder);
    else
        m_abandoned.insert(render->ticket, folder); // its file goes when its render ends
    m_renders.erase(render);
}

void RenderAheadQueue::clear()
{
    const QList<quint64> rows = m_renders.keys();
    for (quint64 rowId : rows)
        discard(rowId);
}

void RenderAheadQueue::removeRender(const QString &file, const QString &folder)
{
    if (!file.isEmpty())
        QFile::remove(file);
    QDir().rmdir(folder);
}
