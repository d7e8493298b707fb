// Work on worker threads, seen from the window: an adding decodes on the pool and still makes
// the rows of a serial add, decodes a HEIC once, and stops cleanly when cancelled, cleared,
// removed from or destroyed; a run renders its next pictures ahead and drops them cleanly
// when stopped, changed or destroyed.
#include "app/MainWindow.h"
#include "images/ImageLoader.h"
#include "images/ImageTableWidget.h"
#include "preprocess/PreprocWidget.h"

#include "HeicWriter.h"
#include "ModalAnswerer.h"
#include "PackageCheck.h"
#include "TestFiles.h"
#include "WindowProbe.h"
#include "WindowTestCase.h"

#include <QDirIterator>
#include <QLabel>
#include <QProcess>
#include <QProgressDialog>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <functional>

namespace {

QStringList filesBelow(const QString &folder)
{
    QStringList files;
    QDirIterator it(folder, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        files << it.next();
    return files;
}

// What a row holds that a user could tell apart.
QString describeRow(MainWindow &window, int row)
{
    const QTableWidgetItem *file = window.imageTable()->item(row, MainWindow::FileColumn);
    const QTableWidgetItem *status = window.imageTable()->item(row, MainWindow::StatusColumn);
    const auto *thumb = qobject_cast<QLabel *>(window.imageTable()->cellWidget(row, MainWindow::ThumbColumn));
    const QImage thumbnail = thumb ? thumb->pixmap().toImage() : QImage();
    const PreprocWidget *widget = window.preprocWidgetAt(row);
    return QStringList{
        file->data(MainWindow::kSourcePathRole).toString(),
        file->data(MainWindow::kBaseDirRole).toString(),
        QFileInfo(file->data(MainWindow::kHeicCacheRole).toString()).fileName(),
        status->text() + '|' + status->toolTip(),
        QString::number(thumbnail.cacheKey()
                            ? qHash(QByteArray(reinterpret_cast<const char *>(thumbnail.constBits()),
                                               thumbnail.sizeInBytes()))
                            : 0),
        widget ? QStringLiteral("%1x%2")
                     .arg(widget->thumbnailSource().width())
                     .arg(widget->thumbnailSource().height())
               : QString()}
        .join(QLatin1Char(' '));
}

} // namespace

class TestMainWindowBackground : public WindowTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void aFolderAddsAsASerialAddWould();
    void aHeicIsDecodedOnceWhenAdded();
    void cancelKeepsTheRowsAlreadyAdded();
    void clearDuringAnAdding();
    void removeDuringAnAdding();
    void windowDestroyedDuringAnAdding();
    void theNextRowsAreRenderedWhileTheProcessorWorks();
    void stopDropsTheRendersAhead();
    void windowDestroyedWithRendersAhead();
    void aRowChangedAfterItsRenderAheadIsRenderedAgain();

private:
    // A folder of count small pictures (and whatever else is added to it).
    QString folderOf(int count, const QString &name);
    // Four photos whose renders take a while, processed by a slow processor.
    void startASlowRunOfPhotos();
    // Adds the folder and calls whenRows once the table has at least rows rows.
    void addFolderAndAt(const QString &folder, int rows, const std::function<void()> &whenRows);
};

QString TestMainWindowBackground::folderOf(int count, const QString &name)
{
    const QString folder = m_fixture->path(name);
    QStringList pictures = TestFiles::makePictures(folder, count, QStringLiteral("pic"), QSize(64, 48));
    for (int i = 0; i < pictures.size(); ++i)
        TestFiles::photoLikeImage(64 + i % 7, 48, quint32(i)).save(pictures.at(i));
    return folder;
}

void TestMainWindowBackground::startASlowRunOfPhotos()
{
    QList<QImage> photos;
    for (int i = 0; i < 4; ++i)
        photos << TestFiles::photoLikeImage(1600, 1200, quint32(i));
    addPictures(photos);
    qputenv("TARN_SIM_SLEEP_MS", "2000");
    m_window->onStartProcess();
}

void TestMainWindowBackground::addFolderAndAt(const QString &folder, int rows,
                                              const std::function<void()> &whenRows)
{
    QTimer watch;
    bool done = false;
    connect(&watch, &QTimer::timeout, this, [&] {
        if (!done && m_window && m_window->imageTable()->rowCount() >= rows) {
            done = true;
            whenRows();
        }
    });
    watch.start(5);
    ModalAnswerer answers(QMessageBox::Ok, [](QWidget *) {}); // the progress dialog is left alone
    m_window->addImageFiles({folder});
    QVERIFY(done);
}

void TestMainWindowBackground::aFolderAddsAsASerialAddWould()
{
    // 300 pictures: JPEGs and PNGs, some that cannot be read, HEICs (one broken), in subfolders.
    const QString folder = folderOf(270, "mixed");
    for (int i = 0; i < 12; ++i)
        TestFiles::write(QDir(folder).filePath(QStringLiteral("Broken_%1.jpg").arg(i)), "not a picture");
    QDir().mkpath(QDir(folder).filePath("sub"));
    for (int i = 0; i < 12; ++i)
        TestFiles::photoLikeImage(80, 60, quint32(100 + i))
            .save(QDir(folder).filePath(QStringLiteral("sub/Photo_%1.JPG").arg(i, 2, 10, QLatin1Char('0'))));
    for (int i = 0; i < 5; ++i)
        QVERIFY(HeicWriter::write(QDir(folder).filePath(QStringLiteral("phone_%1.heic").arg(i)),
                                  TestFiles::markedImage(64 + i, 48)));
    QVERIFY(TestFiles::write(QDir(folder).filePath("phone_broken.heic"), "not a HEIC"));
    QCOMPARE(filesBelow(folder).size(), 300);

    QDir(ImageLoader::heicCacheDir()).removeRecursively();
    QList<ModalAnswerer::Seen> addingBoxes;
    {
        ModalAnswerer addingAnswers(QMessageBox::Ok, [](QWidget *) {});
        m_window->addImageFiles({folder});
        addingBoxes = addingAnswers.seen();
    }

    // The same pictures added one by one, in the order a serial add takes them.
    QDir(ImageLoader::heicCacheDir()).removeRecursively();
    MainWindow serial;
    QStringList found = filesBelow(folder);
    std::sort(found.begin(), found.end(),
              [](const QString &a, const QString &b) { return a.compare(b, Qt::CaseInsensitive) < 0; });
    QSet<QString> seen;
    ModalAnswerer serialAnswers(QMessageBox::Ok);
    for (const QString &path : std::as_const(found))
        serial.addSingleFile(path, folder, &seen);

    QCOMPARE(m_window->imageTable()->rowCount(), 299); // the broken HEIC gets no row
    QCOMPARE(serial.imageTable()->rowCount(), 299);
    for (int row = 0; row < 299; ++row)
        QCOMPARE(describeRow(*m_window, row), describeRow(serial, row));
    QCOMPARE(addingBoxes.size(), 1);
    QCOMPARE(serialAnswers.seen().size(), 1);
    QCOMPARE(addingBoxes.first().title, serialAnswers.seen().first().title);
    QCOMPARE(addingBoxes.first().text, serialAnswers.seen().first().text);
    QVERIFY(addingBoxes.first().text.contains("phone_broken.heic"));
    QCOMPARE(withText<QLabel>(*m_window, QStringLiteral("299 image(s)")) != nullptr, true);
}

void TestMainWindowBackground::aHeicIsDecodedOnceWhenAdded()
{
    const QString folder = m_fixture->path("heics");
    QVERIFY(QDir().mkpath(folder));
    for (int i = 0; i < 4; ++i)
        QVERIFY(HeicWriter::write(QDir(folder).filePath(QStringLiteral("p%1.heic").arg(i)),
                                  TestFiles::markedImage(320, 240)));
    QDir(ImageLoader::heicCacheDir()).removeRecursively();
    const int before = ImageLoader::heifDecodeCount();
    m_window->addImageFiles({folder});
    QCOMPARE(m_window->imageTable()->rowCount(), 4);
    QCOMPARE(ImageLoader::heifDecodeCount() - before, 4); // one decode each: copy and both previews
    // Adding the same pictures again (duplicates) converts from the cache: no decode.
    m_window->addImageFiles({folder});
    QCOMPARE(ImageLoader::heifDecodeCount() - before, 4);
}

void TestMainWindowBackground::cancelKeepsTheRowsAlreadyAdded()
{
    const QString folder = folderOf(300, "cancelled");
    QTimer canceller;
    connect(&canceller, &QTimer::timeout, this, [this] {
        // Clicked as a user would.
        QProgressDialog *progress = m_window->findChild<QProgressDialog *>();
        if (progress && m_window->imageTable()->rowCount() >= 30) {
            if (auto *cancel = progress->findChild<QPushButton *>())
                QTest::mouseClick(cancel, Qt::LeftButton);
        }
    });
    canceller.start(5);
    ModalAnswerer answers(QMessageBox::Ok, [](QWidget *) {});
    m_window->addImageFiles({folder});
    const int rows = m_window->imageTable()->rowCount();
    QVERIFY2(rows >= 30 && rows < 300, qPrintable(QString::number(rows)));
    // The rows kept are the first ones of the folder, whole, in order.
    QStringList found = filesBelow(folder);
    std::sort(found.begin(), found.end(),
              [](const QString &a, const QString &b) { return a.compare(b, Qt::CaseInsensitive) < 0; });
    for (int row = 0; row < rows; ++row) {
        QCOMPARE(m_window->imageTable()
                     ->item(row, MainWindow::FileColumn)
                     ->data(MainWindow::kSourcePathRole)
                     .toString(),
                 found.at(row));
        QVERIFY(m_window->preprocWidgetAt(row));
    }
    QVERIFY(withText<QLabel>(*m_window, QStringLiteral("%1 image(s)").arg(rows)));
}

void TestMainWindowBackground::clearDuringAnAdding()
{
    addFolderAndAt(folderOf(300, "cleared"), 30, [this] { m_window->onClearAll(); });
    QCOMPARE(m_window->imageTable()->rowCount(), 0);
    QVERIFY(withText<QLabel>(*m_window, QStringLiteral("0 image(s)")));
    QTest::qWait(200); // nothing arrives late
    QCOMPARE(m_window->imageTable()->rowCount(), 0);
}

void TestMainWindowBackground::removeDuringAnAdding()
{
    QString removed;
    addFolderAndAt(folderOf(300, "removed"), 30, [this, &removed] {
        removed = m_window->imageTable()
                      ->item(0, MainWindow::FileColumn)
                      ->data(MainWindow::kSourcePathRole)
                      .toString();
        check({0});
        m_window->onRemoveSelected();
    });
    const int rows = m_window->imageTable()->rowCount();
    QVERIFY(rows >= 29 && rows < 299);
    for (int row = 0; row < rows; ++row) {
        QVERIFY(m_window->imageTable()
                    ->item(row, MainWindow::FileColumn)
                    ->data(MainWindow::kSourcePathRole)
                    .toString() != removed);
        QVERIFY(m_window->preprocWidgetAt(row)); // every row whole
    }
}

void TestMainWindowBackground::windowDestroyedDuringAnAdding()
{
    const QString render = m_window->renderDir();
    addFolderAndAt(folderOf(300, "destroyed"), 30, [this] { m_window.reset(); });
    QVERIFY(!m_window);
    QTest::qWait(200);
    QVERIFY(!QFileInfo::exists(render));
}

void TestMainWindowBackground::theNextRowsAreRenderedWhileTheProcessorWorks()
{
    startASlowRunOfPhotos();
    QTRY_VERIFY(
        logLines(*m_window).contains(QStringLiteral("  | tarn-sim: quantising 1200x1600 for panel 133")));
    // While the processor works on the first row, the next two rows' pictures are made, and the
    // last one's is not yet.
    const auto rendered = [this] {
        QStringList names;
        for (const QString &file : filesBelow(m_window->renderDir()))
            names << QFileInfo(file).fileName();
        names.sort();
        return names;
    };
    const auto processorsStarted = [this] {
        return logLines(*m_window).filter(QStringLiteral("  $ TARN-lite")).size();
    };
    QTRY_VERIFY(rendered().contains(QStringLiteral("photo_2_preproc.jpg")) || processorsStarted() > 1);
    QCOMPARE(processorsStarted(), 1); // still the first row's processor
    QCOMPARE(rendered(), QStringList({"photo_0_preproc.jpg", "photo_1_preproc.jpg", "photo_2_preproc.jpg"}));
    m_window->onStopProcess();
    QTRY_COMPARE(statusText(0), QStringLiteral("Pending"));
}

void TestMainWindowBackground::stopDropsTheRendersAhead()
{
    startASlowRunOfPhotos();
    QTRY_VERIFY(
        logLines(*m_window).contains(QStringLiteral("  | tarn-sim: quantising 1200x1600 for panel 133")));
    QTest::qWait(300); // the next rows' renders under way or done
    m_window->onStopProcess();
    QTRY_COMPARE(statusText(0), QStringLiteral("Pending"));
    for (int row = 1; row < 4; ++row)
        QCOMPARE(statusText(row), QStringLiteral("Pending"));
    QTRY_COMPARE_WITH_TIMEOUT(filesBelow(m_window->renderDir()), QStringList(), 10000);
    QCOMPARE(QDir(m_window->renderDir()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());
}

void TestMainWindowBackground::windowDestroyedWithRendersAhead()
{
    startASlowRunOfPhotos();
    QVERIFY(m_window->isProcessing());
    const QString render = m_window->renderDir();
    QTest::qWait(50);
    m_window.reset();
    QVERIFY(!QFileInfo::exists(render));
    QCOMPARE(filesBelow(QFileInfo(render).absolutePath()), QStringList());
}

void TestMainWindowBackground::aRowChangedAfterItsRenderAheadIsRenderedAgain()
{
    // Red in the top-left corner (a quarter of each side): turned by 180 degrees, the frame
    // shows it bottom-right.
    addPictures({TestFiles::markedImage(400, 300), TestFiles::markedImage(400, 300)});
    qputenv("TARN_SIM_SLEEP_MS", "1500");
    ModalAnswerer completion(QMessageBox::Cancel);
    m_window->onStartProcess();
    QTRY_VERIFY(
        logLines(*m_window).contains(QStringLiteral("  | tarn-sim: quantising 1200x1600 for panel 133")));
    QTest::qWait(300); // row 1 rendered ahead meanwhile
    m_window->preprocWidgetAt(1)->onRotateRight();
    m_window->preprocWidgetAt(1)->onRotateRight();
    qunsetenv("TARN_SIM_SLEEP_MS");
    QTRY_VERIFY_WITH_TIMEOUT(!m_window->isProcessing(), 30000);
    QCOMPARE(statusText(1), QStringLiteral("Done ✓"));
    QCOMPARE(logLines(*m_window).filter(QStringLiteral("  $ TARN-lite")).size(), 2);
    // The 400 x 300 picture fills 1200 x 900 of the frame, from y = 350: its red corner is
    // x < 300, y < 575, or, turned, x >= 900, y >= 1025.
    const auto pixel = [this](int frame, int x, int y) {
        QTemporaryDir dir;
        QProcess::execute(TestFiles::tarnSimPath(),
                          {"--decode",
                           QDir(packageDir()).filePath(QStringLiteral("frame_00%1.bin").arg(frame)),
                           dir.filePath("f.png")});
        return QImage(dir.filePath("f.png")).pixelColor(x, y);
    };
    QCOMPARE(pixel(0, 150, 450), QColor(Qt::red));
    QCOMPARE(pixel(1, 150, 450), QColor(Qt::blue));
    QCOMPARE(pixel(1, 1050, 1150), QColor(Qt::red));
}

QTEST_MAIN(TestMainWindowBackground)
#include "tst_MainWindowBackground.moc"
