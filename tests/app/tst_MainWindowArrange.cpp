// Arranging the real window's table: rows dragged with the mouse, moved with Ctrl+Up/Down,
// sorted and shuffled from the Arrange menu, removed with Delete; the package follows.
#include "app/MainWindow.h"
#include "images/ImageTableWidget.h"
#include "preprocess/PreprocWidget.h"

#include "ModalAnswerer.h"
#include "TestFiles.h"
#include "WindowTestCase.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMenu>
#include <QMenuBar>
#include <QTest>

namespace {

// The thumbnail cell of a row (the part of a row that does not take the mouse itself), in the
// viewport's coordinates.
QPoint thumbnailOf(MainWindow &window, int row)
{
    ImageTableWidget *table = window.imageTable();
    return table->visualRect(table->model()->index(row, MainWindow::ThumbColumn)).center();
}

// A window tall enough to show every row of a short list.
void showAllRows(MainWindow &window)
{
    window.resize(900, 620 + window.imageTable()->rowCount() * MainWindow::kRowHeight);
    QTRY_VERIFY(window.imageTable()->viewport()->height() >=
                window.imageTable()->rowCount() * MainWindow::kRowHeight);
}

void selectRows(MainWindow &window, const QList<int> &rows)
{
    ImageTableWidget *table = window.imageTable();
    table->clearSelection();
    for (int row : rows)
        table->selectionModel()->select(table->model()->index(row, 0),
                                        QItemSelectionModel::Select | QItemSelectionModel::Rows);
}

// Presses on a selected row's thumbnail, moves the mouse to to and lets go, as a hand does.
void dragWithMouse(QWidget *viewport, const QPoint &from, const QPoint &to)
{
    QTest::mousePress(viewport, Qt::LeftButton, {}, from);
    QTest::mouseMove(viewport, from + QPoint(0, QApplication::startDragDistance() + 4));
    QTest::mouseMove(viewport, (from + to) / 2);
    QTest::mouseMove(viewport, to);
    QTest::mouseRelease(viewport, Qt::LeftButton, {}, to);
}

QAction *menuAction(MainWindow &window, const QString &menu, const QString &text)
{
    for (QAction *top : window.menuBar()->actions()) {
        if (!top->text().startsWith(menu) || !top->menu())
            continue;
        for (QAction *action : top->menu()->actions()) {
            if (action->text() == text)
                return action;
        }
    }
    return nullptr;
}

} // namespace

class TestMainWindowArrange : public WindowTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void severalRowsDraggedToTheTopMakeThePackageInTheirOrder();
    void aRowDraggedToTheEndGoesLast();
    void ctrlArrowsMoveTheSelectedRowsOneStep();
    void deleteRemovesTheSelectedRows();
    void sortByFileNameIsNatural();
    void sortByDateTakenPutsPicturesWithoutOneLastByFileDate();
    void sortByFileDateAndReverse();
    void shuffleKeepsEveryRowAndItsWidget();
};

void TestMainWindowArrange::severalRowsDraggedToTheTopMakeThePackageInTheirOrder()
{
    addColours({Qt::red, Qt::green, Qt::blue, Qt::yellow});
    const QStringList names = rowNames();
    showAllRows(*m_window);
    selectRows(*m_window, {2, 3});
    dragWithMouse(m_window->imageTable()->viewport(), thumbnailOf(*m_window, 3),
                  thumbnailOf(*m_window, 0) - QPoint(0, MainWindow::kRowHeight / 4));

    QCOMPARE(rowNames(), (QStringList{names[2], names[3], names[0], names[1]}));
    QCOMPARE(m_window->imageTable()->selectedRowNumbers(), (QList<int>{0, 1}));
    ModalAnswerer completion(QMessageBox::Cancel);
    runToTheEnd();
    expectPackage({Qt::blue, Qt::yellow, Qt::red, Qt::green});
}

void TestMainWindowArrange::aRowDraggedToTheEndGoesLast()
{
    addColours({Qt::red, Qt::green, Qt::blue});
    const QStringList names = rowNames();
    showAllRows(*m_window);
    selectRows(*m_window, {0});
    dragWithMouse(m_window->imageTable()->viewport(), thumbnailOf(*m_window, 0),
                  thumbnailOf(*m_window, 2) + QPoint(0, MainWindow::kRowHeight / 4));

    QCOMPARE(rowNames(), (QStringList{names[1], names[2], names[0]}));
    // The row's widget went with it.
    QCOMPARE(QFileInfo(m_window->preprocWidgetAt(2)->sourcePath()).fileName(), names[0]);
}

void TestMainWindowArrange::ctrlArrowsMoveTheSelectedRowsOneStep()
{
    addPictures(5);
    const QStringList names = rowNames();
    selectRows(*m_window, {1, 3});
    m_window->imageTable()->setFocus();
    QTest::keyClick(m_window->imageTable(), Qt::Key_Up, Qt::ControlModifier);
    QCOMPARE(rowNames(), (QStringList{names[1], names[0], names[3], names[2], names[4]}));
    QTest::keyClick(m_window->imageTable(), Qt::Key_Up, Qt::ControlModifier);
    // The top row cannot go higher; the other still can.
    QCOMPARE(rowNames(), (QStringList{names[1], names[3], names[0], names[2], names[4]}));
    QTest::keyClick(m_window->imageTable(), Qt::Key_Down, Qt::ControlModifier);
    QCOMPARE(rowNames(), (QStringList{names[0], names[1], names[3], names[2], names[4]}));
}

void TestMainWindowArrange::deleteRemovesTheSelectedRows()
{
    addPictures(4);
    const QStringList names = rowNames();
    selectRows(*m_window, {0, 2});
    m_window->imageTable()->setFocus();
    QTest::keyClick(m_window->imageTable(), Qt::Key_Delete);
    QCOMPARE(rowNames(), (QStringList{names[1], names[3]}));
}

void TestMainWindowArrange::sortByFileNameIsNatural()
{
    const QString folder = m_fixture->path(QStringLiteral("named"));
    QDir().mkpath(folder);
    QStringList paths;
    for (const char *name : {"IMG_10.png", "img_2.png", "IMG_1.png", "IMG_002b.png", "a.png"}) {
        paths << folder + QLatin1Char('/') + name;
        QVERIFY(TestFiles::solidImage(40, 30, Qt::gray).save(paths.constLast()));
    }
    m_window->addImageFiles(paths);
    QAction *sort = menuAction(*m_window, QStringLiteral("Arrange"), QStringLiteral("Sort by File Name"));
    QVERIFY(sort);
    sort->trigger();
    QCOMPARE(rowNames(), (QStringList{"a.png", "IMG_1.png", "img_2.png", "IMG_002b.png", "IMG_10.png"}));
}

void TestMainWindowArrange::sortByDateTakenPutsPicturesWithoutOneLastByFileDate()
{
    // Two JPEGs with a date taken in their EXIF block, two pictures without one (the older
    // file of them listed last).
    const QString folder = m_fixture->path(QStringLiteral("dated"));
    QDir().mkpath(folder);
    const QImage image = TestFiles::solidImage(60, 40, Qt::gray);
    const QDateTime now = QDateTime::currentDateTime();
    const QList<QPair<QString, QByteArray>> files = {
        {"may.jpg", TestFiles::jpegWithDateTaken(image, "2024:05:02 09:00:00")},
        {"newer.png", {}},
        {"january.jpg", TestFiles::jpegWithDateTaken(image, "2023:01:01 09:00:00")},
        {"older.png", {}}};
    QStringList paths;
    for (const auto &[name, bytes] : files) {
        paths << folder + QLatin1Char('/') + name;
        if (bytes.isEmpty())
            QVERIFY(image.save(paths.constLast()));
        else
            QVERIFY(TestFiles::write(paths.constLast(), bytes));
    }
    QVERIFY(TestFiles::setModified(paths[1], now.addDays(-1)));
    QVERIFY(TestFiles::setModified(paths[3], now.addDays(-2)));
    m_window->addImageFiles(paths);
    QCOMPARE(rowNames(), (QStringList{"may.jpg", "newer.png", "january.jpg", "older.png"}));

    menuAction(*m_window, QStringLiteral("Arrange"), QStringLiteral("Sort by Date Taken"))->trigger();
    QCOMPARE(rowNames(), (QStringList{"january.jpg", "may.jpg", "older.png", "newer.png"}));
}

void TestMainWindowArrange::sortByFileDateAndReverse()
{
    const QStringList paths = addPictures(3);
    const QStringList names = rowNames();
    const QDateTime now = QDateTime::currentDateTime();
    QVERIFY(TestFiles::setModified(paths[0], now.addDays(-1)));
    QVERIFY(TestFiles::setModified(paths[1], now.addDays(-3)));
    QVERIFY(TestFiles::setModified(paths[2], now.addDays(-2)));
    menuAction(*m_window, QStringLiteral("Arrange"), QStringLiteral("Sort by File Date"))->trigger();
    QCOMPARE(rowNames(), (QStringList{names[1], names[2], names[0]}));
    menuAction(*m_window, QStringLiteral("Arrange"), QStringLiteral("Reverse Order"))->trigger();
    QCOMPARE(rowNames(), (QStringList{names[0], names[2], names[1]}));
}

void TestMainWindowArrange::shuffleKeepsEveryRowAndItsWidget()
{
    addPictures(20);
    const QStringList names = rowNames();
    QAction *shuffle = menuAction(*m_window, QStringLiteral("Arrange"), QStringLiteral("Shuffle"));
    shuffle->trigger();
    const QStringList once = rowNames();
    shuffle->trigger();
    const QStringList twice = rowNames();
    QVERIFY(once != names || twice != names); // 20! orders: twice the same one is all but impossible
    QStringList sorted = twice;
    sorted.sort();
    QStringList expected = names;
    expected.sort();
    QCOMPARE(sorted, expected);
    for (int row = 0; row < twice.size(); ++row)
        QCOMPARE(QFileInfo(m_window->preprocWidgetAt(row)->sourcePath()).fileName(), twice[row]);
}

QTEST_MAIN(TestMainWindowArrange)
#include "tst_MainWindowArrange.moc"
