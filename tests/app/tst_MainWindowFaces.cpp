// Pictures added with "Frame new pictures around faces": the real detector finds the face of a
// photograph at the side of a wide picture, the crop follows it until it is framed by hand,
// and a crop that cuts it is marked. Without the setting, adding is as before.
#include "app/MainWindow.h"
#include "images/ImageTableWidget.h"
#include "preprocess/PreprocWidget.h"

#include "ModalAnswerer.h"
#include "TestFiles.h"
#include "WindowProbe.h"
#include "WindowTestCase.h"

#include <QCheckBox>
#include <QDir>
#include <QLabel>
#include <QPainter>
#include <QTest>
#include <QTimer>

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
    void detectionInFlightEndsWithTheRows_data();
    void detectionInFlightEndsWithTheRows();

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

void TestMainWindowFaces::detectionInFlightEndsWithTheRows_data()
{
    QTest::addColumn<QString>("action");
    QTest::newRow("Clear") << "clear";
    QTest::newRow("Remove") << "remove";
    QTest::newRow("closing the window") << "close";
}

void TestMainWindowFaces::detectionInFlightEndsWithTheRows()
{
    QFETCH(QString, action);
    setting()->setChecked(true);
    const QString folder = m_fixture->path(QStringLiteral("faces-") + action);
    QVERIFY(QDir().mkpath(folder));
    const QImage face = faceAtTheRight().scaled(1200, 500);
    for (int i = 0; i < 60; ++i)
        QVERIFY(
            face.save(QDir(folder).filePath(QStringLiteral("face_%1.jpg").arg(i, 2, 10, QLatin1Char('0')))));
    QTimer watch;
    bool done = false;
    connect(&watch, &QTimer::timeout, this, [&] {
        if (done || !m_window || m_window->imageTable()->rowCount() < 5)
            return;
        done = true;
        if (action == QLatin1String("clear")) {
            m_window->onClearAll();
        } else if (action == QLatin1String("remove")) {
            check({0});
            m_window->onRemoveSelected();
        } else {
            m_window.reset();
        }
    });
    watch.start(5);
    ModalAnswerer answers(QMessageBox::Ok, [](QWidget *) {}); // the progress dialog is left alone
    m_window->addImageFiles({folder});
    QVERIFY(done);
    QTest::qWait(200); // nothing arrives late
    if (action == QLatin1String("clear"))
        QCOMPARE(m_window->imageTable()->rowCount(), 0);
    if (action == QLatin1String("remove")) {
        const int rows = m_window->imageTable()->rowCount();
        QVERIFY(rows >= 4 && rows < 60);
        for (int row = 0; row < rows; ++row)
            QVERIFY(rowWidget(row)->subjects().has_value());
    }
    if (action == QLatin1String("close"))
        QVERIFY(!m_window);
}

QTEST_MAIN(TestMainWindowFaces)
#include "tst_MainWindowFaces.moc"
