#include "app/MainWindow.h"
#include "preprocess/PreprocWidget.h"
#include "ui/AppStrings.h"
#include "ui/AppTheme.h"
#include "ui/UiLanguage.h"

#include "images/ImageTableWidget.h"
#include "preprocess/PreprocControlPanel.h"

#include "DialogSpy.h"
#include "LanguageGuard.h"
#include "ModalAnswerer.h"
#include "TestFiles.h"
#include "WindowFixture.h"
#include "WindowProbe.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QDragEnterEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBlock>

class TestMainWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void titleAndSize();
    void helpMenu();
    void logKeepsTheLast3000Lines();
    void logWindow();
    void viewLogShowsTheLogWindow();
    void aboutBox();
    void missingConfigurationIsLogged();
    void languageSwitchDoesNothing();
    void dragEnterNeedsUrls();
    void retranslateIntoChinese();
    void unnamedLabelsAreMatchedInOrder();
    void fileNamesAreNeverRelabelled();

private:
    std::unique_ptr<WindowFixture> m_fixture;
    static QPlainTextEdit *logView(MainWindow &window) { return window.findChild<QPlainTextEdit *>(); }
    static QDialog *logWindow(MainWindow &window) { return window.findChild<QDialog *>(); }
};

void TestMainWindow::cleanup() { WindowFixture::removeSettings(); }

void TestMainWindow::initTestCase()
{
    m_fixture = std::make_unique<WindowFixture>();
    UiLanguage::set(UiLanguage::English);
    QApplication::setApplicationVersion(QStringLiteral("1.0.3"));
}

void TestMainWindow::titleAndSize()
{
    MainWindow window;
    QCOMPARE(window.windowTitle(), QStringLiteral("Velora Offline Tool  v1.0.3 beta"));
    QCOMPARE(window.minimumSize(), QSize(720, 620));
    QCOMPARE(window.size(), QSize(860, 720));
    QVERIFY(window.acceptDrops());
    QVERIFY(!window.windowIcon().isNull());
    window.resize(300, 200);
    QCOMPARE(window.size(), QSize(720, 620)); // cannot be made smaller
}

void TestMainWindow::helpMenu()
{
    MainWindow window;
    const QList<QAction *> menus = window.menuBar()->actions();
    QCOMPARE(menus.constLast()->text(), QStringLiteral("Help(&H)")); // the last menu (their order: Lists)
    const QList<QAction *> actions = menus.constLast()->menu()->actions();
    QCOMPARE(actions.size(), 3);
    QCOMPARE(actions.at(0)->text(), QStringLiteral("About(&A)"));
    QVERIFY(actions.at(1)->isSeparator());
    QCOMPARE(actions.at(2)->text(), QStringLiteral("View Log(&L)"));
}

void TestMainWindow::logKeepsTheLast3000Lines()
{
    MainWindow window;
    QPlainTextEdit *view = logView(window);
    QVERIFY(view);
    view->clear();
    for (int i = 1; i <= 3100; ++i)
        window.appendLog(QStringLiteral("line %1").arg(i));
    QCOMPARE(view->document()->blockCount(), 3000);
    QCOMPARE(view->document()->firstBlock().text(), QStringLiteral("line 101"));
    QCOMPARE(view->document()->lastBlock().text(), QStringLiteral("line 3100"));
    // Text goes in as plain text, never as HTML.
    window.appendLog(QStringLiteral("<b>not bold</b>"));
    QCOMPARE(view->document()->lastBlock().text(), QStringLiteral("<b>not bold</b>"));
}

void TestMainWindow::logWindow()
{
    MainWindow window;
    QDialog *dialog = logWindow(window);
    QVERIFY(dialog);
    QCOMPARE(dialog->parent(), &window);
    QCOMPARE(dialog->windowTitle(), QStringLiteral("Log"));
    QVERIFY(!dialog->isVisible());
    QPlainTextEdit *view = logView(window);
    QVERIFY(view->isReadOnly());
    QCOMPARE(view->maximumBlockCount(), 3000);
    QCOMPARE(view->placeholderText(), QStringLiteral("Processing log will appear here..."));
    QCOMPARE(view->font().family(), QStringLiteral("Microsoft YaHei"));
    QCOMPARE(view->font().pointSize(), 9);
    QCOMPARE(dialog->findChild<QLabel *>(QStringLiteral("tarnHeaderTitle"))->text(), QStringLiteral("Log"));
}

void TestMainWindow::viewLogShowsTheLogWindow()
{
    MainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QAction *viewLog = window.menuBar()->actions().last()->menu()->actions().at(2);
    viewLog->trigger();
    QDialog *dialog = logWindow(window);
    QVERIFY(dialog->isVisible());
    QVERIFY(!dialog->isModal());
}

void TestMainWindow::aboutBox()
{
    MainWindow window;
    QAction *about = window.menuBar()->actions().last()->menu()->actions().at(0);
    ModalAnswerer answerer(QMessageBox::Ok);
    about->trigger();
    QVERIFY(answerer.answered());
    QCOMPARE(answerer.title(), QStringLiteral("About Velora Offline Tool"));
    QCOMPARE(answerer.icon(), QMessageBox::Information);
    QCOMPARE(answerer.text(), Str::aboutHtml());
    const QString plain = ModalAnswerer::plainText(answerer.text());
    QVERIFY(plain.contains(QStringLiteral("Velora Offline Tool v1.0.3 beta")));
    QVERIFY(plain.contains(QStringLiteral("How to use:")));
    QVERIFY(plain.contains(QStringLiteral("Add the images you want to display and adjust them as needed")));
}

void TestMainWindow::missingConfigurationIsLogged()
{
    // No tarngui_lite.json anywhere the window looks.
    m_fixture->removeConfiguration();
    {
        MainWindow window;
        QCOMPARE(logView(window)->document()->firstBlock().text(),
                 QStringLiteral("⚠ tarngui_lite.json not found Using default paths from the UI."));
        QCOMPARE(window.currentVariantId(), QStringLiteral("lite"));
    }
    m_fixture->useProcessor(WindowFixture::demoProcessor(), WindowFixture::demoProcessorDir());
}

void TestMainWindow::languageSwitchDoesNothing()
{
    MainWindow window;
    window.setUiLanguage(UiLanguage::Chinese);
    QCOMPARE(UiLanguage::current(), UiLanguage::English);
    QCOMPARE(window.windowTitle(), QStringLiteral("Velora Offline Tool  v1.0.3 beta"));
}

void TestMainWindow::dragEnterNeedsUrls()
{
    MainWindow window;
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(QStringLiteral("/tmp/a.jpg"))});
    QDragEnterEvent accepted(QPoint(10, 10), Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    accepted.ignore();
    QCoreApplication::sendEvent(&window, &accepted);
    QVERIFY(accepted.isAccepted());
    QMimeData text;
    text.setText(QStringLiteral("hello"));
    QDragEnterEvent refused(QPoint(10, 10), Qt::CopyAction, &text, Qt::LeftButton, Qt::NoModifier);
    refused.ignore();
    QCoreApplication::sendEvent(&window, &refused);
    QVERIFY(!refused.isAccepted());
}

void TestMainWindow::retranslateIntoChinese()
{
    MainWindow window;
    QTemporaryDir dir;
    window.addImageFiles(TestFiles::makePictures(dir.path(), 2));
    window.setRowStatus(1, Str::RowStatus::ExitCodeFailed, 3);
    LanguageGuard zh(UiLanguage::Chinese);
    window.retranslateUi();
    QCOMPARE(window.windowTitle(), QStringLiteral("Velora 离线工具  v1.0.3 beta"));
    QCOMPARE(window.menuBar()->actions().last()->text(), QStringLiteral("帮助(&H)"));
    QVERIFY(section(window, QStringLiteral("第 1 步：选择设备")));
    QVERIFY(section(window, QStringLiteral("第 2 步：添加图片")));
    QVERIFY(section(window, QStringLiteral("第 3 步：生成播放文件")));
    QVERIFY(withText<QPushButton>(window,
                                  QStringLiteral("导入密钥..."))); // named like a browse button, yet itself
    QVERIFY(withText<QPushButton>(window, QStringLiteral("浏览...")));
    QVERIFY(!withText<QPushButton>(window, QStringLiteral("Browse...")));
    QVERIFY(withText<QLabel>(window, QStringLiteral("相框型号:")));
    QVERIFY(withText<QLabel>(window, QStringLiteral("相框方向:")));
    QVERIFY(withText<QLabel>(window, QStringLiteral("可执行文件:")));
    QVERIFY(withText<QLabel>(window, QStringLiteral("工作目录:")));
    QVERIFY(withText<QLabel>(window, QStringLiteral("批量:")));
    QVERIFY(withText<QLabel>(window, QStringLiteral("2 张图片")));
    QVERIFY(comboStartingWith(window, QStringLiteral("竖屏 (0)")));
    QVERIFY(withText<QCheckBox>(window, QStringLiteral("包含子文件夹")));
    QVERIFY(withText<QPushButton>(window, QStringLiteral("▶  开始处理")));
    QCOMPARE(window.imageTable()->horizontalHeaderItem(3)->text(), QStringLiteral("文件名"));
    QCOMPARE(window.imageTable()->item(1, MainWindow::StatusColumn)->text(), QStringLiteral("失败(3)"));
    QCOMPARE(window.imageTable()->item(0, MainWindow::StatusColumn)->text(), QStringLiteral("待处理"));
    QCOMPARE(window.preprocWidgetAt(0)->controlPanel()->fillButton(FillMode::BlurFill)->text(),
             QStringLiteral("模糊"));
    QCOMPARE(window.findChild<QPlainTextEdit *>()->placeholderText(),
             QStringLiteral("处理日志将显示在这里..."));
    QCOMPARE(logWindow(window)->windowTitle(), QStringLiteral("日志"));

    UiLanguage::set(UiLanguage::English);
    window.retranslateUi();
    QVERIFY(withText<QLabel>(window, QStringLiteral("Executable:")));
    QVERIFY(withText<QPushButton>(window, QStringLiteral("Import Key...")));
    QCOMPARE(window.imageTable()->item(1, MainWindow::StatusColumn)->text(), QStringLiteral("Failed (3)"));
}

void TestMainWindow::unnamedLabelsAreMatchedInOrder()
{
    MainWindow window;
    auto *both = new QLabel(QStringLiteral("Working Processor"), window.centralWidget());
    auto *orientation = new QLabel(QStringLiteral("Orientation:"), window.centralWidget());
    auto *panelType = new QLabel(QStringLiteral("面板类型:"), window.centralWidget());
    auto *lut = new QLabel(QStringLiteral("my LUT"), window.centralWidget());
    auto *other = new QLabel(QStringLiteral("nothing to match"), window.centralWidget());
    window.retranslateUi();
    QCOMPARE(both->text(), QStringLiteral("Processor variant:")); // "Processor" is tested first
    QCOMPARE(orientation->text(), QStringLiteral("Orientation:"));
    QCOMPARE(panelType->text(), QStringLiteral("Frame model:"));
    QCOMPARE(lut->text(), QStringLiteral("LUT file:"));
    QCOMPARE(other->text(), QStringLiteral("nothing to match"));
}

void TestMainWindow::fileNamesAreNeverRelabelled()
{
    MainWindow window;
    QTemporaryDir dir;
    const QString odd = dir.filePath(QStringLiteral("Batch: Processor Working.png"));
    QVERIFY(TestFiles::solidImage(8, 8, Qt::red).save(odd, "PNG"));
    window.addImageFiles({odd});
    window.retranslateUi();
    QVERIFY(withText<QLabel>(window, QStringLiteral("Batch: Processor Working.png")));
}

QTEST_MAIN(TestMainWindow)
#include "tst_MainWindow.moc"
