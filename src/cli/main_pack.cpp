// velora-pack: the playback package from the command line, made as the window makes it.
#include "cli/PackOptions.h"
#include "cli/PackRun.h"
#include "images/ImageLoader.h"
#include "ui/AppStrings.h"
#include "ui/UiLanguage.h"

#include <QGuiApplication>
#include <QTextStream>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>

#ifdef Q_OS_WIN
#include <windows.h>
#endif

namespace {

// Qt's own notes (such as the display-less platform's about its runtime folder) are not for
// velora-pack's users: its error stream is its own, and carries them only with --verbose.
bool g_verbose = false;

void keepQtNotesQuiet(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (g_verbose || type == QtCriticalMsg || type == QtFatalMsg)
        std::fprintf(stderr, "%s\n", qPrintable(message));
}

// Whether a caption is to be drawn: its text needs fonts, which only a GUI application has. A
// first reading of the command line, before any application exists; the real one follows.
bool drawsCaptions(int argc, char *argv[])
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    QString error;
    const std::optional<PackOptions> options = PackOptions::parse(arguments, &error);
    return options && std::any_of(options->pictures.cbegin(), options->pictures.cend(),
                                  [](const PictureList::Picture &picture) {
                                      return picture.state.caption.kind != CaptionKind::None;
                                  });
}

} // namespace

int main(int argc, char *argv[])
{
    for (int i = 1; i < argc; ++i)
        g_verbose = g_verbose || std::strcmp(argv[i], "--verbose") == 0;
    qInstallMessageHandler(keepQtNotesQuiet);
#ifdef Q_OS_WIN
    (void)SetConsoleOutputCP(65001); // UTF-8 on the console, for paths and the status marks
#endif
    // A core application, without widgets or a display. Only captions need more: their fonts
    // come with a GUI application, which then runs on the platform that needs no display
    // (unless told otherwise), as velora-pack has no window.
    std::unique_ptr<QCoreApplication> application;
    if (drawsCaptions(argc, argv)) {
#ifndef Q_OS_WIN
        if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
#endif
        application = std::make_unique<QGuiApplication>(argc, argv);
    } else {
        application = std::make_unique<QCoreApplication>(argc, argv);
    }
    QCoreApplication::setApplicationName(QStringLiteral("Velora Offline Tool"));
    QCoreApplication::setOrganizationName(QStringLiteral("PLABRUB"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VELORA_VERSION));
    UiLanguage::set(UiLanguage::defaultForEdition());
    ImageLoader::prepareReaders();

    QTextStream out(stdout);
    QTextStream err(stderr);
    QString error;
    const std::optional<PackOptions> options =
        PackOptions::parse(QCoreApplication::arguments().mid(1), &error);
    if (!options) {
        err << error << Qt::endl << Str::packSeeHelp() << Qt::endl;
        return PackOptions::kUsageError;
    }
    if (options->action == PackOptions::Action::Help) {
        out << PackOptions::helpText();
        return PackOptions::kPackageWritten;
    }
    if (options->action == PackOptions::Action::Version) {
        out << QStringLiteral("velora-pack ") << QCoreApplication::applicationVersion() << Qt::endl;
        return PackOptions::kPackageWritten;
    }
    return PackRun(*options, out, err).run();
}
