#include "preprocess/PanelRenderer.h"

#include "preprocess/EpaperLook.h"

PanelRenderer::PanelRenderer(QObject *parent)
    : QObject(parent)
{
    m_pool.setMaxThreadCount(1);
}

PanelRenderer::~PanelRenderer()
{
    m_newest->store(0);
    m_pool.clear();
    m_pool.waitForDone();
}

PanelRenderer::Result PanelRenderer::render(const Request &request)
{
    Result result;
    result.composition =
        renderPreprocDisplayPreview(request.source, request.state, request.panel, request.landscape);
    if (result.composition.isNull())
        return result;
    if (request.epaper)
        result.composition = EpaperLook::render(result.composition);
    result.framed = makeFramedPreviewImageExact(result.composition, request.framedSize);
    return result;
}

quint64 PanelRenderer::request(const Request &request)
{
    const quint64 ticket = m_newest->load() + 1;
    m_newest->store(ticket);
    m_busy = true;
    m_pool.clear(); // a request not yet begun is replaced
    const std::shared_ptr<std::atomic<quint64>> newest = m_newest;
    m_pool.start([this, request, ticket, newest] {
        if (newest->load() != ticket)
            return; // a newer one came meanwhile
        const Result result = render(request);
        // Delivered on the renderer's thread, and only if the renderer is still there then
        // (a queued call to a destroyed object is dropped) and this is still the newest.
        QMetaObject::invokeMethod(
            this,
            [this, ticket, result] {
                if (m_newest->load() != ticket)
                    return;
                m_busy = false;
                Q_EMIT ready(ticket, result);
            },
            Qt::QueuedConnection);
    });
    return ticket;
}
