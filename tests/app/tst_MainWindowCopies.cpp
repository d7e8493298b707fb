// Copies of the program side by side, and what a window leaves behind: two windows sharing one
// temporary folder never touch each other's files, a closed window takes its scratch folders
// along, and the HEIC conversion cache is kept under its size at start-up.
#include "app/MainWindow.h"
#include "images/ImageLoader.h"

#include "ModalAnswerer.h"
#include "PackageCheck.h"
#include "TestFiles.h"
#include "WindowProbe.h"
#include "WindowTestCase.h"

#include <QDir>
#include <QFile>
#include <QTest>

class TestMainWindowCopies : public WindowTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void twoWindowsShareATemporaryFolder();
    void closingTheWindowRemovesItsScratchFolders();
    void heicCacheIsKeptUnderItsSizeAtStartUp();
};

void TestMainWindowCopies::twoWindowsShareATemporaryFolder()
{
    MainWindow other;
    other.show();
    QVERIFY(QTest::qWaitForWindowExposed(&other));
    QTRY_VERIFY(!startupCheckRunning(other));
    saveLocation(other)->setText(m_fixture->path("other"));
    QVERIFY(other.liteBinStagingDir() != m_window->liteBinStagingDir());
    QVERIFY(other.renderDir() != m_window->renderDir());

    addColours({Qt::red, Qt::blue});
    const QString folder = m_fixture->path("other pictures");
    QStringList otherPictures;
    for (const QColor &colour : {QColor(Qt::green), QColor(Qt::yellow)}) {
        otherPictures << QDir(folder).filePath(colour.name().mid(1) + ".png");
        QVERIFY(QDir().mkpath(folder) && TestFiles::solidImage(400, 300, colour).save(otherPictures.last()));
    }
    other.addImageFiles(otherPictures);

    // Both runs at once, their rows interleaved.
    qputenv("TARN_SIM_SLEEP_MS", "200");
    ModalAnswerer completions(QMessageBox::Cancel);
    m_window->onStartProcess();
    other.onStartProcess();
    QVERIFY(m_window->isProcessing() && other.isProcessing());
    QTRY_VERIFY_WITH_TIMEOUT(!m_window->isProcessing() && !other.isProcessing(), 30000);
    QCOMPARE(completions.titles(), (QStringList{"Ready for Your TF Card", "Ready for Your TF Card"}));
    expectPackage({Qt::red, Qt::blue});
    QCOMPARE(PackageCheck::colours(QDir(m_fixture->path("other")).filePath("vl_play")),
             (QList<QColor>{Qt::green, Qt::yellow}));
}

void TestMainWindowCopies::closingTheWindowRemovesItsScratchFolders()
{
    addColours({Qt::red, Qt::blue});
    {
        ModalAnswerer completion(QMessageBox::Cancel);
        runToTheEnd();
    }
    const QString staging = m_window->liteBinStagingDir();
    const QString render = m_window->renderDir();
    QCOMPARE(QDir(staging).entryList(QDir::Files).size(), 2); // the Done rows' outputs, kept
    MainWindow other; // a second window, whose folders must survive the first one's going
    m_window.reset();
    QVERIFY(!QFileInfo::exists(staging));
    QVERIFY(!QFileInfo::exists(render));
    QVERIFY(QFileInfo(other.liteBinStagingDir()).isDir());
    expectPackage({Qt::red, Qt::blue}); // the package is the user's, not scratch
}

void TestMainWindowCopies::heicCacheIsKeptUnderItsSizeAtStartUp()
{
    // Three conversions of 400 MB each (sparse: no disk is used), oldest first.
    QDir cache(ImageLoader::heicCacheDir());
    QVERIFY(cache.mkpath("."));
    const QStringList names = {"oldest.jpg", "middle.jpg", "newest.jpg"};
    for (int i = 0; i < names.size(); ++i) {
        QFile file(cache.filePath(names.at(i)));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(400LL << 20));
        QVERIFY(file.setFileTime(QDateTime::currentDateTime().addDays(i - 10),
                                 QFileDevice::FileModificationTime));
    }
    QVERIFY(TestFiles::write(cache.filePath("notes.txt"), "not a conversion"));
    m_window.reset();
    m_window = std::make_unique<MainWindow>();
    QCOMPARE(cache.entryList(QDir::Files, QDir::Name),
             (QStringList{"middle.jpg", "newest.jpg", "notes.txt"}));
    QVERIFY(QFileInfo(cache.filePath("middle.jpg")).size() + QFileInfo(cache.filePath("newest.jpg")).size() <=
            ImageLoader::kHeicCacheLimitBytes);
    cache.removeRecursively();
}

QTEST_MAIN(TestMainWindowCopies)
#include "tst_MainWindowCopies.moc"
