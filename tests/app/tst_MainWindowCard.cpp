// Copying the package onto a TF card from the window: the Step 3 button once a package
// exists, the completion box's offer when a card is in, the choice of the card (too small,
// not FAT32 or exFAT), replacing a vl_play on the card, and a copy verified or cancelled.
// The cards are temporary folders given through the volume seam, and, where this machine allows
// it, a real exFAT card image mounted with exfat-fuse that is pulled out in the middle of a copy.
#include "app/MainWindow.h"
#include "playlist/CardCopy.h"
#include "playlist/CardCopyDialog.h"
#include "playlist/Volumes.h"

#include "ExfatCard.h"
#include "ModalAnswerer.h"
#include "TestFiles.h"
#include "WindowProbe.h"
#include "WindowTestCase.h"

#include <QDir>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <atomic>

class TestMainWindowCard : public WindowTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void buttonFollowsThePackage();
    void completionOffersTheCopyWhenACardIsIn();
    void copyThroughTheDialog();
    void leftoversOfAnInterruptedCopyAreClearedFirst();
    void cardsTooSmallOrNotFat();
    void replacingAsksFirst();
    void cancelLeavesNoPackageOfOurs();
    void closingDuringACopyCancelsItFirst();
    void aRealCardPulledOutMidCopy();

private:
    QPushButton *copyButton() const
    {
        return withText<QPushButton>(*m_window, QStringLiteral("Copy to TF Card…"));
    }
    QString cardPath(const QString &name) const { return m_fixture->path("cards/" + name); }
    // A card of that name, file system and free space, the only one the system reports.
    QString insertCard(const QString &name, const QString &fileSystem = "vfat",
                       qint64 free = qint64(8) << 30);
    void makePackage();
    // A large file in the package keeps a copy busy long enough to be stopped (sparse: it takes
    // no room here, and only what is copied before the stop takes room on the "card").
    void addLargeFrame();
    // Opens the dialog from the Step 3 button and hands it to act while it is open; the boxes
    // it opens are answered with answer and given back.
    QList<ModalAnswerer::Seen> withDialog(const std::function<void(CardCopyDialog *, ModalAnswerer *)> &act,
                                          QMessageBox::StandardButton answer = QMessageBox::Ok);
};

QString TestMainWindowCard::insertCard(const QString &name, const QString &fileSystem, qint64 free)
{
    QDir().mkpath(cardPath(name));
    Volumes::setOverride(QList<Volume>{{cardPath(name), name, fileSystem, free}});
    return cardPath(name);
}

void TestMainWindowCard::makePackage()
{
    addColours({Qt::red, Qt::blue});
    ModalAnswerer completion(QMessageBox::Cancel);
    runToTheEnd();
    QCOMPARE(completion.titles(), QStringList{"Ready for Your TF Card"});
}

QList<ModalAnswerer::Seen>
TestMainWindowCard::withDialog(const std::function<void(CardCopyDialog *, ModalAnswerer *)> &act,
                               QMessageBox::StandardButton answer)
{
    bool acted = false;
    ModalAnswerer *self = nullptr;
    ModalAnswerer boxes(answer, [&](QWidget *widget) {
        if (auto *dialog = qobject_cast<CardCopyDialog *>(widget); dialog && !acted) {
            acted = true;
            // Later, not inside the answerer's own call: the boxes the act opens are its to answer.
            QTimer::singleShot(0, dialog, [&, dialog] { act(dialog, self); });
        }
    });
    self = &boxes;
    QTest::mouseClick(copyButton(), Qt::LeftButton);
    if (!acted)
        qWarning("the dialog was not opened");
    return acted ? boxes.seen() : QList<ModalAnswerer::Seen>{};
}

void TestMainWindowCard::addLargeFrame()
{
    QFile large(QDir(packageDir()).filePath("frame_999.bin"));
    QVERIFY(large.open(QIODevice::WriteOnly) && large.resize(qint64(300) << 20));
}

void TestMainWindowCard::buttonFollowsThePackage()
{
    QVERIFY(copyButton());
    QVERIFY(!copyButton()->isEnabled());
    makePackage();
    QVERIFY(copyButton()->isEnabled());
    const QString package = packageDir();
    saveLocation(*m_window)->setText(m_fixture->path("elsewhere"));
    QVERIFY(!copyButton()->isEnabled());
    saveLocation(*m_window)->setText(m_fixture->path("out"));
    QVERIFY(copyButton()->isEnabled());
    QVERIFY(QFileInfo(package).isDir());
}

void TestMainWindowCard::completionOffersTheCopyWhenACardIsIn()
{
    const QString card = insertCard("OFFERED");
    addColours({Qt::red});
    bool acted = false;
    ModalAnswerer boxes(QMessageBox::Ok, [&](QWidget *widget) {
        if (auto *dialog = qobject_cast<CardCopyDialog *>(widget); dialog && !acted) {
            acted = true;
            QTimer::singleShot(0, dialog,
                               [dialog] { QTest::mouseClick(dialog->copyButton(), Qt::LeftButton); });
        }
    });
    boxes.setButtonText("Copy to TF Card…");
    runToTheEnd();
    QTRY_VERIFY(QFileInfo(QDir(card).filePath("vl_play")).isDir());
    QTRY_COMPARE(boxes.titles(), (QStringList{"Ready for Your TF Card", "Copy to TF Card"}));
    QCOMPARE(boxes.seen().first().buttons, (QStringList{"OK and open the vl_play", "Copy to TF Card…"}));
    QCOMPARE(TestFiles::contents(QDir(card).filePath("vl_play")), TestFiles::contents(packageDir()));
}

void TestMainWindowCard::copyThroughTheDialog()
{
    makePackage();
    const QString card = insertCard("FRAME");
    const QList<ModalAnswerer::Seen> boxes = withDialog([&](CardCopyDialog *dialog, ModalAnswerer *) {
        QCOMPARE(dialog->windowTitle(), QStringLiteral("Copy to TF Card"));
        QCOMPARE(dialog->volumeList()->count(), 1);
        QCOMPARE(dialog->volumeList()->item(0)->text(),
                 "FRAME (" + QDir::toNativeSeparators(card) + ") — vfat — 8.0 GiB free");
        QVERIFY(dialog->warningLabel()->isHidden());
        QTest::mouseClick(dialog->copyButton(), Qt::LeftButton);
    });
    QCOMPARE(boxes.size(), 1);
    QCOMPARE(boxes.first().title, QStringLiteral("Copy to TF Card"));
    QVERIFY2(boxes.first().text.startsWith("3 files ("), qPrintable(boxes.first().text));
    QVERIFY(boxes.first().text.contains(" copied and verified on the card:\n" +
                                        QDir::toNativeSeparators(QDir(card).filePath("vl_play"))));
    QCOMPARE(TestFiles::entries(card), QStringList{"vl_play"});
    QCOMPARE(TestFiles::contents(QDir(card).filePath("vl_play")), TestFiles::contents(packageDir()));
}

void TestMainWindowCard::leftoversOfAnInterruptedCopyAreClearedFirst()
{
    makePackage();
    const QString card = insertCard("KILLED");
    // A copy killed half-way, and one between its renames: no vl_play, the old one aside.
    QVERIFY(TestFiles::write(QDir(card).filePath(".vl_play.partial-k1ll3d/frame_000.bin"), "half"));
    QVERIFY(TestFiles::write(QDir(card).filePath(".vl_play.old-0ld/frame_000.bin"), "old frame"));
    QVERIFY(TestFiles::write(QDir(card).filePath(".vl_play.old-0ld/playlist.json"), "{}"));
    const QList<ModalAnswerer::Seen> boxes =
        withDialog([&](CardCopyDialog *dialog,
                       ModalAnswerer *) { QTest::mouseClick(dialog->copyButton(), Qt::LeftButton); },
                   QMessageBox::Yes); // the old package, back in place, is replaced
    const QString last = boxes.last().text;
    QVERIFY2(
        last.startsWith("↺ Found the earlier package .vl_play.old-0ld left by an interrupted run, and no "
                        "vl_play: put it back as vl_play.\n"
                        "↺ Found an unfinished folder .vl_play.partial-k1ll3d left by an interrupted run: "
                        "removed it.\n\n3 files ("),
        qPrintable(last));
    QCOMPARE(TestFiles::entries(card), QStringList{"vl_play"});
    QCOMPARE(TestFiles::contents(QDir(card).filePath("vl_play")), TestFiles::contents(packageDir()));
}

void TestMainWindowCard::cardsTooSmallOrNotFat()
{
    makePackage();
    insertCard("TINY", "exfat", 1000);
    withDialog([&](CardCopyDialog *dialog, ModalAnswerer *) {
        QVERIFY(dialog->volumeList()->item(0)->text().endsWith(" — too small"));
        QVERIFY(!(dialog->volumeList()->item(0)->flags() & Qt::ItemIsEnabled));
        QVERIFY(!dialog->copyButton()->isEnabled());
        dialog->reject();
    });

    insertCard("DISK", "ntfs");
    withDialog([&](CardCopyDialog *dialog, ModalAnswerer *) {
        QVERIFY(dialog->copyButton()->isEnabled());
        QVERIFY(!dialog->warningLabel()->isHidden());
        QCOMPARE(
            dialog->warningLabel()->text(),
            QStringLiteral("⚠ This card's file system is ntfs. The frame reads only FAT32 or exFAT cards; "
                           "format the card on your computer first."));
        dialog->reject();
    });

    // A FUSE mount whose device could not be read: said so, and no advice to format.
    QDir().mkpath(cardPath("FUSE"));
    Volumes::setOverride(QList<Volume>{{cardPath("FUSE"), "FUSE", "fuseblk", qint64(8) << 30, false}});
    withDialog([&](CardCopyDialog *dialog, ModalAnswerer *) {
        QVERIFY(dialog->copyButton()->isEnabled());
        QVERIFY(!dialog->warningLabel()->isHidden());
        QCOMPARE(
            dialog->warningLabel()->text(),
            QStringLiteral("⚠ This card's file system could not be told (the system reports only fuseblk). "
                           "The frame reads only FAT32 or exFAT cards."));
        QVERIFY(!dialog->warningLabel()->text().contains("format"));
        dialog->reject();
    });

    Volumes::setOverride(QList<Volume>{});
    withDialog([&](CardCopyDialog *dialog, ModalAnswerer *) {
        QCOMPARE(dialog->volumeList()->item(0)->text(),
                 QStringLiteral("No writable TF card was found. Insert the card, then click Refresh."));
        QVERIFY(!dialog->copyButton()->isEnabled());
        dialog->reject();
    });
}

void TestMainWindowCard::replacingAsksFirst()
{
    makePackage();
    const QString card = insertCard("OLD");
    const QString old = QDir(card).filePath("vl_play/frame_000.bin");
    QVERIFY(TestFiles::write(old, "an older package"));
    const QList<ModalAnswerer::Seen> no = withDialog(
        [&](CardCopyDialog *dialog, ModalAnswerer *boxes) {
            QTest::mouseClick(dialog->copyButton(), Qt::LeftButton);
            QTRY_VERIFY(boxes->answered());
            dialog->reject();
        },
        QMessageBox::No);
    QCOMPARE(no.size(), 1);
    QVERIFY(no.first().text.startsWith("The card already holds a vl_play folder:\n"));
    QCOMPARE(TestFiles::read(old), QByteArray("an older package"));

    // A vl_play that holds files of the user's is refused before anything is asked.
    const QString theirs = QDir(card).filePath("vl_play/notes.txt");
    QVERIFY(TestFiles::write(theirs, "mine"));
    const QList<ModalAnswerer::Seen> refused = withDialog([&](CardCopyDialog *dialog, ModalAnswerer *boxes) {
        QTest::mouseClick(dialog->copyButton(), Qt::LeftButton);
        QTRY_VERIFY(boxes->answered());
        dialog->reject();
    });
    QCOMPARE(refused.size(), 1);
    QVERIFY(
        refused.first().text.contains(" holds files that are not part of a playback package:\nnotes.txt"));
    QCOMPARE(TestFiles::read(theirs), QByteArray("mine"));
    QVERIFY(QFile::remove(theirs));

    const QList<ModalAnswerer::Seen> yes =
        withDialog([&](CardCopyDialog *dialog,
                       ModalAnswerer *) { QTest::mouseClick(dialog->copyButton(), Qt::LeftButton); },
                   QMessageBox::Yes);
    QCOMPARE(yes.size(), 2); // the question, then the result
    QVERIFY(yes.last().text.contains(" copied and verified on the card:\n"));
    QCOMPARE(TestFiles::contents(QDir(card).filePath("vl_play")), TestFiles::contents(packageDir()));
    QCOMPARE(TestFiles::entries(card), QStringList{"vl_play"});
}

void TestMainWindowCard::cancelLeavesNoPackageOfOurs()
{
    makePackage();
    addLargeFrame();
    const QString card = insertCard("CANCELLED");
    withDialog([&](CardCopyDialog *dialog, ModalAnswerer *boxes) {
        auto *copy = dialog->findChild<CardCopy *>();
        QPushButton *cancel = nullptr;
        connect(copy, &CardCopy::progress, dialog, [&] {
            cancel = withText<QPushButton>(*dialog, QStringLiteral("Cancel"));
            if (cancel && cancel->isEnabled())
                cancel->click();
        });
        QTest::mouseClick(dialog->copyButton(), Qt::LeftButton);
        QVERIFY(dialog->isCopying());
        QTRY_VERIFY_WITH_TIMEOUT(!dialog->isCopying(), 30000);
        QVERIFY(cancel);
        QTRY_COMPARE(boxes->titles(), QStringList{"Copy to TF Card"});
        QCOMPARE(
            boxes->text(),
            QStringLiteral("The copy was cancelled.\n\nNothing of this copy was left on the card; a vl_play "
                           "already there was left as it was."));
        QVERIFY(dialog->isVisible()); // the user may choose again
        dialog->reject();
    });
    QCOMPARE(TestFiles::entries(card), QStringList());
}

void TestMainWindowCard::closingDuringACopyCancelsItFirst()
{
    makePackage();
    addLargeFrame();
    const QString card = insertCard("CLOSED");
    bool closed = false;
    const QList<ModalAnswerer::Seen> boxes = withDialog([&](CardCopyDialog *dialog, ModalAnswerer *) {
        connect(dialog->findChild<CardCopy *>(), &CardCopy::progress, dialog, [dialog] {
            if (dialog->isVisible())
                dialog->close(); // the window's close button, mid-copy
        });
        connect(dialog, &QDialog::rejected, dialog, [&] { closed = true; });
        QTest::mouseClick(dialog->copyButton(), Qt::LeftButton);
    });
    QVERIFY(closed);
    QVERIFY(boxes.isEmpty()); // closed quietly, once the copy had stopped
    QCOMPARE(TestFiles::entries(card), QStringList());
}

void TestMainWindowCard::aRealCardPulledOutMidCopy()
{
    // Mounted below /mnt, where the system's list of cards looks (no seam).
    const QTemporaryDir mountPoint(QStringLiteral("/mnt/velora-card-XXXXXX"));
    ExfatCard card(m_fixture->path("card.img"), mountPoint.path(), 160, QStringLiteral("VELORA"));
    if (!card.isMounted())
        QSKIP(qPrintable("no real card here: " + card.whyNot()));
    Volumes::setOverride(std::nullopt);
    makePackage();
    QFile large(QDir(packageDir()).filePath("frame_999.bin"));
    QVERIFY(large.open(QIODevice::WriteOnly) && large.resize(qint64(60) << 20));
    large.close();
    // A package on the card already, the one the copy below replaces.
    const std::atomic_bool never{false};
    QVERIFY(CardCopy::copy(packageDir(), card.path(), never, [](qint64, qint64, bool) {}).ok);
    const QString onCard = QDir(card.path()).filePath("vl_play");
    const QMap<QString, QByteArray> old = TestFiles::contents(onCard);
    QVERIFY(TestFiles::write(QDir(packageDir()).filePath("frame_998.bin"), "a frame the old one lacks"));

    QElapsedTimer sincePulled;
    qint64 boxAfterMs = -1;
    const QList<ModalAnswerer::Seen> boxes = withDialog(
        [&](CardCopyDialog *dialog, ModalAnswerer *boxes) {
            const auto closing = ModalAnswerer::closingGuard(dialog);
            QListWidgetItem *item = nullptr;
            for (int row = 0; row < dialog->volumeList()->count(); ++row) {
                if (dialog->volumeList()->item(row)->text().contains(QDir::toNativeSeparators(card.path())))
                    item = dialog->volumeList()->item(row);
            }
            QVERIFY(item);
            // Listed by its label and what its boot sector says, not as "fuseblk", and not warned about.
            QVERIFY2(
                item->text().startsWith("VELORA (" + QDir::toNativeSeparators(card.path()) + ") — exfat — "),
                qPrintable(item->text()));
            dialog->volumeList()->setCurrentItem(item);
            QVERIFY(dialog->warningLabel()->isHidden());
            boxes->setBeforeAnswer([&](const ModalAnswerer::Seen &seen) {
                if (seen.icon == QMessageBox::Critical)
                    boxAfterMs = sincePulled.elapsed();
            });
            connect(dialog->findChild<CardCopy *>(), &CardCopy::progress, dialog,
                    [&](qint64 done, qint64, bool) {
                        if (!sincePulled.isValid() && done > (qint64(10) << 20)) {
                            card.pull();
                            sincePulled.start();
                        }
                    });
            QTest::mouseClick(dialog->copyButton(), Qt::LeftButton); // and Yes to replacing
            QTRY_VERIFY_WITH_TIMEOUT(boxAfterMs >= 0, 30000);
            QVERIFY(!dialog->isCopying());
        },
        QMessageBox::Yes);
    QVERIFY(sincePulled.isValid());
    qInfo("the box came %lld ms after the card was pulled", boxAfterMs);
    QVERIFY2(boxAfterMs <= 5000, qPrintable(QString::number(boxAfterMs)));
    const QString said = boxes.last().text;
    QVERIFY2(said.startsWith("The card " + QDir::toNativeSeparators(card.path()) +
                             " can no longer be read or written; it may have been pulled out.\nCopying "),
             qPrintable(said));
    // It cannot tell what was left, so it names the hidden folder instead of saying "nothing".
    QVERIFY2(said.contains("What was copied is still on the card as " +
                           QDir::toNativeSeparators(card.path() + "/.vl_play.partial-")),
             qPrintable(said));

    // Back in: the old package whole under the real name, the hidden folder beside it.
    QVERIFY(card.reinsert());
    QCOMPARE(TestFiles::contents(onCard), old);
    const QStringList left = TestFiles::entries(card.path());
    QCOMPARE(left.size(), 2);
    QVERIFY(left.first().startsWith(".vl_play.partial-"));
    QVERIFY(said.contains(left.first()));
    // The next copy removes it and replaces the old package.
    const CardCopy::Result next =
        CardCopy::copy(packageDir(), card.path(), never, [](qint64, qint64, bool) {});
    QVERIFY2(next.ok, qPrintable(next.error));
    QCOMPARE(next.recovered.size(), 1);
    QCOMPARE(TestFiles::entries(card.path()), QStringList{"vl_play"});
    QCOMPARE(TestFiles::contents(onCard), TestFiles::contents(packageDir()));
}

QTEST_MAIN(TestMainWindowCard)
#include "tst_MainWindowCard.moc"
