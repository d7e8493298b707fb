#pragma once

#include "processor/ProcessorConfig.h"

#include <QString>

class QSettings;

// The processor a run uses, resolved one way for the window and velora-pack: the
// configuration file decides the executable, its working folder and its LUT. A processor the
// user chose by hand (Browse) counts instead, but only while its file is still there; a
// working folder chosen by hand likewise, while it still exists.
struct ProcessorSetup {
    QString variantId;
    VariantConfig variant; // the configuration's record of it (its arguments, its key flag)
    QString executable;    // absolute; empty when neither the configuration nor a choice names one
    QString workDir;
    QString lut; // empty when none is found

    static ProcessorSetup resolve(const ProcessorConfig &config, const QString &variantId,
                                  const QString &chosenExecutable = QString(),
                                  const QString &chosenWorkDir = QString());
    // The same, with what the user chose by hand as the settings hold it: "variant/<id>/exe" and
    // "variant/<id>/work_dir", each counted only beside its "…_chosen=true", which only Browse
    // writes. A path an older version saved at every close carries no such mark: the
    // configuration decides for it.
    static ProcessorSetup resolve(const ProcessorConfig &config, const QString &variantId,
                                  const QSettings &settings);
    static void rememberChoice(QSettings *settings, const QString &variantId, const char *field,
                               const QString &path);

    // The LUT for a configured one and a working folder: the configured file when it exists,
    // else the first of the known LUT names found in workDir/test or workDir; absolute.
    static QString detectLut(const QString &configuredLut, const QString &workDir);
};
