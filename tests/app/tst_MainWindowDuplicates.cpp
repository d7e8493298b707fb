// Duplicate warnings of the real window: after an adding, exact copies of listed pictures and
// other versions of them (re-encoded, resized) are told in one box that offers to skip the
// exact copies; different photos are not.
#include "app/MainWindow.h"
#include "images/ImageTableWidget.h"

#include "ModalAnswerer.h"
#include "TestFiles.h"
#include "WindowTestCase.h"

#include <QAction>
#include <QDir>
#include <QFile>
#include <QTest>
#include <QUndoStack>

class TestMainWindowDuplicates : public WindowTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void exactCopiesAreSkippedAndOtherVersionsTold();
    void keepAllKeepsTheCopies();
    void differentPhotosAddWithoutAWord();
    void theWarningCanBeSwitchedOff();

private:
    QString m_original;
    QString m_folder;
};

void TestMainWindowDuplicates::init()
{
    WindowTestCase::init();
    m_window->findChild<QAction *>(QStringLiteral("warnDuplicates"))->setChecked(true);
    const QImage photo = TestFiles::photoLikeImage(1200, 900, 1);
    m_original = TestFiles::savedPicture(m_fixture->path(QStringLiteral("listed/original.jpg")), photo);
    m_folder = m_fixture->path(QStringLiteral("more"));
    QDir(m_folder).removeRecursively();
    QDir().mkpath(m_folder);
    QVERIFY(QFile::copy(m_original, m_folder + QStringLiteral("/a copy.jpg")));
    QVERIFY(photo.save(m_folder + QStringLiteral("/b lower quality.jpg"), nullptr, 40));
    QVERIFY(photo.scaled(600, 450).save(m_folder + QStringLiteral("/c smaller.png")));
    QVERIFY(TestFiles::photoLikeImage(1200, 900, 7).save(m_folder + QStringLiteral("/d another.jpg")));
    m_window->addImageFiles({m_original});
}

void TestMainWindowDuplicates::exactCopiesAreSkippedAndOtherVersionsTold()
{
    ModalAnswerer skip;
    skip.setButtonText(QStringLiteral("Skip Exact Copies"));
    m_window->addImageFiles({m_folder});
    QCOMPARE(skip.titles(), QStringList{"Duplicate Pictures"});
    const QString text = skip.text();
    const QString original = QDir::toNativeSeparators(m_original);
    QVERIFY2(text.startsWith("1 picture(s) are exact copies of pictures already listed"), qPrintable(text));
    QVERIFY(text.contains("2 picture(s) look like another version of a listed picture"));
    QVERIFY(text.contains("a copy.jpg — the same as " + original));
    QVERIFY(text.contains("b lower quality.jpg — looks like " + original));
    QVERIFY(text.contains("c smaller.png — looks like " + original));
    QVERIFY(!text.contains("d another.jpg"));
    QCOMPARE(rowNames(),
             (QStringList{"original.jpg", "b lower quality.jpg", "c smaller.png", "d another.jpg"}));
    // The adding and its skipping are one step.
    m_window->undoStack()->undo();
    QCOMPARE(rowNames(), QStringList{"original.jpg"});
}

void TestMainWindowDuplicates::keepAllKeepsTheCopies()
{
    ModalAnswerer keep;
    keep.setButtonText(QStringLiteral("Keep All"));
    m_window->addImageFiles({m_folder});
    QVERIFY(keep.answered());
    QCOMPARE(m_window->imageTable()->rowCount(), 5);
}

void TestMainWindowDuplicates::differentPhotosAddWithoutAWord()
{
    QStringList others;
    for (quint32 seed = 20; seed < 26; ++seed)
        others << TestFiles::savedPicture(m_fixture->path(QStringLiteral("others/%1.jpg").arg(seed)),
                                          TestFiles::photoLikeImage(800, 600, seed));
    ModalAnswerer none;
    m_window->addImageFiles(others);
    QVERIFY(!none.answered());
    QCOMPARE(m_window->imageTable()->rowCount(), 7);
}

void TestMainWindowDuplicates::theWarningCanBeSwitchedOff()
{
    m_window->findChild<QAction *>(QStringLiteral("warnDuplicates"))->setChecked(false);
    ModalAnswerer none;
    m_window->addImageFiles({m_folder});
    QVERIFY(!none.answered());
    QCOMPARE(m_window->imageTable()->rowCount(), 5);
}

QTEST_MAIN(TestMainWindowDuplicates)
#include "tst_MainWindowDuplicates.moc"
