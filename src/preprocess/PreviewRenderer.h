#pragma once

#include "images/CompactImage.h"
#include "preprocess/ImagePreprocess.h"

#include <QHash>
#include <QImage>
#include <QList>
#include <QMutex>
#include <QObject>
#include <QSize>
#include <QThreadPool>

#include <atomic>
#include <memory>

class PreprocWidget;

// Renders the framed thumbnails of row widgets on worker threads of the lowest priority (they
// take what the decodes of an adding and the renders of a run leave over), so that a thousand
// rows can change at once and the window does not wait: a widget asks with its thumbnail source, state
// and frame settings; only its newest request counts (an older one not yet begun is skipped);
// the framed image comes back on the GUI thread to the widget, if it still exists (widgets
// forget themselves as they go), a slice of at most a few milliseconds at a time, so that a
// thousand finished thumbnails never hold the event loop up. idle() is emitted whenever
// nothing is left to render.
// Destroying the renderer waits for the renders under way; none is delivered after that.
class PreviewRenderer : public QObject
{
    Q_OBJECT

public:
    struct Request {
        CompactImage source;
        PreprocState state;
        QSize panel;
        bool landscape = false;
    };

    explicit PreviewRenderer(QObject *parent = nullptr);
    ~PreviewRenderer() override;

    void request(PreprocWidget *widget, const Request &request);
    void forget(PreprocWidget *widget);
    bool isIdle() const { return m_inFlight == 0; }

    // The framed thumbnail of a row, on any thread; null for a null source.
    static QImage render(const Request &request);
    // The framed picture at outer size (a tile of the picture grid), drawn at that size.
    static QImage render(const Request &request, const QSize &outer);
    // The size of a framed picture height pixels tall.
    static QSize framedSize(const QSize &panel, bool landscape, int height);
    // Whether a and b draw the same picture (the same thumbnail source, not only an equal one).
    static bool sameRequest(const Request &a, const Request &b);

Q_SIGNALS:
    void idle();

private:
    struct Entry {
        quint64 latest = 0;
        std::shared_ptr<std::atomic<quint64>> newest; // read by the workers to skip stale work
    };

    struct Result {
        PreprocWidget *widget;
        quint64 ticket;
        QImage framed;
    };

    void deliverSome();

    QThreadPool m_pool;
    QMutex m_doneMutex;
    QList<Result> m_done;          // finished renders not yet handed over
    bool m_deliveryPosted = false; // guarded by m_doneMutex
    QHash<PreprocWidget *, Entry> m_widgets;
    quint64 m_nextTicket = 1;
    int m_inFlight = 0;
};
