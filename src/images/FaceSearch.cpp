#include "images/FaceSearch.h"

#include "images/DecodeQueue.h"

FaceSearch::FaceSearch(QObject *parent)
    : QObject(parent)
    , m_queue(new DecodeQueue(this))
{
    connect(m_queue, &DecodeQueue::decoded, this, [this](int, const DecodedPicture &picture) {
        // The queue delivers in order: the one delivered is the first still waiting.
        if (m_pending.isEmpty())
            return;
        const Picture done = m_pending.takeFirst();
        ++m_done;
        Q_EMIT found(done.id, picture.subjects.value_or(PictureSubjects()));
    });
    connect(m_queue, &DecodeQueue::finished, this, [this] {
        if (m_stopping)
            return; // cancelled here, to start again with what is left or to end
        m_done = 0;
        Q_EMIT finished();
    });
}

FaceSearch::~FaceSearch()
{
    m_queue->disconnect(this); // the queue, a child, cancels and waits as it goes
}

void FaceSearch::add(const QList<Picture> &pictures)
{
    if (pictures.isEmpty())
        return;
    m_pending += pictures;
    restart();
}

void FaceSearch::keepOnly(const QList<quint64> &kept)
{
    const qsizetype before = m_pending.size();
    m_pending.removeIf([&](const Picture &picture) { return !kept.contains(picture.id); });
    if (m_pending.size() != before)
        restart();
}

void FaceSearch::cancel()
{
    if (m_pending.isEmpty())
        return;
    m_pending.clear();
    restart();
}

void FaceSearch::restart()
{
    // What was found stays found; the queue starts again from the first picture still waiting.
    m_stopping = true;
    m_queue->cancel();
    m_stopping = false;
    QList<DecodeQueue::Job> jobs;
    for (const Picture &picture : std::as_const(m_pending))
        jobs.append({picture.path, DecodeQueue::Work::FacesOnly, true});
    if (!jobs.isEmpty()) {
        m_queue->start(jobs);
        return;
    }
    m_done = 0;
    Q_EMIT finished();
}
