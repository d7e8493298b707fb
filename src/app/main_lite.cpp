// The entry of the lite edition: the command line, process identity, look and language, then
// the window.
#include "app/LaunchOptions.h"
#include "app/MainWindow.h"
#include "images/ImageLoader.h"
#include "ui/AppBranding.h"
#include "ui/AppTheme.h"
#include "ui/PaintThreads.h"
#include "ui/UiLanguage.h"

#include <QApplication>
#include <QFont>
#include <QTimer>

#include <cstdio>

#ifdef Q_OS_WIN
#include <windows.h>
#endif

namespace {

void setIdentity()
{
    QCoreApplication::setApplicationName(QStringLiteral("Velora Offline Tool"));
    QCoreApplication::setOrganizationName(QStringLiteral("PLABRUB"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VELORA_VERSION));
}

} // namespace

int main(int argc, char *argv[])
{
#ifdef Q_OS_WIN
    // UTF-8 for text written to an attached console, ours and the children's. Without a
    // console (the normal case for a GUI program) both calls fail harmlessly.
    (void)SetConsoleOutputCP(65001);
    (void)SetConsoleCP(65001);
#endif

    // --help and --version are answered before any window system is needed.
    {
        QCoreApplication console(argc, argv);
        setIdentity();
        UiLanguage::set(UiLanguage::defaultForEdition());
        const LaunchOptions options = LaunchOptions::parse(QCoreApplication::arguments());
        if (options.action != LaunchOptions::Action::Run) {
            const QString text = options.action == LaunchOptions::Action::Help ? LaunchOptions::helpText()
                                                                               : LaunchOptions::versionText();
            std::fputs(text.toUtf8().constData(), stdout);
            return 0;
        }
    }

    QApplication app(argc, argv);
    UiLanguage::set(UiLanguage::defaultForEdition());
    setIdentity();
    QApplication::setStyle(QStringLiteral("Fusion"));
    QApplication::setFont(QFont(QStringLiteral("Segoe UI"), 9));
    AppTheme::applyTo(&app);
    QApplication::setWindowIcon(AppBranding::appIcon());
    ImageLoader::prepareReaders();
    PaintThreads::keepNormal();

    MainWindow window;
    window.show();
    // The last session first (it may ask), then the pictures and folders on the command line
    // ("Open with"), which come in as a drop brings them.
    const QStringList pictures = LaunchOptions::parse(QApplication::arguments()).pictures;
    QTimer::singleShot(0, &window, [&window, pictures] {
        window.startSession();
        if (!pictures.isEmpty())
            window.addImageFiles(pictures);
    });
    return app.exec();
}
