#pragma once

#include <QString>
#include <QStringList>

// The program's own command line: --help and --version, answered without a window, and the
// pictures and folders to add at start (as a drop adds them). Options the program does not
// know are left to Qt (-platform, -style, …) and otherwise ignored.
struct LaunchOptions {
    enum class Action { Run, Help, Version };

    Action action = Action::Run;
    QStringList pictures; // absolute paths

    // arguments as QCoreApplication::arguments() gives them (the program first).
    static LaunchOptions parse(const QStringList &arguments);
    static QString helpText();
    static QString versionText();
};
