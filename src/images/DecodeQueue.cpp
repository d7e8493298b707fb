#include "images/DecodeQueue.h"

#include "images/DateTaken.h"
#include "images/ImageLoader.h"

#include <QMutexLocker>
#include <QThread>

#include <algorithm>

namespace {
constexpr int kPreviewSide = 280;
constexpr int kThumbnailSide = 72;

// The preview made from the reduced decode that faces are found in: the size a decode at the
// preview's size gives, from the whole picture's.
QImage previewFrom(const QImage &reduced, const QSize &picture)
{
    if (!picture.isValid() || std::max(picture.width(), picture.height()) <= kPreviewSide || reduced.isNull())
        return ImageLoader::scaledToFit(reduced, kPreviewSide);
    return reduced.scaled(picture.scaled(kPreviewSide, kPreviewSide, Qt::KeepAspectRatio),
                          Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

} // namespace

DecodeQueue::DecodeQueue(QObject *parent)
    : QObject(parent)
{
    m_pool.setMaxThreadCount(qMax(1, QThread::idealThreadCount()));
}

DecodeQueue::~DecodeQueue()
{
    m_busy = false;
    m_pool.clear();
    m_pool.waitForDone();
}

DecodedPicture DecodeQueue::decode(const Job &job)
{
    DecodedPicture picture;
    if (job.work == Work::Nothing)
        return picture;
    if (job.work == Work::FacesOnly) {
        picture.subjects = FaceDetector::detectFile(job.path);
        return picture;
    }
    if (job.work == Work::Decode)
        picture.dateTaken = DateTaken::read(job.path);
    // The one decode the previews come from: at the preview's size, or at the face detector's
    // when faces are looked for too.
    const int side = job.findFaces ? FaceDetector::kMaxSide : kPreviewSide;
    QImage decoded;
    if (ImageLoader::isHeicPath(job.path)) {
        // One decode gives the converted copy and both previews; a cached copy gives them at
        // the reader's reduced size.
        QImage full;
        picture.heicCache = ImageLoader::resolveProcessorInputPath(job.path, &full, &picture.colourProblem);
        picture.unconvertible = picture.heicCache.isEmpty();
        if (picture.unconvertible || job.work == Work::ConvertOnly)
            return picture;
        decoded =
            full.isNull() ? ImageLoader::load(picture.heicCache, side) : ImageLoader::scaledToFit(full, side);
        picture.pictureSize = full.isNull() ? ImageLoader::pictureSize(picture.heicCache) : full.size();
    } else if (job.work == Work::Decode) {
        decoded = ImageLoader::load(job.path, side, &picture.colourProblem);
        picture.pictureSize = ImageLoader::pictureSize(job.path);
    }
    QImage preview = decoded;
    if (job.findFaces && job.work == Work::Decode) {
        picture.subjects = FaceDetector::detect(decoded);
        preview = previewFrom(decoded, picture.pictureSize);
    }
    const bool fits = preview.width() <= kThumbnailSide && preview.height() <= kThumbnailSide;
    picture.thumbnail =
        fits ? preview
             : preview.scaled(kThumbnailSide, kThumbnailSide, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    picture.preview = CompactImage(preview);
    picture.likeness = Likeness::of(picture.thumbnail);
    return picture;
}

void DecodeQueue::start(const QList<Job> &jobs)
{
    cancel();
    m_jobs = jobs;
    m_results = std::make_shared<Results>();
    m_results->done.resize(size_t(jobs.size()));
    m_dispatched = 0;
    m_delivered = 0;
    m_busy = true;
    dispatch();
    if (jobs.isEmpty())
        deliver();
}

void DecodeQueue::cancel()
{
    if (!m_busy)
        return;
    m_busy = false;
    m_pool.clear();
    m_results.reset(); // decodes still under way store into a copy nobody reads
    Q_EMIT finished();
}

void DecodeQueue::dispatch()
{
    // A few jobs per thread are under way at a time, so results never pile up.
    const int window = 16 * m_pool.maxThreadCount();
    while (m_busy && m_dispatched < m_jobs.size() && m_dispatched - m_delivered < window) {
        const int index = m_dispatched++;
        const Job job = m_jobs.at(index);
        const std::shared_ptr<Results> results = m_results;
        m_pool.start([this, index, job, results] {
            // Below the window's own threads, as the previews are: the window paints at once
            // (and the decoder's helper threads, which take this priority, wait too).
            QThread::currentThread()->setPriority(QThread::IdlePriority);
            DecodedPicture picture = decode(job);
            {
                const QMutexLocker lock(&results->mutex);
                results->done[size_t(index)] = std::move(picture);
            }
            // This queue outlives the job (its destructor waits for the pool).
            QMetaObject::invokeMethod(this, &DecodeQueue::deliver, Qt::QueuedConnection);
        });
    }
}

void DecodeQueue::deliver()
{
    if (m_delivering)
        return; // the delivery under way (in a dialog a slot opened) goes on when it returns
    m_delivering = true;
    while (m_busy && m_delivered < m_jobs.size()) {
        std::optional<DecodedPicture> picture;
        {
            const QMutexLocker lock(&m_results->mutex);
            picture.swap(m_results->done[size_t(m_delivered)]);
        }
        if (!picture)
            break; // the next in order is still being decoded
        const int index = m_delivered++;
        dispatch();
        Q_EMIT decoded(index, *picture);
    }
    m_delivering = false;
    if (m_busy && m_delivered == m_jobs.size()) {
        m_busy = false;
        Q_EMIT finished();
    }
}
