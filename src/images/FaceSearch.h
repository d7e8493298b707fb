#pragma once

#include "images/FaceDetector.h"

#include <QList>
#include <QObject>
#include <QString>

class DecodeQueue;

// Looks for the faces of pictures already listed, on worker threads (a DecodeQueue of
// DecodeQueue::Work::FacesOnly jobs: one decode at FaceDetector::kMaxSide each). Pictures are
// known by an id of the caller's (a row's); found() comes back on the GUI thread once per
// picture, in the order they were given, then finished(). add() queues more while it runs.
// forget() drops pictures that are gone (a removed row): what is under way for them is
// dropped, the others go on. cancel() drops everything. Both end with finished() when nothing
// is left. Destroying it cancels and waits for the
// decodes under way, so no work outlives it.
class FaceSearch : public QObject
{
    Q_OBJECT

public:
    struct Picture {
        quint64 id = 0;
        QString path;
    };

    explicit FaceSearch(QObject *parent = nullptr);
    ~FaceSearch() override;

    void add(const QList<Picture> &pictures);
    // Keeps only the pictures whose ids are in kept.
    void keepOnly(const QList<quint64> &kept);
    void cancel();
    bool isBusy() const { return !m_pending.isEmpty(); }
    // Found so far, and in all, since the search last started from nothing.
    int done() const { return m_done; }
    int total() const { return m_done + int(m_pending.size()); }

Q_SIGNALS:
    void found(quint64 id, const PictureSubjects &subjects);
    void finished();

private:
    void restart();

    DecodeQueue *m_queue = nullptr;
    QList<Picture> m_pending; // in order; the queue works on all of them
    int m_done = 0;
    bool m_stopping = false;
};
