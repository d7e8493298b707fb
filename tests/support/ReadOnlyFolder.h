#pragma once

#include <QString>

// Makes a folder read-only while the object lives, as well as this machine allows: for an
// ordinary user through its permissions, for root (whom permissions do not stop) through the
// file system's immutable flag. isReadOnly() says whether creating a file in it now really
// fails; afterwards the folder is as it was.
class ReadOnlyFolder
{
public:
    explicit ReadOnlyFolder(const QString &folder);
    ~ReadOnlyFolder();
    ReadOnlyFolder(const ReadOnlyFolder &) = delete;
    ReadOnlyFolder &operator=(const ReadOnlyFolder &) = delete;

    bool isReadOnly() const { return m_readOnly; }

private:
    QString m_folder;
    bool m_immutable = false;
    bool m_chmodded = false;
    bool m_readOnly = false;
};
