#include "app/MainWindow.h"
#include "ui/AppStrings.h"
#include "ui/UiLanguage.h"

#include "ModalAnswerer.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QTest>
#include <QTextBlock>

class TestMainWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void titleAndSize();
    void helpMenu();
    void logKeepsTheLast3000Lines();
    void logWindow();
    void viewLogShowsTheLogWindow();
    void aboutBox();
    void missingConfigurationIsLogged();
    void languageSwitchDoesNothing();

private:
    static QPlainTextEdit *logView(MainWindow &window) { return window.findChild<QPlainTextEdit *>(); }
    static QDialog *logWindow(MainWindow &window) { return window.findChild<QDialog *>(); }
};

void TestMainWindow::initTestCase()
{
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
    QCOMPARE(menus.size(), 1);
    QCOMPARE(menus.at(0)->text(), QStringLiteral("Help(&H)"));
    const QList<QAction *> actions = menus.at(0)->menu()->actions();
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
    QAction *viewLog = window.menuBar()->actions().at(0)->menu()->actions().at(2);
    viewLog->trigger();
    QDialog *dialog = logWindow(window);
    QVERIFY(dialog->isVisible());
    QVERIFY(!dialog->isModal());
}

void TestMainWindow::aboutBox()
{
    MainWindow window;
    QAction *about = window.menuBar()->actions().at(0)->menu()->actions().at(0);
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
    // No tarngui_lite.json lies anywhere near the test executable.
    MainWindow window;
    QCOMPARE(logView(window)->document()->firstBlock().text(),
             QStringLiteral("⚠ 未找到 tarngui_lite.json Using default paths from the UI."));
    QCOMPARE(window.currentVariantId(), QStringLiteral("lite"));
}

void TestMainWindow::languageSwitchDoesNothing()
{
    MainWindow window;
    window.setUiLanguage(UiLanguage::Chinese);
    QCOMPARE(UiLanguage::current(), UiLanguage::English);
    QCOMPARE(window.windowTitle(), QStringLiteral("Velora Offline Tool  v1.0.3 beta"));
}

QTEST_MAIN(TestMainWindow)
#include "tst_MainWindow.moc"
