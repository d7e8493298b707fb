#pragma once

#include <QString>

class QApplication;

// The look: one green accent over the Fusion style, in a dark and a light variant that
// follow the system's colour scheme. Every sheet is built afresh at each call from the
// scheme of that moment.
namespace AppTheme {

bool isDarkMode();
void applyTo(QApplication *app);

QString applicationStyleSheet();
QString stepSectionStyleRules();
QString primaryButtonStyleSheet();
QString fillModeButtonStyleSheet();
QString actionButtonStyleSheet();
QString stopButtonStyleSheet();
QString preprocThumbBorderStyleSheet();
QString mutedLabelStyleSheet(const char *extra);

} // namespace AppTheme
