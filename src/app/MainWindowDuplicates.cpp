// Duplicate warnings: after an adding, the pictures that repeat one listed before them (an
// exact copy under another name, or the same photo re-encoded, resized or slightly edited),
// told in one box that offers to remove the exact copies. What each picture looks like comes
// from the decode the adding made (DecodedPicture::likeness).
#include "app/MainWindow.h"

#include "images/ImageTableWidget.h"

#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QScopeGuard>
#include <QThread>

#include <atomic>
#include <memory>

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
    // Copies are read to compare their bytes: on a worker thread, the window going on meanwhile
    // (its progress dialog, when the adding showed one, says so). The search works on its own
    // copies of the paths; it is stopped and waited for if the window goes first.
    std::atomic<bool> stop = false;
    QList<Duplicates::Pair> pairs;
    const std::unique_ptr<QThread> search(
        QThread::create([listed, added, &stop, &pairs] { pairs = Duplicates::find(listed, added, &stop); }));
    QEventLoop loop;
    connect(search.get(), &QThread::finished, &loop, &QEventLoop::quit);
    const QPointer<MainWindow> guard(this);
    const auto stopGuard = qScopeGuard([&] {
        stop = true;
        search->wait();
    });
    search->start();
    if (!search->isFinished())
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    search->wait();
    if (!guard)
        return;
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
    removeRows(exactRows);
    appendLog(Str::exactCopiesSkipped(int(exactRows.size())));
}
