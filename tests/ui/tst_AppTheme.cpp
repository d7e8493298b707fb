#include "ui/AppTheme.h"

#include <QApplication>
#include <QPalette>
#include <QTest>

#include "TestPalette.h"

namespace {

// The sheets exactly as the design gives them, colours filled in.
const QString kDarkApp = QStringLiteral(
    "QProgressBar {  border: 1px solid #555;  border-radius: 4px;  background: #2a2a2a;  color: #e0e0e0;  "
    "text-align: center;  min-height: 18px;}QProgressBar::chunk {  background-color: #2B5E45;  "
    "border-radius: "
    "3px;}QPushButton#tarnBrowseBtn {  border: 1px solid #555;  border-radius: 3px;  padding: 2px 8px;  "
    "background: #3a3a3a;  color: #e0e0e0;}QPushButton#tarnBrowseBtn:hover {  background: #4a4a4a;  "
    "border-color: #2B5E45;  color: #D4E8DE;}QPushButton#tarnBrowseBtn:pressed {  background: #357A5C;}"
    "QGroupBox#tarnStepSection {  border: 2px solid #3d5c4a;  border-radius: 8px;  margin-top: 16px;  "
    "padding: 14px 12px 12px 12px;  background-color: #2a302c;}QGroupBox#tarnStepSection::title {  "
    "subcontrol-origin: margin;  subcontrol-position: top left;  left: 12px;  padding: 0 8px;  color: "
    "#D4E8DE;  font-weight: bold;}");
const QString kLightApp = QStringLiteral(
    "QProgressBar {  border: 1px solid #c8c8c8;  border-radius: 4px;  background: #f0f0f0;  text-align: "
    "center;  min-height: 18px;}QProgressBar::chunk {  background-color: #2B5E45;  border-radius: 3px;}"
    "QPushButton#tarnBrowseBtn {  border: 1px solid #bbb;  border-radius: 3px;  padding: 2px 8px;  "
    "background: #f5f5f5;  color: #333;}QPushButton#tarnBrowseBtn:hover {  background: #D4E8DE;  "
    "border-color: #2B5E45;  color: #2B5E45;}QPushButton#tarnBrowseBtn:pressed {  background: #357A5C;}"
    "QGroupBox#tarnStepSection {  border: 2px solid #b8c9c0;  border-radius: 8px;  margin-top: 16px;  "
    "padding: 14px 12px 12px 12px;  background-color: #f8faf9;}QGroupBox#tarnStepSection::title {  "
    "subcontrol-origin: margin;  subcontrol-position: top left;  left: 12px;  padding: 0 8px;  color: "
    "#2B5E45;  font-weight: bold;}");
const QString kPrimary = QStringLiteral(
    "QPushButton{  background:#2B5E45; color:white; border:none;  border-radius:4px; font-size:13px; "
    "padding:4px 12px;}QPushButton:hover{ background:#357A5C; }QPushButton:pressed{ background:#1F4A38; }"
    "QPushButton:disabled{ background:#cccccc; color:#888; }");
const QString kDarkFill = QStringLiteral(
    "QPushButton {  border: 1px solid #555; border-radius: 3px; padding: 0 6px;  background: #3a3a3a; color: "
    "#e0e0e0;  font-size: 11px; min-height: 22px; }QPushButton:checked {  background: #2B5E45; color: white; "
    "border-color: #1E4533; }QPushButton:hover:!checked { background: #4a4a4a; border-color: #666; }"
    "QPushButton:pressed { background: #357A5C; }");
const QString kLightFill = QStringLiteral(
    "QPushButton {  border: 1px solid #bbb; border-radius: 3px; padding: 0 6px;  background: #f5f5f5; color: "
    "#333;  font-size: 11px; min-height: 22px; }QPushButton:checked {  background: #2B5E45; color: white; "
    "border-color: #1E4533; }QPushButton:hover:!checked { background: #D4E8DE; }QPushButton:pressed { "
    "background: #357A5C; }");
const QString kDarkAction = QStringLiteral(
    "QPushButton {  border: 1px solid #555; border-radius: 3px; padding: 0 6px;  background: #3a3a3a; color: "
    "#e0e0e0;  font-size: 11px; min-height: 22px; }QPushButton:hover { background: #4a4a4a; border-color: "
    "#2B5E45; color: #D4E8DE; }QPushButton:pressed { background: #357A5C; }");
const QString kLightAction = QStringLiteral(
    "QPushButton {  border: 1px solid #bbb; border-radius: 3px; padding: 0 6px;  background: #f5f5f5; color: "
    "#333;  font-size: 11px; min-height: 22px; }QPushButton:hover { background: #D4E8DE; border-color: "
    "#2B5E45; "
    "color: #2B5E45; }QPushButton:pressed { background: #357A5C; }");
const QString kDarkStop = QStringLiteral(
    "QPushButton{  background:#3a3a3a; color:#D4E8DE; border:1px solid #555;  border-radius:4px; "
    "font-size:13px; padding:4px 12px;}QPushButton:hover{ background:#4a4a4a; border-color:#2B5E45; "
    "color:#D4E8DE; }QPushButton:pressed{ background:#2f2f2f; }QPushButton:disabled{ background:#2a2a2a; "
    "color:#666; border-color:#444; }");
const QString kLightStop = QStringLiteral(
    "QPushButton{  background:#e8ecea; color:#2B5E45; border:1px solid #b8c9c0;  border-radius:4px; "
    "font-size:13px; padding:4px 12px;}QPushButton:hover{ background:#d4e8de; border-color:#2B5E45; }"
    "QPushButton:pressed{ background:#c0d6cc; }QPushButton:disabled{ background:#eeeeee; color:#aaaaaa; "
    "border-color:#dddddd; }");

} // namespace

class TestAppTheme : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void darkModeFollowsWindowLightness();
    void darkSheets();
    void lightSheets();
    void stepSectionRulesLeaveTitleColourOpen();
    void mutedLabel();
    void applyToSetsPaletteAndSheet();
    void rowControlsRules();
};

void TestAppTheme::darkModeFollowsWindowLightness()
{
    // This Qt reports no colour scheme, so the window colour's lightness decides.
    setWindowLightness(127);
    QVERIFY(AppTheme::isDarkMode());
    setWindowLightness(128);
    QVERIFY(!AppTheme::isDarkMode());
    setWindowLightness(0);
    QVERIFY(AppTheme::isDarkMode());
    setWindowLightness(255);
    QVERIFY(!AppTheme::isDarkMode());
}

void TestAppTheme::darkSheets()
{
    setWindowLightness(127);
    QCOMPARE(AppTheme::applicationStyleSheet(), kDarkApp + AppTheme::rowControlsStyleRules());
    QCOMPARE(AppTheme::primaryButtonStyleSheet(), kPrimary);
    QCOMPARE(AppTheme::fillModeButtonStyleSheet(), kDarkFill);
    QCOMPARE(AppTheme::actionButtonStyleSheet(), kDarkAction);
    QCOMPARE(AppTheme::stopButtonStyleSheet(), kDarkStop);
    QCOMPARE(AppTheme::preprocThumbBorderStyleSheet(),
             QStringLiteral("border: 2px solid #2B5E45; border-radius: 2px;"));
}

void TestAppTheme::lightSheets()
{
    setWindowLightness(128);
    QCOMPARE(AppTheme::applicationStyleSheet(), kLightApp + AppTheme::rowControlsStyleRules());
    QCOMPARE(AppTheme::primaryButtonStyleSheet(), kPrimary);
    QCOMPARE(AppTheme::fillModeButtonStyleSheet(), kLightFill);
    QCOMPARE(AppTheme::actionButtonStyleSheet(), kLightAction);
    QCOMPARE(AppTheme::stopButtonStyleSheet(), kLightStop);
    QCOMPARE(AppTheme::preprocThumbBorderStyleSheet(),
             QStringLiteral("border: 2px solid #2B5E45; border-radius: 2px;"));
}

void TestAppTheme::stepSectionRulesLeaveTitleColourOpen()
{
    setWindowLightness(20);
    const QString dark = AppTheme::stepSectionStyleRules();
    QVERIFY(dark.contains(QStringLiteral("color: %1;")));
    QVERIFY(dark.contains(QStringLiteral("#3d5c4a")));
    QVERIFY(kDarkApp.endsWith(dark.arg(QStringLiteral("#D4E8DE"))));
    setWindowLightness(230);
    const QString light = AppTheme::stepSectionStyleRules();
    QVERIFY(light.contains(QStringLiteral("#b8c9c0")));
    QVERIFY(light.contains(QStringLiteral("#f8faf9")));
    QVERIFY(kLightApp.endsWith(light.arg(QStringLiteral("#2B5E45"))));
}

void TestAppTheme::mutedLabel()
{
    setWindowLightness(20);
    QCOMPARE(AppTheme::mutedLabelStyleSheet(nullptr), QStringLiteral("color:#a8a8a8;"));
    QCOMPARE(AppTheme::mutedLabelStyleSheet(""), QStringLiteral("color:#a8a8a8;"));
    QCOMPARE(AppTheme::mutedLabelStyleSheet("font-size:11px;"),
             QStringLiteral("color:#a8a8a8; font-size:11px;"));
    setWindowLightness(230);
    QCOMPARE(AppTheme::mutedLabelStyleSheet(nullptr), QStringLiteral("color:#555;"));
    QCOMPARE(AppTheme::mutedLabelStyleSheet("font-size:12px; padding:2px 0 8px 0;"),
             QStringLiteral("color:#555; font-size:12px; padding:2px 0 8px 0;"));
}

void TestAppTheme::applyToSetsPaletteAndSheet()
{
    AppTheme::applyTo(nullptr); // nothing happens
    QVERIFY(qApp->styleSheet().isEmpty());

    setWindowLightness(230);
    AppTheme::applyTo(qApp);
    const QPalette palette = QApplication::palette();
    for (QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        QCOMPARE(palette.color(group, QPalette::Highlight), QColor(0x2B, 0x5E, 0x45));
        QCOMPARE(palette.color(group, QPalette::HighlightedText), QColor(Qt::white));
        QCOMPARE(palette.color(group, QPalette::Link), QColor(0x2B, 0x5E, 0x45));
    }
    QCOMPARE(qApp->styleSheet(), kLightApp + AppTheme::rowControlsStyleRules());
}

void TestAppTheme::rowControlsRules()
{
    // The rows' sheets, as rules of the application's sheet that pick the controls by name.
    setWindowLightness(230);
    QString light = kLightFill;
    QString lightAction = kLightAction;
    QCOMPARE(AppTheme::rowControlsStyleRules(),
             light.replace("QPushButton", "QPushButton#tarnFillModeBtn") +
                 lightAction.replace("QPushButton", "QPushButton#tarnActionBtn") +
                 "QLabel#tarnPanelCaption {color:#555; font-size:11px;}"
                 "QLabel#tarnRowPreview { background: transparent; }"
                 "QLabel#tarnLowResMark, QLabel#tarnFaceMark { color: #e0a030; font-weight: bold; }"
                 "QLabel#tarnToneMark, QLabel#tarnCaptionMark { color: #3a9a6e; }"
                 "QLabel#tarnCaptionMark { font-size: 10px; font-weight: bold; }");
    setWindowLightness(40);
    QString dark = kDarkFill;
    QVERIFY(AppTheme::rowControlsStyleRules().startsWith(
        dark.replace("QPushButton", "QPushButton#tarnFillModeBtn")));
    QVERIFY(AppTheme::rowControlsStyleRules().contains(
        "QLabel#tarnPanelCaption {color:#a8a8a8; font-size:11px;}"));
}

QTEST_MAIN(TestAppTheme)
#include "tst_AppTheme.moc"
