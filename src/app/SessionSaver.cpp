#include "app/SessionSaver.h"

#include <QDir>
#include <QFileInfo>
#include <QMetaObject>
#include <QPointer>

#include <utility>

SessionSaver::SessionSaver(const QString &path, QObject *parent)
    : QObject(parent)
    , m_path(path)
{
    m_pool.setMaxThreadCount(1);
}

SessionSaver::~SessionSaver() { m_pool.waitForDone(); }

void SessionSaver::save(const PictureList &list)
{
    if (m_busy) {
        m_waiting = list;
        return;
    }
    startWrite(list);
}

void SessionSaver::startWrite(const PictureList &list)
{
    m_busy = true;
    const QString path = m_path;
    const QPointer<SessionSaver> self(this);
    m_pool.start([self, path, list] {
        QString error;
        QDir().mkpath(QFileInfo(path).absolutePath());
        const bool ok = list.save(path, &error);
        // Queued to the owner's thread: dropped if the saver is gone by then.
        QMetaObject::invokeMethod(
            self, [self, ok, error] { self->onWritten(ok, error); }, Qt::QueuedConnection);
    });
}

void SessionSaver::onWritten(bool ok, const QString &error)
{
    m_busy = false;
    Q_EMIT written(ok, error);
    if (m_waiting)
        startWrite(*std::exchange(m_waiting, std::nullopt));
}

bool SessionSaver::saveNow(const PictureList &list, QString *error)
{
    m_pool.waitForDone();
    m_waiting.reset();
    QDir().mkpath(QFileInfo(m_path).absolutePath());
    return list.save(m_path, error);
}
