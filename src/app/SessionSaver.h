#pragma once

#include "app/PictureList.h"

#include <QObject>
#include <QThreadPool>

#include <optional>

// Writes the session, a picture list, on a worker thread of its own: one write at a time, each
// through a temporary file and a rename (PictureList::save), the newest list winning (one
// handed over while a write is under way is written after it; any handed over in between are
// skipped). written() reports each end on the owner's thread. The destructor waits for the
// write under way, which touches nothing but its own copy of the list and the file.
class SessionSaver : public QObject
{
    Q_OBJECT

public:
    explicit SessionSaver(const QString &path, QObject *parent = nullptr);
    ~SessionSaver() override;

    QString path() const { return m_path; }
    void save(const PictureList &list);
    // Waits for the write under way, then writes list at once (the program's end).
    bool saveNow(const PictureList &list, QString *error = nullptr);
    bool isBusy() const { return m_busy; }

Q_SIGNALS:
    void written(bool ok, const QString &error);

private:
    void startWrite(const PictureList &list);
    void onWritten(bool ok, const QString &error);

    QString m_path;
    QThreadPool m_pool;
    bool m_busy = false;
    std::optional<PictureList> m_waiting;
};
