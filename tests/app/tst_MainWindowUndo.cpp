// Undo and redo in the real window: every change of the table is a step that puts the rows
// back exactly, Done rows with their frames.
#include "app/MainWindow.h"
#include "app/PictureList.h"
#include "images/ImageTableWidget.h"
#include "preprocess/PreprocWidget.h"
#include "ui/RowStatusCell.h"

#include "ModalAnswerer.h"
#include "TestFiles.h"
#include "WindowProbe.h"
#include "WindowTestCase.h"

#include <QAction>
#include <QCheckBox>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTest>
#include <QUndoStack>

namespace {

QList<quint64> rowIds(MainWindow &window)
{
    QList<quint64> ids;
    for (int row = 0; row < window.imageTable()->rowCount(); ++row)
        ids << window.rowId(row);
    return ids;
}

QAction *editAction(MainWindow &window, const QString &start)
{
    for (QAction *top : window.menuBar()->actions()) {
        if (!top->text().startsWith(QStringLiteral("Edit")) || !top->menu())
            continue;
        for (QAction *action : top->menu()->actions()) {
            if (action->text().startsWith(start))
                return action;
        }
    }
    return nullptr;
}

void undo(MainWindow &window)
{
    QAction *action = editAction(window, QStringLiteral("Undo"));
    QVERIFY(action && action->isEnabled());
    action->trigger();
}

void redo(MainWindow &window)
{
    QAction *action = editAction(window, QStringLiteral("Redo"));
    QVERIFY(action && action->isEnabled());
    action->trigger();
}

} // namespace

class TestMainWindowUndo : public WindowTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void addingRemovingAndClearingComeBackWithTheirIds();
    void doneRowsComeBackWithTheirFrames();
    void aBatchAndARowsOwnChangeAreUndone();
    void movesAndSortsAreUndone();
    void openingAListIsUndone();
    void theKeysAndTheMenuSayWhatIsUndone();
    void undoWaitsForTheEndOfARun();
};

void TestMainWindowUndo::addingRemovingAndClearingComeBackWithTheirIds()
{
    addPictures(4);
    const QList<quint64> ids = rowIds(*m_window);
    check({1, 3});
    m_window->onRemoveSelected();
    QCOMPARE(rowIds(*m_window), (QList<quint64>{ids[0], ids[2]}));
    undo(*m_window);
    QCOMPARE(rowIds(*m_window), ids);
    // The removed rows come back as they were, with their pictures and widgets.
    for (int row = 0; row < 4; ++row)
        QVERIFY(!m_window->preprocWidgetAt(row)->thumbnailSource().isNull());
    redo(*m_window);
    QCOMPARE(rowIds(*m_window), (QList<quint64>{ids[0], ids[2]}));
    undo(*m_window);

    m_window->onClearAll();
    QCOMPARE(m_window->imageTable()->rowCount(), 0);
    undo(*m_window);
    QCOMPARE(rowIds(*m_window), ids);
    undo(*m_window); // the removal's step is below the clearing's (undone already): the adding
    QCOMPARE(m_window->imageTable()->rowCount(), 0);
    redo(*m_window);
    QCOMPARE(rowIds(*m_window), ids);
}

void TestMainWindowUndo::doneRowsComeBackWithTheirFrames()
{
    addColours({Qt::red, Qt::green, Qt::blue});
    {
        ModalAnswerer completion(QMessageBox::Cancel);
        runToTheEnd();
    }
    QCOMPARE(statusText(0), QStringLiteral("Done ✓"));
    const QList<quint64> ids = rowIds(*m_window);

    // A batch fill over every row: Pending, their frames set aside. Undone: Done again.
    selectAllBox()->setChecked(true);
    m_window->applyFillToCheckedRows(FillMode::WhiteFill);
    QCOMPARE(statusText(1), QStringLiteral("Pending"));
    undo(*m_window);
    for (int row = 0; row < 3; ++row)
        QCOMPARE(statusText(row), QStringLiteral("Done ✓"));

    // A Done row removed and put back keeps its frame too.
    selectAllBox()->setChecked(false);
    check({1});
    m_window->onRemoveSelected();
    undo(*m_window);
    QCOMPARE(rowIds(*m_window), ids);
    QCOMPARE(statusText(1), QStringLiteral("Done ✓"));

    // The next run makes only the new row: the package holds the kept frames, in order.
    addColours({Qt::yellow});
    ModalAnswerer completion(QMessageBox::Cancel);
    runToTheEnd();
    QCOMPARE(logLines(*m_window).filter(QStringLiteral("] (")).size(), 1); // this run made one frame
    expectPackage({Qt::red, Qt::green, Qt::blue, Qt::yellow});
}

void TestMainWindowUndo::aBatchAndARowsOwnChangeAreUndone()
{
    addPictures(3);
    const PreprocState original = m_window->preprocWidgetAt(0)->state();
    m_window->preprocWidgetAt(0)->onRotateRight();
    QCOMPARE(m_window->preprocWidgetAt(0)->state().rotationDegrees, 90);
    check({0, 2});
    ToneSettings tone;
    tone.preset = TonePreset::Vivid;
    QCOMPARE(m_window->applyToneToCheckedRows(tone), 2);
    CaptionSettings caption;
    caption.kind = CaptionKind::FileName;
    QCOMPARE(m_window->applyCaptionToCheckedRows(caption), 2);

    undo(*m_window); // the caption
    QCOMPARE(m_window->preprocWidgetAt(2)->state().caption.kind, CaptionKind::None);
    QCOMPARE(m_window->preprocWidgetAt(2)->state().tone.preset, TonePreset::Vivid);
    QVERIFY(!m_window->preprocWidgetAt(2)->captionMark()->isVisibleTo(m_window->preprocWidgetAt(2)));
    undo(*m_window); // the tone
    QCOMPARE(m_window->preprocWidgetAt(2)->state().tone.preset, TonePreset::Neutral);
    QCOMPARE(m_window->preprocWidgetAt(0)->state().rotationDegrees, 90);
    undo(*m_window); // the rotation
    QVERIFY(m_window->preprocWidgetAt(0)->state() == original);
    redo(*m_window);
    redo(*m_window);
    QCOMPARE(m_window->preprocWidgetAt(0)->state().rotationDegrees, 90);
    QCOMPARE(m_window->preprocWidgetAt(0)->state().tone.preset, TonePreset::Vivid);
    QCOMPARE(m_window->preprocWidgetAt(1)->state().tone.preset, TonePreset::Neutral);
}

void TestMainWindowUndo::movesAndSortsAreUndone()
{
    addPictures(5);
    const QList<quint64> ids = rowIds(*m_window);
    m_window->onReverseOrder();
    m_window->onShuffle();
    m_window->moveTableRowDown(0);
    const QList<quint64> moved = rowIds(*m_window);
    undo(*m_window);
    undo(*m_window);
    QCOMPARE(rowIds(*m_window), (QList<quint64>{ids[4], ids[3], ids[2], ids[1], ids[0]}));
    undo(*m_window);
    QCOMPARE(rowIds(*m_window), ids);
    redo(*m_window);
    redo(*m_window);
    redo(*m_window);
    QCOMPARE(rowIds(*m_window), moved);
    // The frames follow: each row's widget shows its own picture.
    for (int row = 0; row < 5; ++row) {
        QCOMPARE(
            m_window->preprocWidgetAt(row)->sourcePath(),
            m_window->imageTable()->item(row, MainWindow::FileColumn)->data(MainWindow::kSourcePathRole));
    }
}

void TestMainWindowUndo::openingAListIsUndone()
{
    const QStringList listed = addPictures(2);
    const QString list = m_fixture->path(QStringLiteral("two.json"));
    QVERIFY(m_window->savePictureList(list));
    m_window->onClearAll();
    addPictures(3);
    const QList<quint64> ids = rowIds(*m_window);
    {
        ModalAnswerer replace(QMessageBox::Yes);
        QVERIFY(m_window->openPictureList(list));
    }
    QCOMPARE(m_window->imageTable()->rowCount(), 2);
    QCOMPARE(m_window->undoStack()->undoText(), QStringLiteral("Open List"));
    undo(*m_window);
    QCOMPARE(rowIds(*m_window), ids);
}

void TestMainWindowUndo::theKeysAndTheMenuSayWhatIsUndone()
{
    addPictures(2);
    QCOMPARE(editAction(*m_window, QStringLiteral("Undo"))->text(), QStringLiteral("Undo Add Pictures"));
    QVERIFY(!editAction(*m_window, QStringLiteral("Redo"))->isEnabled());
    m_window->activateWindow();
    m_window->imageTable()->setFocus();
    QTest::keyClick(m_window->imageTable(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(m_window->imageTable()->rowCount(), 0);
    QCOMPARE(editAction(*m_window, QStringLiteral("Redo"))->text(), QStringLiteral("Redo Add Pictures"));
    QTest::keyClick(m_window->imageTable(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(m_window->imageTable()->rowCount(), 2);
}

void TestMainWindowUndo::undoWaitsForTheEndOfARun()
{
    addPictures(2);
    qputenv("TARN_SIM_SLEEP_MS", "400");
    QTest::mouseClick(withText<QPushButton>(*m_window, QStringLiteral("▶  Start Processing")),
                      Qt::LeftButton);
    QVERIFY(m_window->isProcessing());
    QVERIFY(!editAction(*m_window, QStringLiteral("Undo"))->isEnabled());
    m_window->undoStack()->count(); // the step stays for later
    ModalAnswerer completion(QMessageBox::Cancel);
    QTRY_VERIFY_WITH_TIMEOUT(!m_window->isProcessing(), 30000);
    QVERIFY(editAction(*m_window, QStringLiteral("Undo"))->isEnabled());
    qunsetenv("TARN_SIM_SLEEP_MS");
}

QTEST_MAIN(TestMainWindowUndo)
#include "tst_MainWindowUndo.moc"
