#pragma once

#include <QMimeData>
#include <QStringList>
#include <QUrl>

#include <memory>

class QWidget;

// Real drag-and-drop as a window system delivers it: enter, move, then the drop, on a
// visible widget. Returns whether the drop was accepted.
bool dropOn(QWidget *target, const QMimeData *data);

// Mime data carrying the given local paths as file URLs.
std::unique_ptr<QMimeData> fileUrls(const QStringList &paths);
