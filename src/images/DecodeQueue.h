#pragma once

#include "images/ColourProfile.h"
#include "images/CompactImage.h"
#include "images/FaceDetector.h"
#include "images/Likeness.h"

#include <QDateTime>
#include <QImage>
#include <QList>
#include <QMutex>
#include <QObject>
#include <QString>
#include <QThreadPool>

#include <memory>
#include <optional>
#include <vector>

// What adding one picture needs from its file, made from a single decode.
struct DecodedPicture {
    CompactImage preview;       // the row's thumbnail source: the picture fitted into 280 x 280
    QImage thumbnail;           // the table's thumbnail, fitted into 72 x 72 from preview
    QSize pictureSize;          // the whole picture's size as viewed; invalid when unknown
    QString heicCache;          // for a HEIC/HEIF picture: the converted JPEG the processor gets
    bool unconvertible = false; // a HEIC/HEIF picture that cannot be converted: it gets no row
    // A colour profile the picture carries but that cannot be used: it is shown as sRGB.
    ColourProfile::Problem colourProblem = ColourProfile::Problem::None;
    // Its faces (or subject), where the job asked for them.
    std::optional<PictureSubjects> subjects;
    // When it was taken (EXIF); invalid when unknown.
    QDateTime dateTaken;
    // What it looks like, for finding the same photo twice.
    Likeness likeness;
};

// Decodes the pictures of one adding on worker threads (as many as the machine has cores).
// A job makes what a row needs from one decode (decode()); results come back on the GUI
// thread, one decoded() per job, in the order the jobs were given, however the work finished;
// then finished(). Only a window of jobs is under way at a time, so a large batch holds few
// results in memory. cancel() drops what is not yet delivered (a decode under way ends and is
// dropped) and emits finished(). Delivery does not nest: a slot that opens a dialog holds the
// rest back until it returns. Destroying the queue cancels and waits for the decodes under
// way, so no work outlives it.
class DecodeQueue : public QObject
{
    Q_OBJECT

public:
    enum class Work {
        Decode,      // previews, and the conversion of a HEIC/HEIF picture
        ConvertOnly, // a HEIC/HEIF picture already listed: converted (or found in the cache) again
        Nothing,     // delivered as it is, in its turn
        FacesOnly,   // the faces of a picture already listed, and nothing else
    };
    struct Job {
        QString path;
        Work work = Work::Decode;
        // Also find the picture's faces (Work::Decode), from one decode at
        // FaceDetector::kMaxSide that the previews are made from too. Work::FacesOnly implies it.
        bool findFaces = false;
    };

    explicit DecodeQueue(QObject *parent = nullptr);
    ~DecodeQueue() override;

    void start(const QList<Job> &jobs);
    void cancel();
    bool isBusy() const { return m_busy; }

    // The work of one job, on the calling thread.
    static DecodedPicture decode(const Job &job);

Q_SIGNALS:
    void decoded(int index, const DecodedPicture &picture);
    void finished();

private:
    struct Results {
        QMutex mutex;
        std::vector<std::optional<DecodedPicture>> done;
    };

    void dispatch();
    void deliver();

    QThreadPool m_pool;
    QList<Job> m_jobs;
    std::shared_ptr<Results> m_results;
    int m_dispatched = 0;
    int m_delivered = 0;
    bool m_busy = false;
    bool m_delivering = false;
};
