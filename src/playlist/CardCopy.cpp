#include "playlist/CardCopy.h"

#include "playlist/CardMedium.h"
#include "playlist/CrashSteps.h"
#include "playlist/FileWriter.h"
#include "playlist/FolderSwap.h"
#include "playlist/PackageWriter.h"
#include "ui/AppStrings.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <filesystem>
#include <functional>
#include <utility>

namespace {

constexpr qint64 kChunkBytes = 1 << 20;
const QString kPackageFolder = QStringLiteral("vl_play");

// Writes the file at path on to copy chunk by chunk and gives its SHA-256; empty on a fault
// (error says which) or a cancel.
QByteArray copyHashed(const QString &path, const std::atomic_bool &cancel,
                      const std::function<void(qint64)> &advanced, QFile &copy, QString *error)
{
    const auto fail = [&](const QFile &file) {
        *error = file.errorString();
        return QByteArray();
    };
    QFile source(path);
    if (!source.open(QIODevice::ReadOnly))
        return fail(source);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    while (!source.atEnd()) {
        if (cancel)
            return {};
        const QByteArray chunk = source.read(kChunkBytes);
        if (chunk.isEmpty() && source.error() != QFileDevice::NoError)
            return fail(source);
        if (!FileWriter::writeFully(copy, chunk.constData(), chunk.size()))
            return fail(copy);
        hash.addData(chunk);
        advanced(chunk.size());
    }
    return hash.result();
}

// Copies one file, giving the source's SHA-256; empty on a fault or a cancel.
QByteArray copyFile(const QString &from, const QString &to, const std::atomic_bool &cancel,
                    const std::function<void(qint64)> &advanced, QString *error)
{
    QFile target(to);
    if (!target.open(QIODevice::WriteOnly)) {
        *error = target.errorString();
        return {};
    }
    const QByteArray hash = copyHashed(from, cancel, advanced, target, error);
    if (hash.isEmpty())
        return {};
    // On the card itself, not only in the computer's cache, before the read-back.
    if (!CardMedium::flush(target, error))
        return {};
    target.close();
    if (target.error() != QFileDevice::NoError) {
        *error = target.errorString();
        return {};
    }
    CardMedium::dropCached(to);
    return hash;
}

// Whether the folder at path can be listed: a card pulled out cannot, though its mount point
// may still pass for a folder (a stat answered from the system's cache, or QFileInfo's
// fallback).
bool answersAt(const QString &path)
{
    std::error_code error;
    const std::filesystem::directory_iterator listing(QFileInfo(path).filesystemAbsoluteFilePath(), error);
    return !error;
}

// Whether path is known not to be there (not merely unseen).
bool knownGone(const QString &path)
{
    std::error_code error;
    return !std::filesystem::exists(QFileInfo(path).filesystemAbsoluteFilePath(), error) && !error;
}

std::function<void(const QString &)> &beforeReadBack()
{
    static std::function<void(const QString &)> hook;
    return hook;
}

} // namespace

void CardCopy::setBeforeReadBack(std::function<void(const QString &)> hook)
{
    beforeReadBack() = std::move(hook);
}

CardCopy::CardCopy(QObject *parent)
    : QObject(parent)
{
}

CardCopy::~CardCopy()
{
    m_cancel = true;
    if (m_worker)
        m_worker->wait();
}

qint64 CardCopy::packageSize(const QString &packageDir, int *files)
{
    qint64 bytes = 0;
    const QFileInfoList entries = QDir(packageDir).entryInfoList(QDir::Files);
    for (const QFileInfo &entry : entries)
        bytes += entry.size();
    if (files)
        *files = int(entries.size());
    return bytes;
}

void CardCopy::start(const QString &packageDir, const QString &cardRoot)
{
    if (m_running)
        return;
    m_running = true;
    m_cancel = false;
    if (m_worker)
        m_worker->wait(); // the last copy's thread has ended its work already
    m_worker.reset(QThread::create([this, packageDir, cardRoot] {
        const Result result =
            copy(packageDir, cardRoot, m_cancel, [this](qint64 done, qint64 total, bool verifying) {
                QMetaObject::invokeMethod(
                    this, [this, done, total, verifying] { emit progress(done, total, verifying); },
                    Qt::QueuedConnection);
            });
        QMetaObject::invokeMethod(
            this,
            [this, result] {
                m_running = false;
                emit finished(result);
            },
            Qt::QueuedConnection);
    }));
    m_worker->start();
}

CardCopy::Result CardCopy::copy(const QString &packageDir, const QString &cardRoot,
                                const std::atomic_bool &cancel,
                                const std::function<void(qint64, qint64, bool)> &progress)
{
    Result result;
    const QDir card(cardRoot);
    result.target = card.filePath(kPackageFolder);
    const QFileInfoList files = QDir(packageDir).entryInfoList(QDir::Files, QDir::Name);
    for (const QFileInfo &file : files)
        result.bytes += file.size();
    result.files = int(files.size());

    FolderSwap swap(result.target, true);
    const auto fail = [&](const QString &reason) {
        // What is left is told as it is: nothing only once the hidden folder is gone from a card
        // that still answers (on a card pulled out, nothing can be seen, nor removed).
        const QString partial = swap.partial();
        swap.abandon();
        const bool answers = answersAt(cardRoot);
        result.leftNote = !partial.isEmpty() && (!answers || !knownGone(partial))
                              ? Str::cardCopyLeftBehind(QDir::toNativeSeparators(partial))
                              : Str::cardNothingLeft();
        result.cancelled = cancel;
        if (!result.cancelled) {
            const QString gone =
                answers ? QString() : Str::cardGone(QDir::toNativeSeparators(cardRoot)) + u'\n';
            result.error = gone + reason + QStringLiteral("\n\n") + result.leftNote;
        }
        return result;
    };
    // A vl_play on the card that holds anything but a package (the user's own files) or is not a
    // folder is never replaced, as in the save location.
    // What an interrupted copy left is put right first: the last good vl_play back in place.
    result.recovered = FolderSwap::recover(result.target, true);
    if (const QString problem = PackageWriter::checkReplaceable(result.target); !problem.isEmpty()) {
        result.error = problem;
        return result;
    }
    if (!swap.create())
        return fail(Str::cardCannotWrite(QDir::toNativeSeparators(cardRoot)));
    const QString partial = swap.partial();

    // The copy, then the read-back: the bar goes through both.
    const qint64 total = result.bytes * 2;
    qint64 done = 0;
    const auto advanced = [&](bool verifying) {
        return [&, verifying](qint64 bytes) {
            done += bytes;
            progress(done, total, verifying);
        };
    };
    QList<QByteArray> hashes;
    for (const QFileInfo &file : files) {
        QString error;
        const QByteArray hash = copyFile(file.absoluteFilePath(), QDir(partial).filePath(file.fileName()),
                                         cancel, advanced(false), &error);
        if (hash.isEmpty())
            return fail(Str::cardCopyFileFailed(file.fileName(), error));
        hashes << hash;
        CrashSteps::step();
    }
    for (int i = 0; i < files.size(); ++i) {
        const QString copied = QDir(partial).filePath(files.at(i).fileName());
        if (beforeReadBack())
            beforeReadBack()(copied);
        QString error;
        if (CardMedium::readHashed(copied, cancel, advanced(true), &error) != hashes.at(i))
            return fail(Str::cardVerifyFailed(files.at(i).fileName()));
        CrashSteps::step();
    }
    if (cancel)
        return fail(QString());

    // The swap: an old vl_play goes aside, the new one takes its name, the old one goes.
    switch (swap.commit()) {
    case FolderSwap::Result::Done:
        break;
    case FolderSwap::Result::OldNotMovedAside:
        return fail(Str::cardCannotReplace(QDir::toNativeSeparators(result.target)));
    case FolderSwap::Result::NewNotRenamed:
        return fail(Str::cardCannotWrite(QDir::toNativeSeparators(cardRoot)));
    }
    result.ok = true;
    return result;
}
