#pragma once

#include <QString>

#include <memory>

class QLockFile;

// The temporary folders of one window, each a subfolder of its own below the system's
// temporary location: the processor's outputs ("tarngui_lite_bins/<id>"), the rendered
// pictures ("tarngui_preproc/<id>") and the staged key ("tarngui_pubkey/<id>"). A lock file
// held while the object lives marks them as in use. The destructor removes them; the
// constructor first removes the folders of copies that ended without doing so (their lock
// is stale). So two copies of the program, or two windows, never touch each other's files,
// and nothing of a run outlives the window.
class ScratchFolders
{
public:
    ScratchFolders();
    ~ScratchFolders();
    ScratchFolders(const ScratchFolders &) = delete;
    ScratchFolders &operator=(const ScratchFolders &) = delete;

    QString id() const { return m_id; }
    QString stagingDir() const;
    QString renderDir() const;
    QString keyDir() const;

    // The shared parents, below the system's temporary location.
    static QString stagingRoot();
    static QString renderRoot();
    static QString keyRoot();

    // Removes the folders whose owner is gone (no live lock), and files an older version
    // left directly in the parents.
    static void removeAbandoned();

private:
    QString m_id;
    std::unique_ptr<QLockFile> m_lock;
};
