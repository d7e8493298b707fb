#include "run/ScratchFolders.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QLockFile>
#include <QRandomGenerator>
#include <QStandardPaths>

namespace {

QString tempLocation() { return QStandardPaths::writableLocation(QStandardPaths::TempLocation); }

QStringList roots()
{
    return {ScratchFolders::stagingRoot(), ScratchFolders::renderRoot(), ScratchFolders::keyRoot()};
}

QString lockPath(const QString &id)
{
    return QDir(ScratchFolders::stagingRoot()).filePath(id + QStringLiteral(".lock"));
}

std::unique_ptr<QLockFile> tryLock(const QString &id)
{
    auto lock = std::make_unique<QLockFile>(lockPath(id));
    lock->setStaleLockTime(0); // held for the window's whole life: only a dead owner makes it stale
    return lock->tryLock(0) ? std::move(lock) : nullptr;
}

void removeFolders(const QString &id)
{
    for (const QString &root : roots())
        QDir(QDir(root).filePath(id)).removeRecursively();
}

} // namespace

QString ScratchFolders::stagingRoot() { return tempLocation() + QStringLiteral("/tarngui_lite_bins"); }
QString ScratchFolders::renderRoot() { return tempLocation() + QStringLiteral("/tarngui_preproc"); }
QString ScratchFolders::keyRoot() { return tempLocation() + QStringLiteral("/tarngui_pubkey"); }

ScratchFolders::ScratchFolders()
{
    removeAbandoned();
    QDir().mkpath(stagingRoot());
    // The lock comes before the folders, so no other copy ever sees them unlocked.
    // A few tries: a taken id is unlikely, a temporary folder that takes no file is hopeless
    // (then the folders are unlocked and their users fail on their own).
    for (int attempt = 0; attempt < 8 && !m_lock; ++attempt) {
        m_id = QStringLiteral("%1-%2")
                   .arg(QCoreApplication::applicationPid())
                   .arg(QRandomGenerator::global()->generate() & 0xffffff, 6, 36, QLatin1Char('0'));
        m_lock = tryLock(m_id);
    }
    for (const QString &dir : {stagingDir(), renderDir(), keyDir()})
        QDir().mkpath(dir);
}

ScratchFolders::~ScratchFolders()
{
    removeFolders(m_id);
    if (m_lock)
        m_lock->unlock();
}

QString ScratchFolders::stagingDir() const { return QDir(stagingRoot()).filePath(m_id); }
QString ScratchFolders::renderDir() const { return QDir(renderRoot()).filePath(m_id); }
QString ScratchFolders::keyDir() const { return QDir(keyRoot()).filePath(m_id); }

void ScratchFolders::removeAbandoned()
{
    for (const QString &root : roots()) {
        const QDir dir(root);
        for (const QString &id : dir.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
            if (std::unique_ptr<QLockFile> lock = tryLock(id)) {
                removeFolders(id);
                lock->unlock();
            }
        }
        // Files an older version kept directly here (row_0000.bin, *_preproc.jpg, the key copy).
        for (const QString &file : dir.entryList(QDir::Files)) {
            if (!file.endsWith(QLatin1String(".lock")))
                QFile::remove(dir.filePath(file));
        }
    }
    // Locks whose folders are already gone.
    const QDir staging(stagingRoot());
    for (const QString &file : staging.entryList({QStringLiteral("*.lock")}, QDir::Files)) {
        if (std::unique_ptr<QLockFile> lock = tryLock(file.chopped(5)))
            lock->unlock();
    }
}
