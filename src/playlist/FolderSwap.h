#pragma once

#include <QString>
#include <QStringList>

// A folder put in place whole or not at all, for the package in the save location and its
// copy on a card alike: the new content is written into a folder beside the target, on the
// same volume ("<target>.partial-<random>", hidden with a leading dot when asked); commit()
// then moves an old target aside ("<target>.old-<random>"), renames the new folder into its
// place and removes the old one, putting the old one back when the rename fails. Until
// commit() succeeds, the new folder is removed with this object, so a failure leaves the
// target exactly as it was. What a crash or a kill leaves on the way (a new folder, or an old
// one with or without the target) is put right by recover() before the next swap.
class FolderSwap
{
public:
    enum class Result { Done, OldNotMovedAside, NewNotRenamed };

    FolderSwap(const QString &target, bool hidden);
    ~FolderSwap();
    FolderSwap(const FolderSwap &) = delete;
    FolderSwap &operator=(const FolderSwap &) = delete;

    // Makes the new folder; false when it cannot be made.
    bool create();
    QString partial() const { return m_partial; }
    QString target() const { return m_target; }

    // The swap; the system's reason for a failed rename in why.
    Result commit(QString *why = nullptr);
    // Removes the new folder now (the destructor does it otherwise).
    void abandon();

    // Puts right what an interrupted swap into target left, and returns a line for the log
    // for each thing found: an old folder is put back as target when target is missing (the
    // last good package; the newest, if there are several), and the other new and old folders
    // of ours are removed.
    static QStringList recover(const QString &target, bool hidden);

private:
    QString sibling(const char *tag) const;

    QString m_target;
    bool m_hidden = false;
    QString m_partial;
    bool m_committed = false;
};
