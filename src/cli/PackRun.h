#pragma once

#include "cli/PackOptions.h"
#include "run/KeySnapshot.h"

#include <QTemporaryDir>
#include <QTextStream>

class PackageJob;
struct JobPicture;

// One run of velora-pack: the pictures processed by the window's own run engine (PackageJob),
// with as many processors at once as --jobs asks; one progress line per picture on out, in the
// pictures' order (with --verbose the whole log instead), then the package of the pictures
// that were made, written by the same exporter, and a summary on err. run() gives
// velora-pack's exit code.
class PackRun
{
public:
    PackRun(const PackOptions &options, QTextStream &out, QTextStream &err);
    ~PackRun();

    int run();

private:
    bool prepare(int *exitCode);
    // The picture as the engine gets it: its HEIC/HEIF copy, its caption's text made for it,
    // and, with --auto-frame, its crop moved onto its faces.
    JobPicture preparedPicture(const PictureList::Picture &picture) const;
    int writePackage();

    PackOptions m_options;
    QTextStream &m_out;
    QTextStream &m_err;
    KeySnapshot m_key;
    QTemporaryDir m_scratch;
    PackageJob *m_job = nullptr;
};
