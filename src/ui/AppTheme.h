#pragma once

#include <QString>

class QApplication;

// The look: one green accent over the Fusion style, in a dark and a light variant that
// follow the system's colour scheme. Every sheet is built afresh at each call from the
// scheme of that moment.
class QBoxLayout;
class QDialog;

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

// A dialog's Cancel and OK at the bottom right of its layout: OK the default, in the accent;
// they reject and accept the dialog.
void addConfirmButtons(QDialog *dialog, QBoxLayout *layout);

// The rules of the controls that every picture row repeats, as part of the application's
// sheet: fill-mode buttons (object name "tarnFillModeBtn", fillModeButtonStyleSheet()),
// action buttons ("tarnActionBtn", actionButtonStyleSheet()), captions ("tarnPanelCaption",
// muted, 11 px), the framed thumbnail ("tarnRowPreview", transparent) and the row's marks
// ("tarnLowResMark", "tarnFaceMark", "tarnToneMark", "tarnCaptionMark"). A sheet of each
// widget's own would be parsed and kept once per widget, for a thousand rows.
QString rowControlsStyleRules();

} // namespace AppTheme
