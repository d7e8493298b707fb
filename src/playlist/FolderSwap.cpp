#include "playlist/FolderSwap.h"

#include "playlist/CrashSteps.h"
#include "ui/AppStrings.h"

#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QRegularExpression>

#include <algorithm>

FolderSwap::FolderSwap(const QString &target, bool hidden)
    : m_target(QDir::cleanPath(QDir::fromNativeSeparators(target)))
    , m_hidden(hidden)
{
}

FolderSwap::~FolderSwap() { abandon(); }

QString FolderSwap::sibling(const char *tag) const
{
    const QFileInfo target(m_target);
    const QString suffix = QString::number(QRandomGenerator::global()->generate64() & 0xffffffffffULL, 36);
    const QString name = (m_hidden ? QStringLiteral(".") : QString()) + target.fileName() + QLatin1Char('.') +
                         QLatin1String(tag) + QLatin1Char('-') + suffix;
    return QDir(target.absolutePath()).filePath(name);
}

bool FolderSwap::create()
{
    m_partial = sibling("partial");
    m_committed = false;
    const bool made = QDir().mkdir(m_partial);
    CrashSteps::step();
    return made;
}

void FolderSwap::abandon()
{
    if (!m_committed && !m_partial.isEmpty())
        QDir(m_partial).removeRecursively();
    m_partial.clear();
}

FolderSwap::Result FolderSwap::commit(QString *why)
{
    // Each rename is on one volume; if the second fails the first is undone.
    QString old;
    if (QFileInfo::exists(m_target)) {
        old = sibling("old");
        if (!QDir().rename(m_target, old)) {
            if (why)
                *why = qt_error_string(-1);
            return Result::OldNotMovedAside;
        }
        CrashSteps::step(); // here the target is missing: the old one is put back by recover()
    }
    if (!QDir().rename(m_partial, m_target)) {
        if (why)
            *why = qt_error_string(-1);
        if (!old.isEmpty())
            QDir().rename(old, m_target);
        return Result::NewNotRenamed;
    }
    m_committed = true;
    CrashSteps::step();
    if (!old.isEmpty())
        QDir(old).removeRecursively();
    return Result::Done;
}

QStringList FolderSwap::recover(const QString &target, bool hidden)
{
    const QFileInfo info(QDir::cleanPath(QDir::fromNativeSeparators(target)));
    const QDir parent(info.absolutePath());
    const QString base =
        QRegularExpression::escape((hidden ? QStringLiteral(".") : QString()) + info.fileName());
    const QRegularExpression ours(QStringLiteral("^%1\\.(partial|old)-[0-9a-z]+$").arg(base));
    QFileInfoList partials;
    QFileInfoList olds;
    for (const QFileInfo &entry : parent.entryInfoList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot)) {
        const QRegularExpressionMatch match = ours.match(entry.fileName());
        if (match.hasMatch())
            (match.captured(1) == QLatin1String("old") ? olds : partials) << entry;
    }
    QStringList found;
    // With no target, the newest old folder is the last good package: it comes back first.
    if (!QFileInfo::exists(info.absoluteFilePath()) && !olds.isEmpty()) {
        std::sort(olds.begin(), olds.end(),
                  [](const QFileInfo &a, const QFileInfo &b) { return a.lastModified() > b.lastModified(); });
        const QFileInfo last = olds.takeFirst();
        if (QDir().rename(last.absoluteFilePath(), info.absoluteFilePath()))
            found << Str::leftoverOldRestored(last.fileName(), info.fileName());
        else
            found << Str::leftoverOldNotRestored(QDir::toNativeSeparators(last.absoluteFilePath()));
    }
    // Said removed only once it is gone.
    const auto remove = [&found](const QFileInfo &folder, const QString &removed) {
        QDir(folder.absoluteFilePath()).removeRecursively();
        found << (QFileInfo::exists(folder.absoluteFilePath())
                      ? Str::leftoverNotRemoved(QDir::toNativeSeparators(folder.absoluteFilePath()))
                      : removed);
    };
    for (const QFileInfo &old : std::as_const(olds))
        remove(old, Str::leftoverOldRemoved(old.fileName()));
    for (const QFileInfo &partial : std::as_const(partials))
        remove(partial, Str::leftoverPartialRemoved(partial.fileName()));
    return found;
}
