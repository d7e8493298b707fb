// Pictures added with "Frame new pictures around faces": the real detector finds the face of a
// photograph at the side of a wide picture, the crop follows it until it is framed by hand,
// and a crop that cuts it is marked. Without the setting, adding is as before.
#include "app/MainWindow.h"
#include "images/ImageTableWidget.h"
#include "preprocess/CaptionControls.h"
#include "preprocess/ImagePreviewDialog.h"
#include "preprocess/PreprocControlPanel.h"
#include "preprocess/PreprocWidget.h"
#include "preprocess/PreviewRenderer.h"

#include "ModalAnswerer.h"
#include "TestFiles.h"
#include "WindowProbe.h"
#include "WindowTestCase.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLocale>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
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
    void theSettingIsRemembered();
    void autoFrameLooksForTheFacesItDoesNotKnow();
    void autoFrameSearchEndsWithTheRows_data();
    void autoFrameSearchEndsWithTheRows();
    void thePreviewShowsTheFaces();
    void captionsAreMarkedWithWhatTheyWrite();

private:
    QCheckBox *setting() const
    {
        return withText<QCheckBox>(*m_window, QStringLiteral("Frame new pictures around faces"));
    }
    PreprocWidget *rowWidget(int row) const { return m_window->preprocWidgetAt(row); }
    QString logText() const { return m_window->findChild<QPlainTextEdit *>()->toPlainText(); }
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

void TestMainWindowFaces::theSettingIsRemembered()
{
    setting()->setChecked(true);
    m_window.reset(); // it saves its settings as it goes
    m_window = std::make_unique<MainWindow>();
    QVERIFY(setting()->isChecked());
    setting()->setChecked(false);
    m_window.reset();
    m_window = std::make_unique<MainWindow>();
    QVERIFY(!setting()->isChecked());
}

void TestMainWindowFaces::autoFrameLooksForTheFacesItDoesNotKnow()
{
    addPictures({faceAtTheRight(), faceAtTheRight()});
    QTRY_COMPARE(m_window->imageTable()->rowCount(), 2);
    check({0, 1});
    m_window->applyFillToCheckedRows(FillMode::CenterCrop);
    QVERIFY(!rowWidget(0)->subjects());
    PreviewRenderer *thumbnails = m_window->findChild<PreviewRenderer *>();
    QTRY_VERIFY(thumbnails->isIdle()); // the centre-cropped thumbnails are drawn
    const QImage centred = rowWidget(1)->previewLabel()->pixmap().toImage();
    QPushButton *button = withText<QPushButton>(*m_window, QStringLiteral("Auto-frame"));
    QVERIFY(button);
    QTest::mouseClick(button, Qt::LeftButton);
    // Looked for on worker threads; the button says how far, and the rows follow their faces.
    QCOMPARE(button->text(), QStringLiteral("Looking for faces: 0 of 2"));
    QVERIFY(!rowWidget(0)->subjects());
    QTRY_VERIFY(rowWidget(0)->followsSubjects() && rowWidget(1)->followsSubjects());
    for (int row = 0; row < 2; ++row)
        QVERIFY2(rowWidget(row)->state().focusX > 0.75,
                 qPrintable(QString::number(rowWidget(row)->state().focusX)));
    QTRY_COMPARE(button->text(), QStringLiteral("Auto-frame"));
    QTRY_VERIFY(rowWidget(1)->previewLabel()->pixmap().toImage() != centred); // drawn again
    QVERIFY(logText().contains(QStringLiteral("2 picture(s) framed around their faces")));
    // Known now: a second Auto-frame frames at once; Reset by hand goes back to the centre.
    rowWidget(0)->commitState({FillMode::CenterCrop, 0}, true);
    QVERIFY(!rowWidget(0)->faceMark()->isHidden());
    QCOMPARE(m_window->autoFrameCheckedRows(), 2);
    QVERIFY(rowWidget(0)->state().focusX > 0.75);
    QVERIFY(rowWidget(0)->faceMark()->isHidden());
}

void TestMainWindowFaces::autoFrameSearchEndsWithTheRows_data() { detectionInFlightEndsWithTheRows_data(); }

void TestMainWindowFaces::autoFrameSearchEndsWithTheRows()
{
    QFETCH(QString, action);
    QList<QImage> pictures;
    for (int i = 0; i < 24; ++i)
        pictures << faceAtTheRight().scaled(1200, 500);
    addPictures(pictures);
    QTRY_COMPARE(m_window->imageTable()->rowCount(), 24);
    QVERIFY(selectAllBox());
    selectAllBox()->setChecked(true);
    m_window->applyFillToCheckedRows(FillMode::CenterCrop);
    QVERIFY(m_window->autoFrameCheckedRows() == 24);
    if (action == QLatin1String("clear")) {
        ModalAnswerer answers(QMessageBox::Yes);
        m_window->onClearAll();
        QCOMPARE(m_window->imageTable()->rowCount(), 0);
    } else if (action == QLatin1String("remove")) {
        // The first half goes; the faces of the rest are still looked for, and framed.
        selectAllBox()->setChecked(false);
        for (int row = 0; row < 12; ++row)
            check({row});
        ModalAnswerer answers(QMessageBox::Yes);
        m_window->onRemoveSelected();
        QCOMPARE(m_window->imageTable()->rowCount(), 12);
        QTRY_VERIFY_WITH_TIMEOUT(rowWidget(11)->followsSubjects(), 20000);
        for (int row = 0; row < 12; ++row)
            QVERIFY(rowWidget(row)->state().focusX > 0.75);
    } else {
        m_window.reset();
    }
    QTest::qWait(300); // nothing arrives late
    QVERIFY(!m_window || m_window->imageTable()->rowCount() == (action == QLatin1String("remove") ? 12 : 0));
}

void TestMainWindowFaces::thePreviewShowsTheFaces()
{
    setting()->setChecked(true);
    addPictures({faceAtTheRight()});
    QTRY_COMPARE(m_window->imageTable()->rowCount(), 1);
    rowWidget(0)->commitState({FillMode::WhiteFill, 0}, true); // the whole picture in view
    bool looked = false;
    ModalAnswerer answerer(QMessageBox::Ok, [&](QWidget *widget) {
        auto *dialog = qobject_cast<ImagePreviewDialog *>(widget);
        if (!dialog)
            return;
        const auto closing = ModalAnswerer::closingGuard(dialog);
        looked = true;
        // The row's faces come with it: nothing to look for.
        QCOMPARE(dialog->facesLabel()->text(), QStringLiteral("1 face found"));
        QVERIFY(dialog->frameFacesButton()->isEnabled());
        const auto greenPixels = [dialog] {
            const QImage shown = dialog->previewLabel()->pixmap().toImage();
            int count = 0;
            for (int y = 0; y < shown.height(); ++y)
                for (int x = 0; x < shown.width(); ++x)
                    count += shown.pixelColor(x, y) == QColor(70, 220, 120);
            return count;
        };
        QCOMPARE(greenPixels(), 0);
        dialog->showFacesCheckBox()->setChecked(true);
        QTRY_VERIFY(greenPixels() > 40);
        // Framed by hand to the centre, the face is cut: the info line says so.
        dialog->controlPanel()->fillButton(FillMode::CenterCrop)->click();
        dialog->resetFramingButton()->click();
        QVERIFY(dialog->infoLabel()->text().contains(QStringLiteral("The crop cuts a face")));
        // A caption typed in: its letters are text, not the dialog's shortcuts (E, Z, \).
        CaptionControls *captions = dialog->captionControls();
        captions->kindBox()->setCurrentIndex(captions->kindBox()->findText(QStringLiteral("Your own text")));
        QTest::keyClicks(captions->textEdit(), QStringLiteral("Zoe Eve\\"));
        QCOMPARE(dialog->workingState().caption.shown, QStringLiteral("Zoe Eve\\"));
        QVERIFY(!dialog->epaperCheckBox()->isChecked());
        QVERIFY(!dialog->actualPixelsButton()->isChecked());
        QVERIFY(!dialog->beforeButton()->isChecked());
    });
    QTest::mouseClick(rowWidget(0)->previewLabel(), Qt::LeftButton);
    QVERIFY(looked);
}

void TestMainWindowFaces::captionsAreMarkedWithWhatTheyWrite()
{
    const QString folder = m_fixture->path(QStringLiteral("captions"));
    QVERIFY(TestFiles::write(QDir(folder).filePath(QStringLiteral("a_dated.jpg")),
                             TestFiles::jpegWithDateTaken(TestFiles::solidImage(300, 400, Qt::blue),
                                                          QStringLiteral("2023:12:24 18:00:00"))));
    QVERIFY(
        TestFiles::solidImage(300, 400, Qt::red).save(QDir(folder).filePath(QStringLiteral("b_plain.png"))));
    m_window->addImageFiles({folder});
    QTRY_COMPARE(m_window->imageTable()->rowCount(), 2);
    QVERIFY(rowWidget(0)->captionMark()->isHidden());
    check({0, 1});
    CaptionSettings caption;
    caption.kind = CaptionKind::DateTaken;
    ModalAnswerer answerer(QMessageBox::Ok, [](QWidget *dialog) {
        auto *captions = dialog->findChild<CaptionControls *>();
        if (!captions) {
            QTest::mouseClick(withText<QPushButton>(*dialog, QStringLiteral("Cancel")), Qt::LeftButton);
            return;
        }
        captions->kindBox()->setCurrentIndex(captions->kindBox()->findText(QStringLiteral("Date taken")));
        QTest::mouseClick(withText<QPushButton>(*dialog, QStringLiteral("OK")), Qt::LeftButton);
    });
    QTest::mouseClick(withText<QPushButton>(*m_window, QStringLiteral("Caption…")), Qt::LeftButton);
    const QString date = QLocale::system().toString(QDate(2023, 12, 24), QLocale::ShortFormat);
    QCOMPARE(rowWidget(0)->state().caption.shown, date);
    QCOMPARE(rowWidget(0)->captionMark()->toolTip(),
             QStringLiteral("Caption: Date taken, Bottom right — \"%1\"").arg(date));
    // A picture without a date taken says so, and writes nothing.
    QVERIFY(!rowWidget(1)->captionMark()->isHidden());
    QCOMPARE(rowWidget(1)->captionMark()->toolTip(),
             QStringLiteral("This picture has no date taken (EXIF): no caption is drawn"));
    QCOMPARE(rowWidget(1)->state().caption.shown, QString());
    QVERIFY(logText().contains(QStringLiteral("Caption set for 2 picture(s): Date taken, Bottom right")));
}

QTEST_MAIN(TestMainWindowFaces)
#include "tst_MainWindowFaces.moc"
