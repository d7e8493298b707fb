// The settings file: read once at construction, written from the destructor.
#include "app/MainWindow.h"

void MainWindow::loadSettings()
{
    // The settings file comes with the device handling and the package.
}

void MainWindow::saveSettings() {}
