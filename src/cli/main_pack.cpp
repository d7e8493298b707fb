// velora-pack: the playback package from the command line, made as the window makes it.
#include "cli/PackOptions.h"
#include "cli/PackRun.h"
#include "images/ImageLoader.h"
#include "ui/AppStrings.h"
#include "ui/UiLanguage.h"

#include <QCoreApplication>
#include <QTextStream>

#include <cstdio>

#ifdef Q_OS_WIN
#include <windows.h>
#endif

int main(int argc, char *argv[])
{
#ifdef Q_OS_WIN
    (void)SetConsoleOutputCP(65001); // UTF-8 on the console, for paths and the status marks
#endif
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Velora Offline Tool"));
    QCoreApplication::setOrganizationName(QStringLiteral("PLABRUB"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VELORA_VERSION));
    UiLanguage::set(UiLanguage::defaultForEdition());
    ImageLoader::prepareReaders();

    QTextStream out(stdout);
    QTextStream err(stderr);
    QString error;
    const std::optional<PackOptions> options = PackOptions::parse(app.arguments().mid(1), &error);
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
