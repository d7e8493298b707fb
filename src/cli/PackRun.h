#pragma once

#include "cli/PackOptions.h"
#include "processor/ProcessorConfig.h"
#include "run/KeySnapshot.h"

#include <QTemporaryDir>
#include <QTextStream>

// One run of velora-pack: each picture rendered and processed exactly as the window's run
// does it (ExportRender, ProcessorCommand), one progress line per picture on out,
// then the package of the pictures that were made, written by the same exporter, and a
// summary on err. run() gives velora-pack's exit code.
class PackRun
{
public:
    PackRun(const PackOptions &options, QTextStream &out, QTextStream &err);

    int run();

private:
    bool prepare(int *exitCode);
    // The frame of the picture, or an empty path when the processor made none.
    QString processPicture(int index, const PictureList::Picture &picture);
    // The picture's state as its frame is made: its caption's text made for it, and, with
    // --auto-frame, its crop moved onto its faces (found in input, the file the render reads).
    PreprocState preparedState(const PictureList::Picture &picture, const QString &input) const;
    int writePackage();

    PackOptions m_options;
    QTextStream &m_out;
    QTextStream &m_err;
    ProcessorConfig m_config;
    VariantConfig m_variant;
    QString m_executable;
    QString m_workDir;
    KeySnapshot m_key;
    QSize m_panel;
    QTemporaryDir m_scratch;
    QStringList m_frames; // the made frames, in order
    QStringList m_failed;
};
