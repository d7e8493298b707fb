#include "preprocess/PreviewRenderer.h"

#include "preprocess/PreprocWidget.h"

#include <QElapsedTimer>
#include <QMutexLocker>
#include <QThread>
#include <QTimer>

namespace {
constexpr int kDeliverySliceMs = 8;
constexpr int kThumbnailSourceSide = 280;
constexpr int kPreviewBox = 88;
} // namespace

PreviewRenderer::PreviewRenderer(QObject *parent)
    : QObject(parent)
{
    m_pool.setMaxThreadCount(qMax(1, QThread::idealThreadCount()));
}

PreviewRenderer::~PreviewRenderer()
{
    m_pool.clear();
    m_pool.waitForDone();
}

QImage PreviewRenderer::render(const Request &request)
{
    return render(request, previewFrameOuterSize(effectiveFrameResolution(request.panel, request.landscape),
                                                 kPreviewBox));
}

QImage PreviewRenderer::render(const Request &request, const QSize &outer)
{
    if (request.source.isNull() || outer.isEmpty())
        return QImage();
    const int side = qMax(kThumbnailSourceSide, qMax(outer.width(), outer.height()));
    const QImage preview =
        renderPreprocDisplayPreview(request.source.image(), request.state,
                                    scaledResolutionForPreview(request.panel, side), request.landscape);
    return makeFramedPreviewImageExact(preview, outer);
}

QSize PreviewRenderer::framedSize(const QSize &panel, bool landscape, int height)
{
    const QSize frame = effectiveFrameResolution(panel, landscape);
    if (height < 1)
        return QSize();
    if (frame.width() < 1 || frame.height() < 1)
        return QSize(height, height);
    return QSize(qMax(1, qRound(double(height) * frame.width() / frame.height())), height);
}

bool PreviewRenderer::sameRequest(const Request &a, const Request &b)
{
    return a.source.sameAs(b.source) && a.state == b.state && a.panel == b.panel &&
           a.landscape == b.landscape;
}

void PreviewRenderer::request(PreprocWidget *widget, const Request &request)
{
    Entry &entry = m_widgets[widget];
    if (!entry.newest)
        entry.newest = std::make_shared<std::atomic<quint64>>(0);
    const quint64 ticket = m_nextTicket++;
    entry.latest = ticket;
    entry.newest->store(ticket);
    ++m_inFlight;
    const std::shared_ptr<std::atomic<quint64>> newest = entry.newest;
    m_pool.start([this, widget, ticket, newest, request] {
        // Thumbnails take what the decodes and renders of an adding or a run leave over.
        QThread::currentThread()->setPriority(QThread::IdlePriority);
        // A newer request of the same widget makes this one pointless.
        const QImage framed = newest->load() == ticket ? render(request) : QImage();
        // This renderer outlives the job (its destructor waits for the pool); the widget is
        // only looked up, on the GUI thread.
        const QMutexLocker lock(&m_doneMutex);
        m_done.append({widget, ticket, framed});
        if (!m_deliveryPosted) {
            m_deliveryPosted = true;
            QMetaObject::invokeMethod(this, &PreviewRenderer::deliverSome, Qt::QueuedConnection);
        }
    });
}

void PreviewRenderer::forget(PreprocWidget *widget)
{
    const auto entry = m_widgets.constFind(widget);
    if (entry != m_widgets.constEnd()) {
        entry->newest->store(0);
        m_widgets.erase(entry);
    }
}

void PreviewRenderer::deliverSome()
{
    QElapsedTimer slice;
    slice.start();
    for (;;) {
        Result result;
        {
            const QMutexLocker lock(&m_doneMutex);
            if (m_done.isEmpty()) {
                m_deliveryPosted = false;
                break;
            }
            if (slice.elapsed() >= kDeliverySliceMs) {
                // The rest after whatever else waits (a timer goes last: other events first).
                QTimer::singleShot(0, this, &PreviewRenderer::deliverSome);
                return;
            }
            result = m_done.takeFirst();
        }
        --m_inFlight;
        const auto entry = m_widgets.constFind(result.widget);
        if (entry != m_widgets.constEnd() && entry->latest == result.ticket) {
            m_widgets.erase(entry);
            result.widget->showFramedPreview(result.framed);
        }
    }
    if (m_inFlight == 0)
        Q_EMIT idle();
}
