// Pictures added with "Frame new pictures around faces": the real detector finds the face of a
// photograph at the side of a wide picture, the crop follows it until it is framed by hand,
// and a crop that cuts it is marked. Without the setting, adding is as before.
#include "app/MainWindow.h"
#include "images/ImageTableWidget.h"
#include "preprocess/PreprocWidget.h"

#include "TestFiles.h"
#include "WindowProbe.h"
#include "WindowTestCase.h"

#include <QCheckBox>
#include <QLabel>
#include <QPainter>
#include <QTest>

namespace {

// A wide picture (2400 x 1000) with the photograph of a face at its right: a centre crop for a
// portrait frame keeps its middle 0.3 and cuts the face.
QImage faceAtTheRight()
{
    QImage wide(2400, 1000, QImage::Format_RGB32);
    wide.fill(QColor(200, 200, 196));
    QPainter(&wide).drawImage(1750, 150, TestFiles::astronaut().scaled(600, 600));
    return wide;
}

} // namespace

class TestMainWindowFaces : public WindowTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void theSettingIsOffAtFirst();
    void aCropFollowsTheFaceUntilFramedByHand();
    void withoutTheSettingACropThatCutsAFaceIsNotKnown();

private:
    QCheckBox *setting() const
    {
        return withText<QCheckBox>(*m_window, QStringLiteral("Frame new pictures around faces"));
    }
    PreprocWidget *rowWidget(int row) const { return m_window->preprocWidgetAt(row); }
};

void TestMainWindowFaces::theSettingIsOffAtFirst()
{
    QVERIFY(setting());
    QVERIFY(!setting()->isChecked());
}

void TestMainWindowFaces::aCropFollowsTheFaceUntilFramedByHand()
{
    setting()->setChecked(true);
    addPictures({faceAtTheRight()});
    QTRY_COMPARE(m_window->imageTable()->rowCount(), 1);
    PreprocWidget *row = rowWidget(0);
    QVERIFY(row->subjects().has_value());
    QCOMPARE(row->subjects()->faces.size(), 1);
    QVERIFY(row->followsSubjects());
    QVERIFY(row->state() == PreprocState({FillMode::BlurFill, 0})); // a fill shows the whole picture
    QVERIFY(row->faceMark()->isHidden());

    check({0});
    QCOMPARE(m_window->applyFillToCheckedRows(FillMode::CenterCrop), 1);
    QCOMPARE(row->state().fillMode, FillMode::CenterCrop);
    QVERIFY2(row->state().focusX > 0.75, qPrintable(QString::number(row->state().focusX)));
    QVERIFY(row->faceMark()->isHidden());

    // Framed by hand back to the centre: the crop cuts the face, and the row says so.
    row->commitState({FillMode::CenterCrop, 0}, true);
    QVERIFY(!row->followsSubjects());
    QVERIFY(!row->faceMark()->isHidden());
    QCOMPARE(row->faceMark()->toolTip(), QStringLiteral("The crop cuts a face"));
    row->setFillMode(FillMode::WhiteFill, true); // the whole picture again: the mark goes
    QVERIFY(row->faceMark()->isHidden());
}

void TestMainWindowFaces::withoutTheSettingACropThatCutsAFaceIsNotKnown()
{
    addPictures({faceAtTheRight()});
    QTRY_COMPARE(m_window->imageTable()->rowCount(), 1);
    QVERIFY(!rowWidget(0)->subjects().has_value());
    check({0});
    m_window->applyFillToCheckedRows(FillMode::CenterCrop);
    QCOMPARE(rowWidget(0)->state().focusX, 0.5);
    QVERIFY(rowWidget(0)->faceMark()->isHidden());
}

QTEST_MAIN(TestMainWindowFaces)
#include "tst_MainWindowFaces.moc"
