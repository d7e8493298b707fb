// The program as a user installs it, for the settings tests: started from its own folder, it
// builds the real window with the program's identity. "--save DIR" sets the save location and
// closes the window (which saves the settings); "--load" builds a window and prints the save
// location it restored. Both print the settings file used. "--change DIR" sets the save
// location, says "changed" and runs until it is killed.
#include "app/MainWindow.h"
#include "app/SettingsLocation.h"
#include "ui/UiLanguage.h"

#include "WindowProbe.h"

#include <QApplication>
#include <QLineEdit>

#include <cstdio>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Velora Offline Tool"));
    QApplication::setOrganizationName(QStringLiteral("PLABRUB"));
    UiLanguage::set(UiLanguage::English);
    const QStringList args = app.arguments().mid(1);
    {
        MainWindow window;
        if (args.value(0) == QLatin1String("--change")) {
            // Changed, then left running until the test kills it.
            saveLocation(window)->setText(args.value(1));
            std::printf("changed\n");
            std::fflush(stdout);
            return app.exec();
        }
        if (args.value(0) == QLatin1String("--save"))
            saveLocation(window)->setText(args.value(1));
        else
            std::printf("location %s\n", qPrintable(saveLocation(window)->text()));
    }
    std::printf("settings %s\n", qPrintable(SettingsLocation::path()));
    return 0;
}
