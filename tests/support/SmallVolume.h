#pragma once

#include <QString>

// A real volume of a chosen size: a tmpfs mounted over a folder while the object lives, where
// this machine lets the test mount one (root with the right to mount). isMounted() is false
// otherwise. Sizes are in whole pages of 4096 bytes, as tmpfs counts them.
class SmallVolume
{
public:
    static constexpr qint64 kPage = 4096;

    SmallVolume(const QString &folder, qint64 pages);
    ~SmallVolume();
    SmallVolume(const SmallVolume &) = delete;
    SmallVolume &operator=(const SmallVolume &) = delete;

    bool isMounted() const { return m_mounted; }
    QString path() const { return m_folder; }
    static qint64 pagesFor(qint64 bytes) { return (bytes + kPage - 1) / kPage; }

private:
    QString m_folder;
    bool m_mounted = false;
};
