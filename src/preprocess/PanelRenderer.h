#pragma once

#include "preprocess/ImagePreprocess.h"

#include <QImage>
#include <QObject>
#include <QSize>
#include <QThreadPool>

#include <atomic>
#include <memory>

// Renders the preview dialog's picture at the panel's resolution on a worker thread, so that
// the dialog never waits for it: the composition of a state (framing and tone), optionally as
// a six-colour panel shows it, and that picture in its wooden frame at the dialog's size. One
// render runs at a time; a newer request replaces one not yet begun, and a render whose
// request is no longer the newest is never delivered. ready() comes on the thread the renderer
// lives on. The renderer's owner (the dialog) is all it touches: destroying it drops what has
// not begun and waits for the render under way.
class PanelRenderer : public QObject
{
    Q_OBJECT

public:
    struct Request {
        QImage source;
        PreprocState state;
        QSize panel;
        bool landscape = false;
        bool epaper = false;
        QSize framedSize; // the outer size of the framed picture
    };
    struct Result {
        QImage composition; // at the panel's resolution, as the viewer sees the frame
        QImage framed;
    };

    explicit PanelRenderer(QObject *parent = nullptr);
    ~PanelRenderer() override;

    // A number that ready() gives back with the result of this request.
    quint64 request(const Request &request);
    bool isBusy() const { return m_busy; }

    // The render itself, on any thread.
    static Result render(const Request &request);

Q_SIGNALS:
    void ready(quint64 ticket, const PanelRenderer::Result &result);

private:
    QThreadPool m_pool;
    std::shared_ptr<std::atomic<quint64>> m_newest = std::make_shared<std::atomic<quint64>>(0);
    bool m_busy = false;
};
