#include "cli/PackRun.h"

#include "app/SettingsLocation.h"
#include "images/DateTaken.h"
#include "images/FaceDetector.h"
#include "images/ImageLoader.h"
#include "playlist/FolderSwap.h"
#include "playlist/PackageWriter.h"
#include "playlist/PlaylistExporter.h"
#include "preprocess/AutoFrame.h"
#include "preprocess/Caption.h"
#include "processor/ProcessorSetup.h"
#include "run/PackageJob.h"
#include "ui/AppStrings.h"

#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QSettings>

namespace {
const QString kLiteVariant = QStringLiteral("lite");
const QString kPackageFolder = QStringLiteral("vl_play");
} // namespace

PackRun::PackRun(const PackOptions &options, QTextStream &out, QTextStream &err)
    : m_options(options)
    , m_out(out)
    , m_err(err)
{
}

PackRun::~PackRun() { delete m_job; }

bool PackRun::prepare(int *exitCode)
{
    const auto refuse = [&](int code, const QString &reason) {
        m_err << reason << Qt::endl;
        *exitCode = code;
        return false;
    };
    // The processor the window would run: the configuration's "lite" variant, or the one the
    // user chose there by hand while it is still there.
    ProcessorConfig config;
    if (!config.load() || !config.variantIds().contains(kLiteVariant))
        return refuse(PackOptions::kProcessorMissing,
                      Str::exeNotFound(Str::appDisplayName(), ProcessorConfig::fileName()));
    const ProcessorSetup setup = ProcessorSetup::resolve(
        config, kLiteVariant, QSettings(SettingsLocation::path(), QSettings::IniFormat));
    if (setup.executable.isEmpty() || !QFileInfo::exists(setup.executable))
        return refuse(PackOptions::kProcessorMissing,
                      Str::exeNotFound(Str::appDisplayName(), ProcessorConfig::fileName()));
    if (!m_options.keyFile.isEmpty()) {
        // The key names the panel; one given on the command line must be the same.
        QString error;
        m_key = KeySnapshot::readForPanel(m_options.keyFile,
                                          m_options.panelGiven ? m_options.panelType : QString(), &error);
        if (m_key.isNull())
            return refuse(PackOptions::kKeyProblem, error);
        if (!m_key.guiPanelType().isEmpty())
            m_options.panelType = m_key.guiPanelType();
    }
    const PanelSpec panel = PlaylistExporter::panelFromGuiType(m_options.panelType, QString());
    if (!panel.ok)
        return refuse(PackOptions::kUsageError, panel.error);

    const QString problem = PackageWriter::checkTarget(QDir(m_options.outputParent).filePath(kPackageFolder));
    if (!problem.isEmpty())
        return refuse(PackOptions::kNoPackage, problem);
    if (!m_scratch.isValid())
        return refuse(PackOptions::kNoPackage, m_scratch.errorString());

    m_job = new PackageJob(m_scratch.filePath(QStringLiteral("out")),
                           m_scratch.filePath(QStringLiteral("render")),
                           m_scratch.filePath(QStringLiteral("key")));
    m_job->setProcessor(setup);
    m_job->setFrame(JobFrame{m_options.panelType, panel.size, m_options.landscape,
                             m_options.landscape ? QStringLiteral("90") : QStringLiteral("0")});
    m_job->setProcessorsAtOnce(m_options.jobs);
    return true;
}

JobPicture PackRun::preparedPicture(const PictureList::Picture &picture) const
{
    JobPicture prepared{picture.path, QString(), QDir::toNativeSeparators(picture.path), picture.state};
    // A HEIC/HEIF picture goes through its converted copy, as in the window; a colour profile
    // that cannot be used is said when it is converted, or else when the picture is rendered.
    ColourProfile::Problem problem = ColourProfile::Problem::None;
    const QString input = ImageLoader::resolveProcessorInputPath(picture.path, nullptr, &problem);
    if (!input.isEmpty() && QDir::fromNativeSeparators(input) != QDir::fromNativeSeparators(picture.path))
        prepared.heicCopy = input;
    if (problem != ColourProfile::Problem::None)
        m_err << Str::colourProfileWarning(QDir::toNativeSeparators(picture.path),
                                           problem == ColourProfile::Problem::Damaged)
              << Qt::endl;
    PreprocState &state = prepared.state;
    state.caption = Caption::resolved(state.caption, picture.path, DateTaken::read(picture.path));
    if (m_options.autoFrame) {
        const QString source = prepared.heicCopy.isEmpty() ? picture.path : prepared.heicCopy;
        const PictureSubjects subjects = FaceDetector::detectFile(source);
        if (subjects.detected)
            state = AutoFrame::frame(state, ImageLoader::pictureSize(source), subjects, m_job->frame().panel,
                                     m_options.landscape)
                        .state;
    }
    return prepared;
}

int PackRun::writePackage()
{
    PlaylistExportRequest request =
        m_job->packageRequest(PlaylistExporter::panelFromGuiType(m_options.panelType, QString()),
                              m_options.intervalMinutes, m_options.loop, m_key);
    request.outputDir = QDir(m_options.outputParent).filePath(kPackageFolder);
    for (const QString &line : FolderSwap::recover(request.outputDir, false))
        m_err << line << Qt::endl;
    const QString error = PlaylistExporter::exportPlaylist(request);
    if (!error.isEmpty()) {
        m_err << Str::playlistCreateFailed(error) << Qt::endl;
        return PackOptions::kNoPackage;
    }
    m_err << Str::playlistCreatedLog(QDir::toNativeSeparators(request.outputDir),
                                     int(request.frameNames.size()), request.intervalMinutes)
          << Qt::endl;
    return PackOptions::kPackageWritten;
}

int PackRun::run()
{
    int exitCode = PackOptions::kPackageWritten;
    if (!prepare(&exitCode))
        return exitCode;
    const int total = int(m_options.pictures.size());
    for (int i = 0; i < total; ++i)
        m_job->insert(quint64(i) + 1, preparedPicture(m_options.pictures.at(i)));

    // Progress in the pictures' order, whatever order their processors end in; the whole log
    // with --verbose.
    QObject::connect(m_job, &PackageJob::itemLogged, m_job, [this, total](quint64 id, int number) {
        m_out << Str::packProgressLine(number, total,
                                       QDir::toNativeSeparators(m_options.pictures.at(int(id) - 1).path),
                                       Str::rowStatusText(m_job->status(id), m_job->exitCode(id)))
              << Qt::endl;
    });
    QObject::connect(m_job, &PackageJob::colourProblem, m_job, [this](quint64 id, bool damaged) {
        if (m_job->picture(id)->heicCopy.isEmpty()) // a converted one was said already
            m_err << Str::colourProfileWarning(
                         QDir::toNativeSeparators(m_options.pictures.at(int(id) - 1).path), damaged)
                  << Qt::endl;
    });
    if (m_options.verbose)
        QObject::connect(m_job, &PackageJob::logLine, m_job,
                         [this](const QString &line) { m_out << line << Qt::endl; });
    QEventLoop loop;
    QObject::connect(m_job, &PackageJob::runFinished, &loop, &QEventLoop::quit);
    // A run whose every picture ends at once (no working folder) is over before the loop begins.
    if (m_job->start(m_key) && m_job->isRunning())
        loop.exec();

    const int made = int(m_job->frames().size());
    if (made == 0) {
        m_err << Str::packNothingMade(total) << Qt::endl << Str::packNothingMadeHint() << Qt::endl;
        return PackOptions::kNoPackage;
    }
    m_err << Str::allDone(made, total) << Qt::endl;
    return writePackage();
}
