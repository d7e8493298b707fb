// Arranging the table: rows moved by dragging or by Ctrl+Up/Down, the Arrange menu's sorts,
// and Delete, in the table and in the grid. A run goes on in the new order (its items are known by their ids).
#include "app/MainWindow.h"

#include "app/Arrangement.h"
#include "images/ImageTableWidget.h"
#include "preprocess/PictureGrid.h"
#include "preprocess/PreprocWidget.h"

#include <QAction>
#include <QFileInfo>
#include <QMenu>
#include <QMenuBar>
#include <QRandomGenerator>

#include <numeric>

void MainWindow::setupArrangeMenu()
{
    // Texts come from retranslateUi. The moves and Delete act on the table (its selection), so
    // their keys stay with the table and never reach a text field.
    m_arrangeMenu = menuBar()->addMenu(QString());
    const auto add = [this](QAction *&action, void (MainWindow::*slot)()) {
        action = m_arrangeMenu->addAction(QString());
        connect(action, &QAction::triggered, this, slot);
    };
    add(m_actionSortByDateTaken, &MainWindow::onSortByDateTaken);
    add(m_actionSortByName, &MainWindow::onSortByName);
    add(m_actionSortByFileDate, &MainWindow::onSortByFileDate);
    add(m_actionReverseOrder, &MainWindow::onReverseOrder);
    add(m_actionShuffle, &MainWindow::onShuffle);
    m_arrangeMenu->addSeparator();
    add(m_actionMoveRowsUp, &MainWindow::onMoveRowsUp);
    add(m_actionMoveRowsDown, &MainWindow::onMoveRowsDown);
    add(m_actionRemoveRows, &MainWindow::onRemoveSelected);
    m_actionMoveRowsUp->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Up));
    m_actionMoveRowsDown->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Down));
    m_actionRemoveRows->setShortcut(QKeySequence::Delete);
    m_arrangeMenu->addSeparator();
    m_actionWarnDuplicates = m_arrangeMenu->addAction(QString());
    m_actionWarnDuplicates->setObjectName(QStringLiteral("warnDuplicates"));
    m_actionWarnDuplicates->setCheckable(true);
    m_actionWarnDuplicates->setChecked(
        appSettings()->value(QStringLiteral("warn_duplicates"), true).toBool());
    connect(m_actionWarnDuplicates, &QAction::toggled, this,
            [](bool on) { appSettings()->setValue(QStringLiteral("warn_duplicates"), on); });
    for (QAction *action : {m_actionMoveRowsUp, m_actionMoveRowsDown, m_actionRemoveRows}) {
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        m_imageTable->addAction(action);
        m_pictureGrid->addAction(action);
    }
    connect(m_imageTable, &ImageTableWidget::rowsDragged, this, &MainWindow::onRowsDragged);
}

void MainWindow::onRowsDragged(const QList<int> &rows, int destination)
{
    arrangeRows(Arrangement::moved(m_imageTable->rowCount(), rows, destination), Str::undoMovePictures());
}

QList<int> MainWindow::rowsToArrange() const
{
    const QList<int> selected = m_imageTable->selectedRowNumbers();
    return selected.isEmpty() ? checkedRows() : selected;
}

void MainWindow::arrangeRows(const QList<int> &from, const QString &what)
{
    const int count = m_imageTable->rowCount();
    QList<int> identity(count);
    std::iota(identity.begin(), identity.end(), 0);
    if (from.size() != count || from == identity)
        return;
    m_imageTable->permuteRows(from); // the selection and the current row move with their rows
    syncJobOrder(); // a run goes on in the new order
    recordTableChange(what);
}

QList<Arrangement::Key> MainWindow::arrangementKeys() const
{
    QList<Arrangement::Key> keys;
    keys.reserve(m_imageTable->rowCount());
    for (int row = 0; row < m_imageTable->rowCount(); ++row) {
        const QTableWidgetItem *file = m_imageTable->item(row, FileColumn);
        const PreprocWidget *widget = preprocWidgetAt(row);
        const QString path = file ? file->data(kSourcePathRole).toString() : QString();
        keys.append({file ? file->text() : QString(), widget ? widget->dateTaken() : QDateTime(),
                     QFileInfo(path).lastModified()});
    }
    return keys;
}

void MainWindow::onSortByDateTaken()
{
    arrangeRows(Arrangement::byDateTaken(arrangementKeys()), Str::actionSortByDateTaken());
}

void MainWindow::onSortByName()
{
    arrangeRows(Arrangement::byName(arrangementKeys()), Str::actionSortByName());
}

void MainWindow::onSortByFileDate()
{
    arrangeRows(Arrangement::byFileDate(arrangementKeys()), Str::actionSortByFileDate());
}

void MainWindow::onReverseOrder()
{
    arrangeRows(Arrangement::reversed(m_imageTable->rowCount()), Str::actionReverseOrder());
}

void MainWindow::onShuffle()
{
    arrangeRows(Arrangement::shuffled(m_imageTable->rowCount(), QRandomGenerator::global()),
                Str::actionShuffle());
}

void MainWindow::onMoveRowsUp()
{
    arrangeRows(Arrangement::stepped(m_imageTable->rowCount(), rowsToArrange(), -1), Str::undoMovePictures());
}

void MainWindow::onMoveRowsDown()
{
    arrangeRows(Arrangement::stepped(m_imageTable->rowCount(), rowsToArrange(), 1), Str::undoMovePictures());
}
