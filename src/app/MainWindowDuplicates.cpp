// Duplicate warnings: after an adding, the pictures that repeat one listed before them (an
// exact copy under another name, or the same photo re-encoded, resized or slightly edited),
// told in one box that offers to remove the exact copies. What each picture looks like comes
// from the decode the adding made (DecodedPicture::likeness).
#include "app/MainWindow.h"

#include "images/ImageTableWidget.h"

#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>

#include <algorithm>

namespace {
constexpr int kPairsShown = 20;
} // namespace

Likeness MainWindow::rowLikeness(int row) const
{
    const QTableWidgetItem *file = m_imageTable->item(row, FileColumn);
    return file ? file->data(kLikenessRole).value<Likeness>() : Likeness();
}

void MainWindow::reportDuplicates(int firstAdded)
{
    if (!m_actionWarnDuplicates || !m_actionWarnDuplicates->isChecked())
        return;
    QList<Duplicates::Picture> listed;
    QList<Duplicates::Picture> added;
    for (int row = 0; row < m_imageTable->rowCount(); ++row) {
        const QTableWidgetItem *file = m_imageTable->item(row, FileColumn);
        const Duplicates::Picture picture{file ? file->data(kSourcePathRole).toString() : QString(),
                                          rowLikeness(row)};
        (row < firstAdded ? listed : added) << picture;
    }
    const QList<Duplicates::Pair> pairs = Duplicates::find(listed, added);
    if (pairs.isEmpty())
        return;

    QStringList lines;
    QList<int> exactRows;
    for (const Duplicates::Pair &pair : pairs) {
        const QString name = QFileInfo(added.at(pair.added).path).fileName();
        const QString original = QDir::toNativeSeparators(pair.original);
        lines << (pair.exact ? Str::duplicateExactLine(name, original)
                             : Str::duplicateNearLine(name, original));
        if (pair.exact)
            exactRows << firstAdded + pair.added;
    }
    const int total = int(lines.size());
    lines = lines.mid(0, kPairsShown);
    if (total > kPairsShown)
        lines << Str::andMore(total - kPairsShown);

    QMessageBox box(QMessageBox::Information, Str::duplicatesTitle(),
                    Str::duplicatesFound(int(exactRows.size()), total - int(exactRows.size()),
                                         lines.join(QLatin1Char('\n'))),
                    QMessageBox::NoButton, this);
    QPushButton *skip =
        exactRows.isEmpty() ? nullptr : box.addButton(Str::skipExactCopies(), QMessageBox::AcceptRole);
    QPushButton *keep =
        box.addButton(exactRows.isEmpty() ? Str::confirm() : Str::keepAll(), QMessageBox::RejectRole);
    box.setDefaultButton(skip ? skip : keep);
    box.exec();
    if (!skip || box.clickedButton() != skip)
        return;
    // Highest first, so that removing never shifts a row still to be removed.
    std::sort(exactRows.begin(), exactRows.end(), std::greater<int>());
    for (int row : std::as_const(exactRows)) {
        cleanupTempFile(row);
        cleanupHeicCache(row);
        discardOutput(row);
        m_imageTable->removeRow(row);
    }
    appendLog(Str::exactCopiesSkipped(int(exactRows.size())));
}
