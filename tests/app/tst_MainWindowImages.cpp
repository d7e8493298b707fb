// Adding pictures to the real window: choosers aside, everything a user does to get rows.
#include "app/MainWindow.h"
#include "images/ImageTableWidget.h"
#include "preprocess/PreprocWidget.h"
#include "ui/RowStatusCell.h"
#include "ui/UiLanguage.h"

#include "DialogSpy.h"
#include "Drops.h"
#include "HeicWriter.h"
#include "ModalAnswerer.h"
#include "TestFiles.h"
#include "WindowFixture.h"
#include "WindowProbe.h"

#include <QCheckBox>
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QProgressDialog>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

namespace {

QLabel *countLabel(MainWindow &window)
{
    for (QLabel *label : window.findChildren<QLabel *>()) {
        if (label->text().endsWith(QStringLiteral(" image(s)")))
            return label;
    }
    return nullptr;
}

QCheckBox *checkBox(MainWindow &window, const QString &text)
{
    for (QCheckBox *box : window.findChildren<QCheckBox *>()) {
        if (box->text() == text)
            return box;
    }
    return nullptr;
}

QStringList sourcePaths(MainWindow &window)
{
    QStringList paths;
    for (int row = 0; row < window.imageTable()->rowCount(); ++row)
        paths << window.imageTable()
                     ->item(row, MainWindow::FileColumn)
                     ->data(MainWindow::kSourcePathRole)
                     .toString();
    return paths;
}

QStringList fileNames(const QStringList &paths)
{
    QStringList names;
    for (const QString &path : paths)
        names << QFileInfo(path).fileName();
    return names;
}

} // namespace

class TestMainWindowImages : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void rowsCarryTheirCells();
    void sameFileTwiceGivesOneRow();
    void unsupportedAndMissingPathsAreSkipped();
    void fifteenFilesAddWithoutADialog();
    void sixteenFilesShowTheDialog();
    void aFolderShowsTheDialog();
    void folderScanIsSortedAndOptionallyRecursive();
    void subfolderTooltips();
    void rowLimitReportsTheSkippedPictures();
    void cancellingTheScanAddsNothing();
    void dropOnTheWindow();
    void dropOnTheTable();
    void heicIsConvertedForTheProcessor();
    void unreadableHeicWarnsAndAddsNoRow();
    void unreadablePictureGetsAGreyThumbnail();
    void addImagesButtonOpensTheFileChooser();
    void addFolderButtonOpensTheFolderChooser();

private:
    QString folder(const QString &name) const { return m_dir.filePath(name); }
    QTemporaryDir m_dir;
    std::unique_ptr<WindowFixture> m_fixture;
    std::unique_ptr<MainWindow> m_window;
};

void TestMainWindowImages::initTestCase()
{
    QVERIFY(m_dir.isValid());
    m_fixture = std::make_unique<WindowFixture>();
    UiLanguage::set(UiLanguage::English);
}

void TestMainWindowImages::init()
{
    m_window = std::make_unique<MainWindow>();
    withoutDuplicateWarnings(*m_window);
}

void TestMainWindowImages::cleanup()
{
    m_window.reset();
    WindowFixture::removeSettings();
}

void TestMainWindowImages::rowsCarryTheirCells()
{
    const QStringList pictures = TestFiles::makePictures(folder("cells"), 3, "cell", QSize(400, 300));
    m_window->addImageFiles(pictures);
    ImageTableWidget *table = m_window->imageTable();
    QCOMPARE(table->rowCount(), 3);
    QCOMPARE(countLabel(*m_window)->text(), QStringLiteral("3 image(s)"));

    QTableWidgetItem *select = table->item(0, MainWindow::SelectColumn);
    QCOMPARE(select->flags(), Qt::ItemIsUserCheckable | Qt::ItemIsEnabled);
    QCOMPARE(select->checkState(), Qt::Unchecked);
    QCOMPARE(select->textAlignment(), int(Qt::AlignCenter));

    const QList<QPushButton *> reorder =
        table->cellWidget(0, MainWindow::OrderColumn)->findChildren<QPushButton *>();
    QCOMPARE(reorder.size(), 2);
    QCOMPARE(reorder.at(0)->text(), QStringLiteral("↑"));
    QCOMPARE(reorder.at(1)->text(), QStringLiteral("↓"));
    QCOMPARE(reorder.at(0)->size(), QSize(24, 22));
    QCOMPARE(reorder.at(0)->objectName(), QStringLiteral("tarnRowReorderBtn"));
    QCOMPARE(reorder.at(0)->toolTip(), QStringLiteral("Move up"));
    QCOMPARE(reorder.at(1)->toolTip(), QStringLiteral("Move down"));

    auto *thumb = qobject_cast<QLabel *>(table->cellWidget(0, MainWindow::ThumbColumn));
    QVERIFY(thumb);
    QCOMPARE(thumb->pixmap().size(), QSize(72, 54));
    QCOMPARE(thumb->toolTip(), QStringLiteral("Original thumbnail (updates after preprocessing)"));
    QVERIFY(thumb->testAttribute(Qt::WA_TransparentForMouseEvents));

    QTableWidgetItem *file = table->item(0, MainWindow::FileColumn);
    QCOMPARE(file->text(), QStringLiteral("cell_0000.png"));
    QCOMPARE(file->data(MainWindow::kSourcePathRole).toString(), pictures.at(0));
    QCOMPARE(file->data(MainWindow::kBaseDirRole).toString(), folder("cells"));
    QCOMPARE(file->data(MainWindow::kTempPreprocRole).toString(), QString());
    QCOMPARE(file->data(MainWindow::kHeicCacheRole).toString(), QString());
    QCOMPARE(file->toolTip(), pictures.at(0));
    auto *widget = qobject_cast<PreprocWidget *>(table->cellWidget(0, MainWindow::FileColumn));
    QVERIFY(widget);
    QCOMPARE(widget->sourcePath(), pictures.at(0));
    QCOMPARE(widget->panelResolution(), QSize(1200, 1600));

    QTableWidgetItem *status = table->item(0, MainWindow::StatusColumn);
    QCOMPARE(status->text(), QStringLiteral("Pending"));
    QCOMPARE(status->data(Str::rowStatusUserRole()).toInt(), 0);
    QCOMPARE(status->textAlignment(), int(Qt::AlignCenter));
    QCOMPARE(status->toolTip(), QString());
    QCOMPARE(table->rowHeight(0), 140);
}

void TestMainWindowImages::sameFileTwiceGivesOneRow()
{
    const QStringList pictures = TestFiles::makePictures(folder("twice"), 3, "twice");
    m_window->addImageFiles({pictures.at(0), pictures.at(0)});
    QCOMPARE(m_window->imageTable()->rowCount(), 1);
    m_window->addImageFiles({pictures.at(0)});
    QCOMPARE(m_window->imageTable()->rowCount(), 1);
    // A folder holding the listed file adds only the others.
    m_window->addImageFiles({folder("twice")});
    QCOMPARE(m_window->imageTable()->rowCount(), 3);
    QCOMPARE(sourcePaths(*m_window), pictures);
    // The same file by another spelling of its path is the same file.
    m_window->addImageFiles({folder("twice") + "/../twice/twice_0001.png"});
    QCOMPARE(m_window->imageTable()->rowCount(), 3);
    m_window->addSingleFile(pictures.at(2), folder("twice"), nullptr); // the table walk finds it too
    QCOMPARE(m_window->imageTable()->rowCount(), 3);
}

void TestMainWindowImages::unsupportedAndMissingPathsAreSkipped()
{
    QVERIFY(TestFiles::write(folder("skip/notes.txt"), "text"));
    QVERIFY(TestFiles::write(folder("skip/noext"), "x"));
    QVERIFY(TestFiles::solidImage(8, 8, Qt::red).save(folder("skip/UPPER.PNG"), "PNG"));
    DialogSpy spy;
    m_window->addImageFiles({folder("skip/notes.txt"), folder("skip/noext"), folder("skip/absent.png"),
                             QString(), folder("skip/UPPER.PNG")});
    QCOMPARE(fileNames(sourcePaths(*m_window)), QStringList{"UPPER.PNG"});
    QVERIFY(spy.shownTitles().isEmpty()); // no message for any of them
    m_window->addImageFiles({folder("skip/absent.png")});
    QCOMPARE(countLabel(*m_window)->text(), QStringLiteral("1 image(s)"));
}

void TestMainWindowImages::fifteenFilesAddWithoutADialog()
{
    const QStringList pictures = TestFiles::makePictures(folder("fifteen"), 15, "f");
    DialogSpy spy;
    m_window->addImageFiles(pictures);
    QCOMPARE(m_window->imageTable()->rowCount(), 15);
    QCOMPARE(spy.progressDialogsShown(), 0);
}

void TestMainWindowImages::sixteenFilesShowTheDialog()
{
    const QStringList pictures = TestFiles::makePictures(folder("sixteen"), 16, "s");
    DialogSpy spy;
    m_window->addImageFiles(pictures);
    QCOMPARE(m_window->imageTable()->rowCount(), 16);
    QVERIFY(spy.progressDialogsShown() >= 1);
    QVERIFY(spy.shownTitles().contains(QStringLiteral("Import Images")));
}

void TestMainWindowImages::aFolderShowsTheDialog()
{
    TestFiles::makePictures(folder("one"), 1, "o");
    DialogSpy spy;
    m_window->addImageFiles({folder("one")});
    QCOMPARE(m_window->imageTable()->rowCount(), 1);
    QVERIFY(spy.progressDialogsShown() >= 1);
    QCOMPARE(spy.shownTitles().first(), QStringLiteral("Import Images"));
}

void TestMainWindowImages::folderScanIsSortedAndOptionallyRecursive()
{
    const QString root = folder("sorted");
    QVERIFY(QDir().mkpath(QDir(root).filePath("sub")) && QDir().mkpath(QDir(root).filePath("Sub2")));
    for (const QString &name : QStringList{"b.png", "A.png", "c.PNG", "sub/d.png", "Sub2/a2.png"})
        QVERIFY(TestFiles::solidImage(8, 8, Qt::red).save(QDir(root).filePath(name), "PNG"));
    QVERIFY(TestFiles::write(QDir(root).filePath("readme.txt"), "x"));

    checkBox(*m_window, QStringLiteral("Include subfolders"))->setChecked(false);
    m_window->addImageFiles({root});
    QCOMPARE(fileNames(sourcePaths(*m_window)), (QStringList{"A.png", "b.png", "c.PNG"}));

    m_window->onClearAll();
    checkBox(*m_window, QStringLiteral("Include subfolders"))->setChecked(true);
    m_window->addImageFiles({root});
    QCOMPARE(fileNames(sourcePaths(*m_window)), (QStringList{"A.png", "b.png", "c.PNG", "d.png", "a2.png"}));
}

void TestMainWindowImages::subfolderTooltips()
{
    const QString root = folder("tips");
    QDir().mkpath(QDir(root).filePath("deep/er"));
    QVERIFY(TestFiles::solidImage(8, 8, Qt::red).save(QDir(root).filePath("top.png")));
    QVERIFY(TestFiles::solidImage(8, 8, Qt::red).save(QDir(root).filePath("deep/er/low.png")));
    m_window->addImageFiles({root});
    ImageTableWidget *table = m_window->imageTable();
    QCOMPARE(table->rowCount(), 2);
    QCOMPARE(table->item(0, MainWindow::FileColumn)->text(), QStringLiteral("low.png"));
    QCOMPARE(table->item(0, MainWindow::StatusColumn)->toolTip(), QStringLiteral("Subfolder: deep/er"));
    QCOMPARE(table->item(1, MainWindow::StatusColumn)->toolTip(), QString());
    QCOMPARE(table->item(0, MainWindow::FileColumn)->data(MainWindow::kBaseDirRole).toString(), root);
}

void TestMainWindowImages::rowLimitReportsTheSkippedPictures()
{
    const QStringList first = TestFiles::makePictures(folder("limit_a"), 995, "a", QSize(4, 4));
    {
        DialogSpy spy; // a folder: progress shown, nothing to answer
        m_window->addImageFiles({folder("limit_a")});
    }
    QCOMPARE(m_window->imageTable()->rowCount(), 995);
    const QStringList more = TestFiles::makePictures(folder("limit_b"), 10, "b", QSize(4, 4));
    {
        ModalAnswerer answerer(QMessageBox::Ok);
        m_window->addImageFiles(more);
        QCOMPARE(m_window->imageTable()->rowCount(), 1000);
        QCOMPARE(answerer.seen().size(), 1);
        QCOMPARE(answerer.title(), QStringLiteral("Notice"));
        QCOMPARE(answerer.text(),
                 QStringLiteral("Playlist limit (1000 frames) reached; skipped 5 image(s)."));
        QCOMPARE(answerer.icon(), QMessageBox::Warning);
    }
    QCOMPARE(sourcePaths(*m_window).last(), more.at(4));
    QCOMPARE(countLabel(*m_window)->text(), QStringLiteral("1000 image(s)"));
    // A full table takes nothing more and says so again.
    ModalAnswerer again(QMessageBox::Ok);
    m_window->addImageFiles({more.at(9)});
    QCOMPARE(m_window->imageTable()->rowCount(), 1000);
    QCOMPARE(again.text(), QStringLiteral("Playlist limit (1000 frames) reached; skipped 1 image(s)."));
}

void TestMainWindowImages::cancellingTheScanAddsNothing()
{
    TestFiles::makePictures(folder("cancel"), 250, "c", QSize(4, 4));
    const QStringList existing = TestFiles::makePictures(folder("kept"), 2, "k");
    m_window->addImageFiles(existing);
    countLabel(*m_window)->setText(QStringLiteral("untouched image(s)"));
    DialogSpy cancelling([](QWidget *dialog) {
        if (auto *progress = qobject_cast<QProgressDialog *>(dialog))
            progress->cancel();
    });
    m_window->addImageFiles({folder("cancel")});
    QCOMPARE(m_window->imageTable()->rowCount(), 2);
    QCOMPARE(countLabel(*m_window)->text(), QStringLiteral("untouched image(s)"));
}

void TestMainWindowImages::dropOnTheWindow()
{
    const QStringList pictures = TestFiles::makePictures(folder("drop_window"), 2, "w");
    TestFiles::makePictures(folder("drop_window/inner"), 1, "i");
    auto data = fileUrls({pictures.at(0), folder("drop_window/inner")});
    QList<QUrl> urls = data->urls();
    urls << QUrl(
        QStringLiteral("https://example.com/remote.jpg")); // not a local file: an empty path, ignored
    data->setUrls(urls);
    dropOn(m_window.get(), data.get());
    QCOMPARE(fileNames(sourcePaths(*m_window)), (QStringList{"w_0000.png", "i_0000.png"}));

    QMimeData text;
    text.setText(pictures.at(1));
    dropOn(m_window.get(), &text);
    QCOMPARE(m_window->imageTable()->rowCount(), 2);
}

void TestMainWindowImages::dropOnTheTable()
{
    TestFiles::makePictures(folder("drop_table"), 3, "t");
    const auto data = fileUrls({folder("drop_table")});
    QVERIFY(dropOn(m_window->imageTable()->viewport(), data.get()));
    QCOMPARE(m_window->imageTable()->rowCount(), 3);
    QMimeData text;
    text.setText(QStringLiteral("no urls here"));
    QVERIFY(!dropOn(m_window->imageTable()->viewport(), &text));
    QCOMPARE(m_window->imageTable()->rowCount(), 3);
}

void TestMainWindowImages::heicIsConvertedForTheProcessor()
{
    const QString heic = folder("heic/phone.heic");
    QDir().mkpath(folder("heic"));
    QVERIFY(HeicWriter::write(heic, TestFiles::solidImage(160, 120, Qt::yellow)));
    m_window->addImageFiles({heic});
    QCOMPARE(m_window->imageTable()->rowCount(), 1);
    const QString cached =
        m_window->imageTable()->item(0, MainWindow::FileColumn)->data(MainWindow::kHeicCacheRole).toString();
    QVERIFY(cached.startsWith(m_fixture->path("tmp/tarngui_heic_cache/")));
    QVERIFY(QFileInfo::exists(cached));
    auto *thumb = qobject_cast<QLabel *>(m_window->imageTable()->cellWidget(0, MainWindow::ThumbColumn));
    QCOMPARE(thumb->pixmap().size(), QSize(72, 54));
}

void TestMainWindowImages::unreadableHeicWarnsAndAddsNoRow()
{
    const QString broken = folder("heic_bad/broken.heic");
    QVERIFY(TestFiles::write(broken, "not a picture"));
    ModalAnswerer answerer(QMessageBox::Ok);
    m_window->addImageFiles({broken});
    QCOMPARE(m_window->imageTable()->rowCount(), 0);
    QCOMPARE(answerer.title(), QStringLiteral("Notice"));
    QCOMPARE(answerer.icon(), QMessageBox::Warning);
    QCOMPARE(answerer.text(),
             QStringLiteral(
                 "Cannot read HEIC/HEIF image:\n%1\n\nInstall the Windows HEIF Image Extensions, or convert "
                 "to JPG/PNG first.")
                 .arg(QDir::toNativeSeparators(broken)));
}

void TestMainWindowImages::unreadablePictureGetsAGreyThumbnail()
{
    QVERIFY(TestFiles::write(folder("grey/broken.jpg"), "not a jpeg"));
    m_window->addImageFiles({folder("grey/broken.jpg")});
    QCOMPARE(m_window->imageTable()->rowCount(), 1);
    auto *thumb = qobject_cast<QLabel *>(m_window->imageTable()->cellWidget(0, MainWindow::ThumbColumn));
    const QImage grey = thumb->pixmap().toImage();
    QCOMPARE(grey.size(), QSize(72, 72));
    QCOMPARE(grey.pixelColor(36, 36), QColor(180, 180, 180));
}

void TestMainWindowImages::addImagesButtonOpensTheFileChooser()
{
    const QStringList pictures = TestFiles::makePictures(folder("chooser"), 2, "pick");
    QString title;
    QStringList filters;
    ModalAnswerer answerer(QMessageBox::Ok, [&](QWidget *dialog) {
        if (qobject_cast<QFileDialog *>(dialog))
            title = dialog->windowTitle();
        if (auto *chooser = qobject_cast<QFileDialog *>(dialog))
            filters = chooser->nameFilters();
        ModalAnswerer::chooseInFileDialog(
            dialog, folder("chooser"),
            QStringLiteral("\"%1\" \"%2\"")
                .arg(QFileInfo(pictures.at(0)).fileName(), QFileInfo(pictures.at(1)).fileName()));
    });
    QTest::mouseClick(withText<QPushButton>(*m_window, QStringLiteral("Add Images")), Qt::LeftButton);
    QCOMPARE(title, QStringLiteral("Select images"));
    QCOMPARE(filters, (QStringList{"Images (*.jpg *.jpeg *.png *.bmp *.tif *.tiff *.webp *.heic *.heif)",
                                   "All files (*)"}));
    QCOMPARE(fileNames(sourcePaths(*m_window)), (QStringList{"pick_0000.png", "pick_0001.png"}));

    ModalAnswerer cancel(QMessageBox::Ok); // a cancelled chooser adds nothing
    QTest::mouseClick(withText<QPushButton>(*m_window, QStringLiteral("Add Images")), Qt::LeftButton);
    QCOMPARE(m_window->imageTable()->rowCount(), 2);
}

void TestMainWindowImages::addFolderButtonOpensTheFolderChooser()
{
    TestFiles::makePictures(folder("chosen"), 3, "dir");
    QString title;
    ModalAnswerer answerer(QMessageBox::Ok, [&](QWidget *dialog) {
        if (qobject_cast<QFileDialog *>(dialog))
            title = dialog->windowTitle();
        ModalAnswerer::chooseInFileDialog(dialog, folder("chosen"), QString());
    });
    QTest::mouseClick(withText<QPushButton>(*m_window, QStringLiteral("Add Folder")), Qt::LeftButton);
    QCOMPARE(title, QStringLiteral("Select image folder"));
    QCOMPARE(m_window->imageTable()->rowCount(), 3);
}

QTEST_MAIN(TestMainWindowImages)
#include "tst_MainWindowImages.moc"
