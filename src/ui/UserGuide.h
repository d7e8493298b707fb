#pragma once

#include <QString>
#include <QUrl>

// The user guide installed with the program (share/doc/velora-offline-tool/user-guide.html
// beside the program's folders; on Windows user-guide.html beside the program), opened as a
// local file by the About box's link.
namespace UserGuide {

// The guide's file, or where it would be installed when it is not found; for the program in
// programDir (by default, this program's folder).
QString path(const QString &programFolder = QString());
QUrl url();

} // namespace UserGuide
