#include "run/RenderAheadQueue.h"

#include "images/ImageLoader.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThread>

namespace {
constexpr int kRenderThreads = 2; // the rows after the one being processed
} // namespace

RenderAheadQueue::RenderAheadQueue(const QString &outputDir, QObject *parent)
    : QObject(parent)
    , m_outputDir(outputDir)
{
    m_pool.setMaxThreadCount(qMin(kRenderThreads, qMax(1, QThread::idealThreadCount())));
}

RenderAheadQueue::~RenderAheadQueue()
{
    m_pool.clear();
    m_pool.waitForDone();
    clear();
    for (auto it = m_abandoned.cbegin(); it != m_abandoned.cend(); ++it)
        QDir(it.value()).removeRecursively();
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
    m_pool.start([this, rowId, ticket, request, path] {
        ColourProfile::Problem problem = ColourProfile::Problem::None;
        const QString file = ExportRender::write(request, path, &problem);
        // This queue outlives the render (its destructor waits for the pool).
        QMetaObject::invokeMethod(
            this, [this, rowId, ticket, file, problem] { finish(rowId, ticket, file, problem); },
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
