#pragma once

#include <QString>

// Where the settings file "VeloraOfflineTool.ini" lives. Beside the program while it can be
// kept there: the file exists there and can be written, or it does not exist yet and the
// program folder takes new files. Otherwise (a program installed where the user cannot
// write) in the user's configuration folder (QStandardPaths::AppConfigLocation), where it
// is read back at the next start. Decided afresh at each call, by trying, not by asking the
// file system for permissions (which Windows answers wrongly for folders).
namespace SettingsLocation {

QString fileName();
QString besideProgram();
QString inUserConfig();
QString path();

} // namespace SettingsLocation
