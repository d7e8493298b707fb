// The entry of the lite edition: process identity, look and language, then the window.
#include "app/MainWindow.h"
#include "images/ImageLoader.h"
#include "ui/AppBranding.h"
#include "ui/AppTheme.h"
#include "ui/UiLanguage.h"

#include <QApplication>
#include <QFont>

#ifdef Q_OS_WIN
#include <windows.h>
#endif

int main(int argc, char *argv[])
{
#ifdef Q_OS_WIN
    // UTF-8 for text written to an attached console, ours and the children's. Without a
    // console (the normal case for a GUI program) both calls fail harmlessly.
    (void)SetConsoleOutputCP(65001);
    (void)SetConsoleCP(65001);
#endif

    QApplication app(argc, argv);
    UiLanguage::set(UiLanguage::defaultForEdition());
    QApplication::setApplicationName(QStringLiteral("Velora Offline Tool"));
    QApplication::setOrganizationName(QStringLiteral("PLABRUB"));
    QApplication::setApplicationVersion(QStringLiteral("1.0.3"));
    QApplication::setStyle(QStringLiteral("Fusion"));
    QApplication::setFont(QFont(QStringLiteral("Segoe UI"), 9));
    AppTheme::applyTo(&app);
    QApplication::setWindowIcon(AppBranding::appIcon());
    ImageLoader::applyAllocationLimit();

    MainWindow window;
    window.show();
    return app.exec();
}
