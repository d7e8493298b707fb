#include "playlist/FolderSwap.h"

#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>

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
    return QDir().mkdir(m_partial);
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
    }
    if (!QDir().rename(m_partial, m_target)) {
        if (why)
            *why = qt_error_string(-1);
        if (!old.isEmpty())
            QDir().rename(old, m_target);
        return Result::NewNotRenamed;
    }
    m_committed = true;
    if (!old.isEmpty())
        QDir(old).removeRecursively();
    return Result::Done;
}
