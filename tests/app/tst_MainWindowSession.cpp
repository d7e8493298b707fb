// The session of the real window: the table kept as it changes, opened again after a normal
// close, offered after the program was killed, and a damaged session set aside.
#include "app/MainWindow.h"
#include "app/PictureList.h"
#include "images/ImageTableWidget.h"
#include "preprocess/PreprocWidget.h"

#include "ModalAnswerer.h"
#include "TestFiles.h"
#include "WindowTestCase.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMenu>
#include <QMenuBar>
#include <QProcess>
#include <QTest>

namespace {

const QString kHost = QStringLiteral(VELORA_SESSION_HOST);

QAction *reopenAction(MainWindow &window)
{
    for (QAction *top : window.menuBar()->actions()) {
        for (QAction *action : top->menu() ? top->menu()->actions() : QList<QAction *>()) {
            if (action->text() == QStringLiteral("Reopen the Last Pictures at Start"))
                return action;
        }
    }
    return nullptr;
}

std::optional<PictureList> sessionOnDisk() { return PictureList::load(MainWindow::sessionFile(), nullptr); }

} // namespace

class TestMainWindowSession : public WindowTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void theTableIsKeptAsItChanges();
    void aNormalCloseReopensTheTableWithoutAsking();
    void aKilledProgramsTableIsOfferedAtTheNextStart();
    void aDamagedSessionIsSetAsideAndTheProgramStarts();
    void cleanup();
};

void TestMainWindowSession::cleanup()
{
    WindowTestCase::cleanup(); // its window writes the session a last time as it goes
    QDir(MainWindow::sessionFolder()).removeRecursively();
}

void TestMainWindowSession::theTableIsKeptAsItChanges()
{
    m_window->startSession();
    const QStringList paths = addPictures(3);
    QTRY_COMPARE(sessionOnDisk() ? sessionOnDisk()->pictures.size() : -1, 3);
    m_window->preprocWidgetAt(2)->onRotateLeft();
    m_window->onReverseOrder();
    QTRY_VERIFY(sessionOnDisk() && sessionOnDisk()->pictures.value(0).state.rotationDegrees == 270);
    QCOMPARE(QDir::toNativeSeparators(sessionOnDisk()->pictures.value(0).path),
             QDir::toNativeSeparators(paths[2]));
    // Nothing is left of the temporary files the writes went through.
    QCOMPARE(QDir(MainWindow::sessionFolder()).entryList({"*.json*"}, QDir::Files),
             QStringList{"session.json"});
}

void TestMainWindowSession::aNormalCloseReopensTheTableWithoutAsking()
{
    m_window->startSession();
    addPictures(2);
    m_window->preprocWidgetAt(1)->onRotateRight();
    m_window.reset(); // closed: the session is written a last time

    {
        MainWindow again;
        again.show();
        ModalAnswerer none;
        again.startSession();
        QVERIFY(!none.answered());
        QCOMPARE(again.imageTable()->rowCount(), 2);
        QCOMPARE(again.preprocWidgetAt(1)->state().rotationDegrees, 90);
        // The user may choose to start empty instead.
        reopenAction(again)->setChecked(false);
    }
    MainWindow empty;
    empty.show();
    empty.startSession();
    QCOMPARE(empty.imageTable()->rowCount(), 0);
    reopenAction(empty)->setChecked(true);
}

void TestMainWindowSession::aKilledProgramsTableIsOfferedAtTheNextStart()
{
    const QStringList paths = TestFiles::makePictures(m_fixture->path(QStringLiteral("killed")), 3);
    QProcess host;
    host.setProgram(kHost);
    host.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    host.setArguments(paths);
    host.start();
    QVERIFY(host.waitForStarted());
    QByteArray said;
    QTRY_VERIFY_WITH_TIMEOUT((said += host.readAllStandardOutput()).contains("saved"), 30000);
    host.kill(); // SIGKILL: no destructor, no last write
    QVERIFY(host.waitForFinished());
    QCOMPARE(host.exitStatus(), QProcess::CrashExit);

    MainWindow next;
    next.show();
    ModalAnswerer restore(QMessageBox::Yes);
    next.startSession();
    QCOMPARE(restore.title(), QStringLiteral("Last Pictures"));
    QVERIFY(restore.text().startsWith(QStringLiteral("The program did not end normally last time.")));
    QVERIFY(restore.text().contains(QStringLiteral("Restore the 3 picture(s)")));
    QCOMPARE(next.imageTable()->rowCount(), 3);
    QCOMPARE(next.preprocWidgetAt(0)->state().rotationDegrees, 90);
    QCOMPARE(next.preprocWidgetAt(2)->sourcePath(), QFileInfo(paths[2]).absoluteFilePath());
}

void TestMainWindowSession::aDamagedSessionIsSetAsideAndTheProgramStarts()
{
    QDir().mkpath(MainWindow::sessionFolder());
    QVERIFY(TestFiles::write(MainWindow::sessionFile(), "{\"format\": \"velora"));
    ModalAnswerer told;
    m_window->startSession();
    QCOMPARE(told.title(), QStringLiteral("Last Pictures"));
    QVERIFY(told.text().startsWith(
        QStringLiteral("The table saved last time cannot be read. It was set aside as:")));
    QCOMPARE(m_window->imageTable()->rowCount(), 0);
    const QStringList aside =
        QDir(MainWindow::sessionFolder()).entryList({"session.json.unreadable-*"}, QDir::Files);
    QCOMPARE(aside.size(), 1);
    QFile kept(QDir(MainWindow::sessionFolder()).filePath(aside.first()));
    QVERIFY(kept.open(QIODevice::ReadOnly));
    QCOMPARE(kept.readAll(), QByteArray("{\"format\": \"velora"));
    // And the session goes on.
    addPictures(1);
    QTRY_COMPARE(sessionOnDisk() ? sessionOnDisk()->pictures.size() : -1, 1);
}

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    // The program's identity, as the host has it: both keep the session in the same folder.
    QApplication::setApplicationName(QStringLiteral("Velora Offline Tool"));
    QApplication::setOrganizationName(QStringLiteral("PLABRUB"));
    TestMainWindowSession test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_MainWindowSession.moc"
