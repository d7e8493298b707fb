#include "cli/PackRun.h"

#include "images/DateTaken.h"
#include "images/FaceDetector.h"
#include "images/ImageLoader.h"
#include "playlist/PackageWriter.h"
#include "playlist/PlaylistExporter.h"
#include "preprocess/AutoFrame.h"
#include "preprocess/Caption.h"
#include "run/ExportRender.h"
#include "run/ProcessorCommand.h"
#include "ui/AppStrings.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>

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

bool PackRun::prepare(int *exitCode)
{
    const auto refuse = [&](int code, const QString &reason) {
        m_err << reason << Qt::endl;
        *exitCode = code;
        return false;
    };
    // The configuration is found where the window finds it, and its "lite" variant is used.
    if (!m_config.load() || !m_config.variantIds().contains(kLiteVariant))
        return refuse(PackOptions::kProcessorMissing,
                      Str::exeNotFound(Str::appDisplayName(), ProcessorConfig::fileName()));
    m_variant = m_config.variant(kLiteVariant);
    m_executable = m_config.resolvedExecutable(kLiteVariant);
    m_workDir = m_config.resolvedWorkDir(kLiteVariant);
    if (m_executable.isEmpty() || !QFileInfo::exists(m_executable))
        return refuse(PackOptions::kProcessorMissing,
                      Str::exeNotFound(Str::appDisplayName(), ProcessorConfig::fileName()));

    if (!m_options.keyFile.isEmpty()) {
        QString error;
        m_key = KeySnapshot::read(m_options.keyFile, &error);
        if (m_key.isNull())
            return refuse(PackOptions::kKeyProblem, error);
        // The key names the panel; one given on the command line must be the same.
        const QString keyType = m_key.guiPanelType();
        if (!keyType.isEmpty()) {
            if (m_options.panelGiven && keyType != m_options.panelType)
                return refuse(PackOptions::kKeyProblem,
                              Str::keyFilePanelMismatch(m_key.path(), keyType, m_options.panelType));
            m_options.panelType = keyType;
        }
    }
    const PanelSpec panel = PlaylistExporter::panelFromGuiType(m_options.panelType, QString());
    if (!panel.ok)
        return refuse(PackOptions::kUsageError, panel.error);
    m_panel = panel.size;

    const QString problem = PackageWriter::checkTarget(QDir(m_options.outputParent).filePath(kPackageFolder));
    if (!problem.isEmpty())
        return refuse(PackOptions::kNoPackage, problem);
    if (!m_scratch.isValid())
        return refuse(PackOptions::kNoPackage, m_scratch.errorString());
    return true;
}

PreprocState PackRun::preparedState(const PictureList::Picture &picture, const QString &input) const
{
    PreprocState state = picture.state;
    state.caption = Caption::resolved(state.caption, picture.path, DateTaken::read(picture.path));
    if (!m_options.autoFrame)
        return state;
    const PictureSubjects subjects = FaceDetector::detectFile(input);
    if (!subjects.detected)
        return state;
    return AutoFrame::frame(state, ImageLoader::pictureSize(input), subjects, m_panel, m_options.landscape)
        .state;
}

QString PackRun::processPicture(int index, const PictureList::Picture &picture)
{
    const QString output =
        m_scratch.filePath(QStringLiteral("out_%1.bin").arg(index, 6, 10, QLatin1Char('0')));
    // A HEIC/HEIF picture goes through its converted copy, as in the window.
    ColourProfile::Problem conversionProblem = ColourProfile::Problem::None;
    QString input = ImageLoader::resolveProcessorInputPath(picture.path, nullptr, &conversionProblem);
    if (input.isEmpty())
        input = QDir::fromNativeSeparators(picture.path);
    ColourProfile::Problem renderProblem = ColourProfile::Problem::None;
    if (picture.state.fillMode != FillMode::Direct) {
        const QString folder = m_scratch.filePath(QStringLiteral("render_%1").arg(index));
        QDir().mkpath(folder);
        const RenderRequest request{input, preparedState(picture, input), m_panel, m_options.landscape,
                                    QFileInfo(picture.path).completeBaseName() +
                                        QStringLiteral("_preproc.jpg")};
        const QString rendered =
            ExportRender::write(request, QDir(folder).filePath(request.fileName), &renderProblem);
        if (!rendered.isEmpty())
            input = QDir::fromNativeSeparators(rendered);
        else if (m_options.verbose)
            m_out << Str::preprocFailedUseOriginal() << Qt::endl;
    }
    const ColourProfile::Problem colourProblem =
        conversionProblem != ColourProfile::Problem::None ? conversionProblem : renderProblem;
    if (colourProblem != ColourProfile::Problem::None)
        m_err << Str::colourProfileWarning(QDir::toNativeSeparators(picture.path),
                                           colourProblem == ColourProfile::Problem::Damaged)
              << Qt::endl;
    const QStringList args = ProcessorCommand::arguments(
        input, QDir::fromNativeSeparators(output), m_options.panelType, m_variant,
        m_key.isNull() ? QString() : m_key.pathForProcessor(m_scratch.filePath(QStringLiteral("key"))));
    if (m_options.verbose)
        m_out << Str::commandLineLog(QFileInfo(m_executable).fileName(), args) << Qt::endl;

    QProcess process;
    Str::RowStatus status = Str::RowStatus::StartFailed;
    int exitCode = 0;
    QString log;
    if (!QFileInfo(m_workDir).isDir()) {
        status = Str::RowStatus::Failed;
        log = Str::workDirMissing(m_workDir);
    } else if (!ProcessorCommand::start(&process, m_executable, args, m_workDir)) {
        log = Str::processStartFailed(process.errorString());
    } else {
        process.waitForFinished(-1);
        const ProcessorCommand::Outcome outcome =
            ProcessorCommand::outcome(process.exitCode(), process.exitStatus());
        status = outcome.status;
        exitCode = outcome.exitCode;
        log = outcome.log;
        if (m_options.verbose) {
            for (const QString &line : ProcessorCommand::outputLines(process.readAllStandardOutput()))
                m_out << Str::stdoutLogLine(line) << Qt::endl;
            for (const QString &line : ProcessorCommand::outputLines(process.readAllStandardError()))
                m_out << Str::stderrLogLine(line) << Qt::endl;
        }
    }
    m_out << Str::packProgressLine(index + 1, int(m_options.pictures.size()),
                                   QDir::toNativeSeparators(picture.path),
                                   Str::rowStatusText(status, exitCode))
          << Qt::endl;
    if (status != Str::RowStatus::Done) {
        if (m_options.verbose)
            m_out << log << Qt::endl;
        return QString();
    }
    return QFileInfo::exists(output) ? output : QString();
}

int PackRun::writePackage()
{
    PlaylistExportRequest request;
    request.outputDir = QDir(m_options.outputParent).filePath(kPackageFolder);
    request.intervalMinutes = m_options.intervalMinutes;
    request.loop = m_options.loop;
    request.panel = PlaylistExporter::panelFromGuiType(m_options.panelType, QString());
    request.encrypt = false;
    m_key.applyTo(&request);
    for (int i = 0; i < m_frames.size(); ++i) {
        request.frameNames << PlaylistExporter::frameName(i);
        request.sourcePaths << m_frames.at(i);
    }
    const QString error = PlaylistExporter::exportPlaylist(request);
    if (!error.isEmpty()) {
        m_err << Str::playlistCreateFailed(error) << Qt::endl;
        return PackOptions::kNoPackage;
    }
    m_err << Str::playlistCreatedLog(QDir::toNativeSeparators(request.outputDir), int(m_frames.size()),
                                     request.intervalMinutes)
          << Qt::endl;
    return PackOptions::kPackageWritten;
}

int PackRun::run()
{
    int exitCode = PackOptions::kPackageWritten;
    if (!prepare(&exitCode))
        return exitCode;
    const int total = int(m_options.pictures.size());
    for (int i = 0; i < total; ++i) {
        const QString frame = processPicture(i, m_options.pictures.at(i));
        if (frame.isEmpty())
            m_failed << QDir::toNativeSeparators(m_options.pictures.at(i).path);
        else
            m_frames << frame;
    }
    m_err << Str::allDone(int(m_frames.size()), total) << Qt::endl;
    if (m_frames.isEmpty()) {
        m_err << Str::noBinFiles() << Qt::endl;
        return PackOptions::kNoPackage;
    }
    return writePackage();
}
