#include "ui/AppTheme.h"

#include "ui/AppStrings.h"

#include <QApplication>
#include <QBoxLayout>
#include <QDialog>
#include <QPalette>
#include <QPushButton>
#include <QStyleHints>

namespace AppTheme {

namespace {
const QLatin1String kAccent("#2B5E45");
const QLatin1String kAccentLight("#357A5C");
const QLatin1String kAccentDark("#1F4A38");
const QLatin1String kAccentBorder("#1E4533");
const QLatin1String kAccentPale("#D4E8DE");
} // namespace

bool isDarkMode()
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
    if (const QStyleHints *hints = QGuiApplication::styleHints()) {
        switch (hints->colorScheme()) {
        case Qt::ColorScheme::Dark:
            return true;
        case Qt::ColorScheme::Light:
            return false;
        default:
            break;
        }
    }
#endif
    // Scheme unknown (always so before Qt 6.5): the window colour decides.
    return QGuiApplication::palette().color(QPalette::Window).lightness() < 128;
}

void applyTo(QApplication *app)
{
    if (!app)
        return;
    QPalette palette = QApplication::palette();
    palette.setColor(QPalette::Highlight, QColor(kAccent));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(kAccent));
    QApplication::setPalette(palette);
    app->setStyleSheet(applicationStyleSheet());
}

QString applicationStyleSheet()
{
    const QString progressAndBrowse =
        isDarkMode()
            ? QStringLiteral(
                  "QProgressBar {  border: 1px solid #555;  border-radius: 4px;  background: #2a2a2a;"
                  "  color: #e0e0e0;  text-align: center;  min-height: 18px;}"
                  "QProgressBar::chunk {  background-color: %1;  border-radius: 3px;}"
                  "QPushButton#tarnBrowseBtn {  border: 1px solid #555;  border-radius: 3px;"
                  "  padding: 2px 8px;  background: #3a3a3a;  color: #e0e0e0;}"
                  "QPushButton#tarnBrowseBtn:hover {  background: #4a4a4a;  border-color: %1;"
                  "  color: %2;}"
                  "QPushButton#tarnBrowseBtn:pressed {  background: %3;}")
            : QStringLiteral("QProgressBar {  border: 1px solid #c8c8c8;  border-radius: 4px;"
                             "  background: #f0f0f0;  text-align: center;  min-height: 18px;}"
                             "QProgressBar::chunk {  background-color: %1;  border-radius: 3px;}"
                             "QPushButton#tarnBrowseBtn {  border: 1px solid #bbb;  border-radius: 3px;"
                             "  padding: 2px 8px;  background: #f5f5f5;  color: #333;}"
                             "QPushButton#tarnBrowseBtn:hover {  background: %2;  border-color: %1;"
                             "  color: %1;}"
                             "QPushButton#tarnBrowseBtn:pressed {  background: %3;}");
    const QString titleColour = isDarkMode() ? kAccentPale : kAccent;
    return progressAndBrowse.arg(kAccent, kAccentPale, kAccentLight) +
           stepSectionStyleRules().arg(titleColour) + rowControlsStyleRules();
}

QString rowControlsStyleRules()
{
    const QLatin1String button("QPushButton");
    return fillModeButtonStyleSheet().replace(button, QLatin1String("QPushButton#tarnFillModeBtn")) +
           actionButtonStyleSheet().replace(button, QLatin1String("QPushButton#tarnActionBtn")) +
           QStringLiteral("QLabel#tarnPanelCaption {") + mutedLabelStyleSheet("font-size:11px;") +
           QStringLiteral("}QLabel#tarnRowPreview { background: transparent; }"
                          "QLabel#tarnLowResMark, QLabel#tarnFaceMark { color: #e0a030; font-weight: bold; }"
                          "QLabel#tarnToneMark, QLabel#tarnCaptionMark { color: #3a9a6e; }"
                          "QLabel#tarnCaptionMark { font-size: 10px; font-weight: bold; }");
}

QString stepSectionStyleRules()
{
    // The title colour (%1) is left open for the caller.
    QString rules = QStringLiteral(
        "QGroupBox#tarnStepSection {  border: 2px solid #3d5c4a;  border-radius: 8px;  margin-top: 16px;"
        "  padding: 14px 12px 12px 12px;  background-color: #2a302c;}"
        "QGroupBox#tarnStepSection::title {  subcontrol-origin: margin;  subcontrol-position: top left;"
        "  left: 12px;  padding: 0 8px;  color: %1;  font-weight: bold;}");
    if (!isDarkMode()) {
        rules.replace(QLatin1String("#3d5c4a"), QLatin1String("#b8c9c0"));
        rules.replace(QLatin1String("#2a302c"), QLatin1String("#f8faf9"));
    }
    return rules;
}

QString primaryButtonStyleSheet()
{
    return QStringLiteral("QPushButton{  background:%1; color:white; border:none;  border-radius:4px;"
                          " font-size:13px; padding:4px 12px;}"
                          "QPushButton:hover{ background:%2; }"
                          "QPushButton:pressed{ background:%3; }"
                          "QPushButton:disabled{ background:#cccccc; color:#888; }")
        .arg(kAccent, kAccentLight, kAccentDark);
}

QString fillModeButtonStyleSheet()
{
    if (isDarkMode()) {
        return QStringLiteral("QPushButton {  border: 1px solid #555; border-radius: 3px; padding: 0 6px;"
                              "  background: #3a3a3a; color: #e0e0e0;  font-size: 11px; min-height: 22px; }"
                              "QPushButton:checked {  background: %1; color: white; border-color: %2; }"
                              "QPushButton:hover:!checked { background: #4a4a4a; border-color: #666; }"
                              "QPushButton:pressed { background: %3; }")
            .arg(kAccent, kAccentBorder, kAccentLight);
    }
    return QStringLiteral("QPushButton {  border: 1px solid #bbb; border-radius: 3px; padding: 0 6px;"
                          "  background: #f5f5f5; color: #333;  font-size: 11px; min-height: 22px; }"
                          "QPushButton:checked {  background: %1; color: white; border-color: %2; }"
                          "QPushButton:hover:!checked { background: %3; }"
                          "QPushButton:pressed { background: %4; }")
        .arg(kAccent, kAccentBorder, kAccentPale, kAccentLight);
}

QString actionButtonStyleSheet()
{
    if (isDarkMode()) {
        return QStringLiteral("QPushButton {  border: 1px solid #555; border-radius: 3px; padding: 0 6px;"
                              "  background: #3a3a3a; color: #e0e0e0;  font-size: 11px; min-height: 22px; }"
                              "QPushButton:hover { background: #4a4a4a; border-color: %1; color: %2; }"
                              "QPushButton:pressed { background: %3; }")
            .arg(kAccent, kAccentPale, kAccentLight);
    }
    return QStringLiteral("QPushButton {  border: 1px solid #bbb; border-radius: 3px; padding: 0 6px;"
                          "  background: #f5f5f5; color: #333;  font-size: 11px; min-height: 22px; }"
                          "QPushButton:hover { background: %1; border-color: %2; color: %2; }"
                          "QPushButton:pressed { background: %3; }")
        .arg(kAccentPale, kAccent, kAccentLight);
}

QString stopButtonStyleSheet()
{
    if (isDarkMode()) {
        return QStringLiteral("QPushButton{  background:#3a3a3a; color:#D4E8DE; border:1px solid #555;"
                              "  border-radius:4px; font-size:13px; padding:4px 12px;}"
                              "QPushButton:hover{ background:#4a4a4a; border-color:%1; color:%2; }"
                              "QPushButton:pressed{ background:#2f2f2f; }"
                              "QPushButton:disabled{ background:#2a2a2a; color:#666; border-color:#444; }")
            .arg(kAccent, kAccentPale);
    }
    return QStringLiteral("QPushButton{  background:#e8ecea; color:#2B5E45; border:1px solid #b8c9c0;"
                          "  border-radius:4px; font-size:13px; padding:4px 12px;}"
                          "QPushButton:hover{ background:#d4e8de; border-color:%1; }"
                          "QPushButton:pressed{ background:#c0d6cc; }"
                          "QPushButton:disabled{ background:#eeeeee; color:#aaaaaa; border-color:#dddddd; }")
        .arg(kAccent);
}

QString preprocThumbBorderStyleSheet()
{
    return QStringLiteral("border: 2px solid %1; border-radius: 2px;").arg(kAccent);
}

QString mutedLabelStyleSheet(const char *extra)
{
    const QLatin1String muted = isDarkMode() ? QLatin1String("#a8a8a8") : QLatin1String("#555");
    if (!extra || !*extra)
        return QStringLiteral("color:%1;").arg(muted);
    return QStringLiteral("color:%1; %2").arg(muted, QString::fromUtf8(extra));
}

void addConfirmButtons(QDialog *dialog, QBoxLayout *layout)
{
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    auto *cancel = new QPushButton(Str::cancel(), dialog);
    auto *ok = new QPushButton(Str::confirm(), dialog);
    ok->setDefault(true);
    ok->setStyleSheet(primaryButtonStyleSheet());
    buttons->addWidget(cancel);
    buttons->addWidget(ok);
    layout->addLayout(buttons);
    QObject::connect(cancel, &QPushButton::clicked, dialog, &QDialog::reject);
    QObject::connect(ok, &QPushButton::clicked, dialog, &QDialog::accept);
}

} // namespace AppTheme
