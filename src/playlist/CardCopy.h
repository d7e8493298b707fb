#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <atomic>
#include <functional>
#include <memory>

class QThread;

// Copies a package folder onto a card and proves the copy, on a worker thread: the files go
// into a hidden folder of a temporary name at the card's root, are read back and compared with
// the source by SHA-256, and only then is that folder renamed to vl_play (a vl_play already
// there is put aside first and removed at the end, or put back when the rename fails). So a
// card pulled out, a Cancel or any fault leaves either the old vl_play or none of ours, never
// a half package under the real name, and nothing else of ours on the card. A vl_play on the
// card that holds files that are not a package's is never touched. progress() and
// finished() arrive on the owner's thread; the destructor cancels and waits for the worker.
class CardCopy : public QObject
{
    Q_OBJECT

public:
    struct Result {
        bool ok = false;
        bool cancelled = false;
        int files = 0;
        qint64 bytes = 0;
        QString target;        // the vl_play written on the card
        QString error;         // for the user, when neither ok nor cancelled
        QStringList recovered; // what an interrupted copy had left, put right first (FolderSwap::recover)
        // After a failure or a cancel, what the copy left on the card: said "nothing" only once
        // the removal of its hidden folder is done and checked (error ends with it too).
        QString leftNote;
    };

    explicit CardCopy(QObject *parent = nullptr);
    ~CardCopy() override;

    // The files of a package folder and their total size.
    static qint64 packageSize(const QString &packageDir, int *files);

    void start(const QString &packageDir, const QString &cardRoot);
    void cancel() { m_cancel = true; }
    bool isRunning() const { return m_running; }

    // Copies and verifies on the calling thread (what start() runs on its worker).
    static Result
    copy(const QString &packageDir, const QString &cardRoot, const std::atomic_bool &cancel,
         const std::function<void(qint64 done, qint64 total, bool verifying)>
             &progress); // Tests: called with each copied file's path just before it is read back.
    static void setBeforeReadBack(std::function<void(const QString &path)> hook);

Q_SIGNALS:
    void progress(qint64 done, qint64 total, bool verifying);
    void finished(const CardCopy::Result &result);

private:
    std::unique_ptr<QThread> m_worker;
    std::atomic_bool m_cancel{false};
    bool m_running = false;
};

Q_DECLARE_METATYPE(CardCopy::Result)
