#pragma once

#include <QIcon>
#include <QPixmap>
#include <QString>

class QVBoxLayout;
class QWidget;

// The logo, the application icon and the header row (logo, title, optional version) that
// dialogs put at their top.
namespace AppBranding {

// Built once per process from ":/branding/logo.png"; empty (and retried) when it is missing.
QIcon appIcon();
void applyWindowIcon(QWidget *widget);
QPixmap logoPixmap(int size);

QWidget *makeHeaderRow(const QString &title, QWidget *parent, const QString &version);
void insertDialogHeader(QVBoxLayout *layout, const QString &title);
void updateHeaderTitle(QWidget *root, const QString &text);

} // namespace AppBranding
