// The program with a session, for the session tests: it builds the real window with the
// program's identity, starts the session, adds the pictures named on its command line and turns
// the first a quarter to the right, then prints "saved" once the session file holds all of
// that, and waits to be killed.
#include "app/MainWindow.h"
#include "app/PictureList.h"
#include "preprocess/PreprocWidget.h"
#include "ui/UiLanguage.h"

#include <QApplication>
#include <QTimer>

#include <cstdio>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Velora Offline Tool"));
    QApplication::setOrganizationName(QStringLiteral("PLABRUB"));
    UiLanguage::set(UiLanguage::English);
    const QStringList pictures = app.arguments().mid(1);
    MainWindow window;
    window.show();
    window.startSession();
    window.addImageFiles(pictures);
    if (PreprocWidget *first = window.preprocWidgetAt(0))
        first->onRotateRight();
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        const std::optional<PictureList> list = PictureList::load(MainWindow::sessionFile(), nullptr);
        if (list && list->pictures.size() == pictures.size() &&
            list->pictures.value(0).state.rotationDegrees == 90) {
            poll.stop();
            std::printf("saved\n");
            std::fflush(stdout);
        }
    });
    poll.start(20);
    return app.exec();
}
