#include "preprocess/PreprocControlPanel.h"
#include "ui/AppTheme.h"
#include "ui/UiLanguage.h"

#include "LanguageGuard.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

using Style = PreprocControlPanel::LayoutStyle;

class TestPreprocControlPanel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void defaultsOfEachUser();
    void directButtonOnlyWhenAllowed();
    void setStateWithDirectShowsBlurWithoutDirectButton();
    void fillClickChangesModeAndReports();
    void clickingTheCheckedButtonReportsNothing();
    void rotateButtonsOnlyReport();
    void buttonsAndCaptions();
    void layouts();
    void language();
    void looksAsWithSheetsOfItsOwn();
};

void TestPreprocControlPanel::initTestCase() { UiLanguage::set(UiLanguage::English); }

void TestPreprocControlPanel::defaultsOfEachUser()
{
    PreprocControlPanel panel;
    QCOMPARE(panel.state().fillMode, FillMode::BlurFill);
    QCOMPARE(panel.state().rotationDegrees, 0);
    QVERIFY(panel.fillButton(FillMode::Direct)); // defaults: direct allowed, rotation shown
    QVERIFY(panel.rotationLabel());
    QVERIFY(panel.fillButton(FillMode::BlurFill)->isChecked());
    QCOMPARE(panel.rotationLabel()->text(), QStringLiteral("Current 0°"));

    PreprocControlPanel batch(Style::SingleRow, false, false);
    QVERIFY(!batch.fillButton(FillMode::Direct));
    QVERIFY(!batch.rotationLabel());
}

void TestPreprocControlPanel::directButtonOnlyWhenAllowed()
{
    PreprocControlPanel panel(Style::Stacked, true, true);
    QCOMPARE(panel.fillButton(FillMode::Direct)->text(), QStringLiteral("TARN"));
    panel.setState({FillMode::Direct, 90});
    QVERIFY(panel.fillButton(FillMode::Direct)->isChecked());
    QVERIFY(!panel.fillButton(FillMode::BlurFill)->isChecked());
    QCOMPARE(panel.state().fillMode, FillMode::Direct);
}

void TestPreprocControlPanel::setStateWithDirectShowsBlurWithoutDirectButton()
{
    PreprocControlPanel panel(Style::Stacked, false, true);
    QSignalSpy spy(&panel, &PreprocControlPanel::fillModeSelected);
    panel.setState({FillMode::Direct, 180});
    QCOMPARE(panel.state().fillMode, FillMode::BlurFill);
    QVERIFY(panel.fillButton(FillMode::BlurFill)->isChecked());
    QCOMPARE(panel.rotationLabel()->text(), QStringLiteral("Current 180°"));
    panel.setState({FillMode::CenterCrop, 90});
    QVERIFY(panel.fillButton(FillMode::CenterCrop)->isChecked());
    QVERIFY(!panel.fillButton(FillMode::BlurFill)->isChecked());
    QCOMPARE(spy.count(), 0); // setState never emits
}

void TestPreprocControlPanel::fillClickChangesModeAndReports()
{
    PreprocControlPanel panel(Style::SingleRow, false, false);
    QSignalSpy spy(&panel, &PreprocControlPanel::fillModeSelected);
    QTest::mouseClick(panel.fillButton(FillMode::WhiteFill), Qt::LeftButton);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).value<FillMode>(), FillMode::WhiteFill);
    QCOMPARE(panel.state().fillMode, FillMode::WhiteFill); // at once, without the owner
    QVERIFY(panel.fillButton(FillMode::WhiteFill)->isChecked());
    QVERIFY(!panel.fillButton(FillMode::BlurFill)->isChecked());
}

void TestPreprocControlPanel::clickingTheCheckedButtonReportsNothing()
{
    PreprocControlPanel panel(Style::SingleRow, false, false);
    QSignalSpy spy(&panel, &PreprocControlPanel::fillModeSelected);
    QTest::mouseClick(panel.fillButton(FillMode::BlurFill), Qt::LeftButton);
    QCOMPARE(spy.count(), 0);
    QVERIFY(panel.fillButton(FillMode::BlurFill)->isChecked());
    QTest::mouseClick(panel.fillButton(FillMode::BlurFill), Qt::LeftButton);
    QVERIFY(panel.fillButton(FillMode::BlurFill)->isChecked());
    QCOMPARE(spy.count(), 0);
}

void TestPreprocControlPanel::rotateButtonsOnlyReport()
{
    PreprocControlPanel panel;
    QSignalSpy left(&panel, &PreprocControlPanel::rotateLeftRequested);
    QSignalSpy right(&panel, &PreprocControlPanel::rotateRightRequested);
    QTest::mouseClick(panel.rotateLeftButton(), Qt::LeftButton);
    QTest::mouseClick(panel.rotateRightButton(), Qt::LeftButton);
    QTest::mouseClick(panel.rotateRightButton(), Qt::LeftButton);
    QCOMPARE(left.count(), 1);
    QCOMPARE(right.count(), 2);
    QCOMPARE(panel.state().rotationDegrees, 0);
    QCOMPARE(panel.rotationLabel()->text(), QStringLiteral("Current 0°"));
}

void TestPreprocControlPanel::buttonsAndCaptions()
{
    PreprocControlPanel panel(Style::Stacked, false, true);
    const QList<QPair<FillMode, QString>> expected = {{FillMode::BlurFill, "Blur"},
                                                      {FillMode::WhiteFill, "White"},
                                                      {FillMode::BlackFill, "Black"},
                                                      {FillMode::CenterCrop, "Crop"}};
    for (const auto &[mode, text] : expected) {
        QPushButton *button = panel.fillButton(mode);
        QCOMPARE(button->text(), text);
        QCOMPARE(button->toolTip(), fillModeToolTip(mode));
        QVERIFY(button->isCheckable());
        QCOMPARE(button->height(), 22);
        QCOMPARE(button->minimumWidth(), 52);
        QCOMPARE(button->objectName(),
                 QStringLiteral("tarnFillModeBtn")); // styled by the application's sheet
    }
    QCOMPARE(panel.rotateLeftButton()->text(), QStringLiteral("Rotate left"));
    QCOMPARE(panel.rotateLeftButton()->toolTip(),
             QStringLiteral("Rotate 90° counter-clockwise (click to add)"));
    QCOMPARE(panel.rotateRightButton()->text(), QStringLiteral("Rotate right"));
    QCOMPARE(panel.rotateRightButton()->toolTip(), QStringLiteral("Rotate 90° clockwise (click to add)"));
    QVERIFY(!panel.rotateLeftButton()->isCheckable());
    QCOMPARE(panel.rotateLeftButton()->objectName(), QStringLiteral("tarnActionBtn"));
    QCOMPARE(PreprocControlPanel::buttonStyleSheet(), AppTheme::fillModeButtonStyleSheet());
    QCOMPARE(PreprocControlPanel::actionButtonStyleSheet(), AppTheme::actionButtonStyleSheet());
}

void TestPreprocControlPanel::layouts()
{
    PreprocControlPanel stacked(Style::Stacked, false, true);
    auto *column = qobject_cast<QVBoxLayout *>(stacked.layout());
    QVERIFY(column);
    QCOMPARE(column->spacing(), 3);
    QCOMPARE(column->count(), 2);
    QStringList captions;
    for (QLabel *label : stacked.findChildren<QLabel *>())
        captions << label->text();
    QVERIFY(captions.contains(QStringLiteral("Fill / crop")));
    QVERIFY(captions.contains(QStringLiteral("Rotate")));

    PreprocControlPanel single(Style::SingleRow, false, true);
    auto *row = qobject_cast<QHBoxLayout *>(single.layout());
    QVERIFY(row);
    QCOMPARE(row->spacing(), 8);
    captions.clear();
    for (QLabel *label : single.findChildren<QLabel *>())
        captions << label->text();
    QVERIFY(captions.contains(QStringLiteral("Fill / crop:")));
    QVERIFY(captions.contains(QStringLiteral("Rotate:")));
}

void TestPreprocControlPanel::language()
{
    PreprocControlPanel panel(Style::SingleRow, false, true);
    panel.setState({FillMode::BlurFill, 270});
    LanguageGuard zh(UiLanguage::Chinese);
    panel.applyLanguage();
    QCOMPARE(panel.fillButton(FillMode::BlurFill)->text(), QStringLiteral("模糊"));
    QCOMPARE(panel.rotateLeftButton()->text(), QStringLiteral("向左旋转"));
    QCOMPARE(panel.rotationLabel()->text(), QStringLiteral("当前 270°"));
}

void TestPreprocControlPanel::looksAsWithSheetsOfItsOwn()
{
    // The application's sheet styles the panel by its controls' names; the panel must look
    // exactly as when each control carried the sheet of its own, checked, hovered or not.
    qApp->setStyleSheet(AppTheme::applicationStyleSheet());
    PreprocControlPanel named(Style::Stacked, false, true);
    PreprocControlPanel own(Style::Stacked, false, true);
    for (QPushButton *button : own.findChildren<QPushButton *>()) {
        button->setStyleSheet(button->isCheckable() ? AppTheme::fillModeButtonStyleSheet()
                                                    : AppTheme::actionButtonStyleSheet());
        button->setObjectName(QString());
    }
    for (QLabel *label : own.findChildren<QLabel *>()) {
        label->setStyleSheet(AppTheme::mutedLabelStyleSheet("font-size:11px;"));
        label->setObjectName(QString());
    }
    for (PreprocControlPanel *panel : {&named, &own}) {
        panel->setState({FillMode::WhiteFill, 90});
        panel->resize(360, 60);
        panel->show();
    }
    QVERIFY(QTest::qWaitForWindowExposed(&named) && QTest::qWaitForWindowExposed(&own));
    const QImage expected = own.grab().toImage();
    QVERIFY(!expected.isNull());
    QCOMPARE(named.grab().toImage(), expected);
    qApp->setStyleSheet(QString());
}

QTEST_MAIN(TestPreprocControlPanel)
#include "tst_PreprocControlPanel.moc"
