#pragma once

#include <QString>

// A real exFAT card for the tests: an image file on a loop device, formatted exFAT and mounted
// with exfat-fuse (so the system reports it as "fuseblk", as on older Linux systems), where this
// machine lets a test do that (root, /dev/fuse, a free loop device, mkfs.exfat and
// mount.exfat-fuse). whyNot() says what is missing otherwise. pull() stands for the card pulled
// out: the FUSE daemon is killed, and every later call on the mount fails. reinsert() mounts the
// image again where it was. The destructor unmounts and lets go of the loop device.
class ExfatCard
{
public:
    ExfatCard(const QString &image, const QString &mountPoint, int megabytes, const QString &label);
    ~ExfatCard();
    ExfatCard(const ExfatCard &) = delete;
    ExfatCard &operator=(const ExfatCard &) = delete;

    bool isMounted() const { return m_mounted; }
    QString whyNot() const { return m_whyNot; }
    QString path() const { return m_mountPoint; }
    QString device() const { return m_device; }

    void pull();
    bool reinsert();

private:
    bool mount();
    void unmount();
    qint64 daemon() const;

    QString m_image;
    QString m_mountPoint;
    QString m_device;
    QString m_whyNot;
    bool m_mounted = false;
};
