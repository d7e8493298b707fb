#pragma once

#include <QString>

// Where the settings file "VeloraOfflineTool.ini" lives. Beside the program while it can be
// kept there: the program folder lets a file be made and renamed in it (as the settings are
// written: a temporary file, then a rename), and the file, if it exists, can be written.
// Otherwise (a program installed where the user cannot write, even with a writable file left
// in it) in the user's configuration folder (QStandardPaths::AppConfigLocation), where it is
// read back at the next start; a file beside the program is carried over there the first
// time. Decided afresh at each call, by trying, not by asking the file system for permissions
// (which Windows answers wrongly for folders).
namespace SettingsLocation {

QString fileName();
QString besideProgram();
QString inUserConfig();
QString path();

} // namespace SettingsLocation
