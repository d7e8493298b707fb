// Picture lists in the window: a list saved, the program started again and the list opened
// gives the same rows, states and settings; a list is opened through the File menu and its
// recent lists; a broken list, or one opened during a run, changes nothing.
#include "app/MainWindow.h"
#include "app/PictureList.h"
#include "images/ImageTableWidget.h"
#include "preprocess/PreprocWidget.h"
#include "ui/UiLanguage.h"

#include "FramedState.h"
#include "LanguageGuard.h"
#include "ModalAnswerer.h"
#include "TestFiles.h"
#include "WindowProbe.h"
#include "WindowTestCase.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QSpinBox>
#include <QTest>

class TestMainWindowLists : public WindowTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void fileMenuComesBeforeHelp();
    void savedListComesBackAfterARestart();
    void openingAsksBeforeReplacingTheTable();
    void missingPicturesAreNamedInOneBox();
    void brokenListChangesNothing();
    void menuActionsAndRecentLists();
    void listsAreRefusedDuringARun();

private:
    void restart();
    // Saves the table as a list, failing the test on any box the window shows.
    bool saveList(const QString &path);
    QAction *fileAction(const QString &text) const;
    QList<PreprocState> states() const;
    QStringList paths() const;
    QString listPath() const { return m_fixture->path("lists/mine.json"); }
};

void TestMainWindowLists::restart()
{
    m_window.reset();
    WindowFixture::removeSettings(); // what comes back, comes from the list
    m_window = std::make_unique<MainWindow>();
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    QTRY_VERIFY(!startupCheckRunning(*m_window));
}

bool TestMainWindowLists::saveList(const QString &path)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    ModalAnswerer none;
    const bool saved = m_window->savePictureList(path);
    if (none.answered())
        qWarning("%s: %s", qPrintable(none.title()), qPrintable(none.text()));
    return saved && !none.answered();
}

QAction *TestMainWindowLists::fileAction(const QString &text) const
{
    for (QAction *action : m_window->menuBar()->actions().first()->menu()->actions()) {
        if (action->text() == text)
            return action;
    }
    return nullptr;
}

QList<PreprocState> TestMainWindowLists::states() const
{
    QList<PreprocState> result;
    for (int row = 0; row < m_window->imageTable()->rowCount(); ++row)
        result << m_window->preprocWidgetAt(row)->state();
    return result;
}

QStringList TestMainWindowLists::paths() const
{
    QStringList result;
    for (int row = 0; row < m_window->imageTable()->rowCount(); ++row)
        result << QDir::fromNativeSeparators(m_window->imageTable()
                                                 ->item(row, MainWindow::FileColumn)
                                                 ->data(MainWindow::kSourcePathRole)
                                                 .toString());
    return result;
}

void TestMainWindowLists::fileMenuComesBeforeHelp()
{
    const QList<QAction *> menus = m_window->menuBar()->actions();
    QCOMPARE(menus.size(), 5);
    QCOMPARE(menus.at(0)->text(), QStringLiteral("File(&F)"));
    QCOMPARE(menus.at(1)->text(), QStringLiteral("Edit(&E)"));
    QCOMPARE(menus.at(2)->text(), QStringLiteral("View(&V)"));
    QCOMPARE(menus.at(3)->text(), QStringLiteral("Arrange(&A)"));
    QCOMPARE(menus.at(4)->text(), QStringLiteral("Help(&H)"));
    QVERIFY(fileAction("Open List…") && fileAction("Save List…") && fileAction("Save List As…"));
    QVERIFY(fileAction("Recent Lists"));

    LanguageGuard chinese(UiLanguage::Chinese);
    m_window->retranslateUi();
    QCOMPARE(m_window->menuBar()->actions().at(0)->text(), QStringLiteral("文件(&F)"));
    QVERIFY(fileAction("打开列表…") && fileAction("保存列表…") && fileAction("列表另存为…"));
    QVERIFY(fileAction("最近的列表"));
}

void TestMainWindowLists::savedListComesBackAfterARestart()
{
    const QStringList pictures = addColours({Qt::red, Qt::blue, Qt::green});
    const QString keyFile = key("frame.json", R"({"panel": "25.3"})");
    setKeyFile(keyFile);
    m_window->preprocWidgetAt(0)->applyState(framedState(FillMode::CenterCrop, 0.2, 0.8, 2.5, 90));
    m_window->preprocWidgetAt(2)->applyState(framedState(FillMode::WhiteFill, 0.5, 0.5, 1.0, 180));
    comboStartingWith(*m_window, "Portrait (0)")->setCurrentIndex(1);
    m_window->setPlaylistIntervalMinutes(1500);
    withText<QCheckBox>(*m_window, "Loop playback")->setChecked(false);
    saveLocation(*m_window)->setText(m_fixture->path("elsewhere"));
    const QList<PreprocState> saved = states();
    const QString panel = m_window->currentPictureList().panelType;

    QVERIFY(saveList(listPath()));
    QVERIFY(QFileInfo(listPath()).isFile());
    restart();
    QCOMPARE(m_window->imageTable()->rowCount(), 0);

    QVERIFY(m_window->openPictureList(listPath()));
    QCOMPARE(paths(), pictures);
    QCOMPARE(states().size(), saved.size());
    for (int row = 0; row < saved.size(); ++row)
        QVERIFY2(states().at(row) == saved.at(row), qPrintable(QString::number(row)));
    QCOMPARE(m_window->currentKeyFilePath(), QDir::toNativeSeparators(keyFile));
    QCOMPARE(m_window->currentPictureList().panelType, panel);
    QVERIFY(m_window->isLandscapeOrientation());
    QCOMPARE(m_window->playlistIntervalMinutes(), 1500);
    QVERIFY(!withText<QCheckBox>(*m_window, "Loop playback")->isChecked());
    QCOMPARE(QDir::fromNativeSeparators(m_window->playlistParentDir()), m_fixture->path("elsewhere"));
    // The rows carry the frame of the list's settings: landscape.
    QVERIFY(m_window->preprocWidgetAt(1)->isLandscape());
    QCOMPARE(lastLog(*m_window),
             "📂 Picture list opened (3 picture(s)): " + QDir::toNativeSeparators(listPath()));
}

void TestMainWindowLists::openingAsksBeforeReplacingTheTable()
{
    addColours({Qt::red, Qt::blue});
    QVERIFY(saveList(listPath()));
    m_window->onClearAll();
    const QStringList kept = addColours({Qt::yellow});
    {
        ModalAnswerer no(QMessageBox::No);
        QVERIFY(!m_window->openPictureList(listPath()));
        QCOMPARE(no.titles(), QStringList{"Open List"});
        QCOMPARE(no.text(),
                 QStringLiteral("Replace the 1 picture(s) in the table with the list's pictures?"));
    }
    QCOMPARE(paths(), kept);
    ModalAnswerer yes(QMessageBox::Yes);
    QVERIFY(m_window->openPictureList(listPath()));
    QCOMPARE(yes.titles(), QStringList{"Open List"});
    QCOMPARE(m_window->imageTable()->rowCount(), 2);
}

void TestMainWindowLists::missingPicturesAreNamedInOneBox()
{
    const QStringList pictures = addColours({Qt::red, Qt::blue, Qt::green});
    m_window->preprocWidgetAt(2)->applyState(framedState(FillMode::BlackFill, 0.5, 0.5, 1.5));
    QVERIFY(saveList(listPath()));
    m_window->onClearAll();
    QVERIFY(QFile::remove(pictures.at(1)));

    ModalAnswerer answerer;
    QVERIFY(m_window->openPictureList(listPath()));
    QCOMPARE(answerer.titles(), QStringList{"Open List"});
    QCOMPARE(answerer.text(), "1 file(s) of the list no longer exist and were left out:\n" +
                                  QDir::toNativeSeparators(pictures.at(1)));
    QCOMPARE(paths(), (QStringList{pictures.at(0), pictures.at(2)}));
    QVERIFY(states().at(1) == framedState(FillMode::BlackFill, 0.5, 0.5, 1.5));
}

void TestMainWindowLists::brokenListChangesNothing()
{
    const QStringList pictures = addColours({Qt::red});
    QVERIFY(saveList(listPath()));
    const QByteArray whole = TestFiles::read(listPath());
    const QStringList kept = addColours({Qt::blue});
    m_window->setPlaylistIntervalMinutes(77);

    const QList<QPair<QByteArray, QString>> broken = {
        {whole.left(whole.size() - 40), "The file is not valid JSON"},
        {QByteArray(whole).replace("\"version\": 2", "\"version\": 7"),
         "The list has format version 7; this program reads versions 1 to 2."},
        {QByteArray(whole).replace("\"zoom\": 1", "\"zoom\": -3"),
         "Picture 1 of the list is missing or invalid."},
    };
    for (const auto &[json, reason] : broken) {
        QVERIFY(TestFiles::write(listPath(), json));
        ModalAnswerer answerer;
        QVERIFY(!m_window->openPictureList(listPath()));
        QCOMPARE(answerer.titles(), QStringList{"Open List"});
        const QString prefix =
            "The picture list cannot be opened:\n" + QDir::toNativeSeparators(listPath()) + "\n\n";
        QVERIFY2(answerer.text().startsWith(prefix + reason), qPrintable(answerer.text()));
        QVERIFY(answerer.text().endsWith("The table was not changed."));
        QCOMPARE(paths(), pictures + kept);
        QCOMPARE(m_window->playlistIntervalMinutes(), 77);
    }
}

void TestMainWindowLists::menuActionsAndRecentLists()
{
    addColours({Qt::red, Qt::blue});
    const QString folder = m_fixture->path("lists");
    QDir().mkpath(folder);
    {
        ModalAnswerer saveAs(QMessageBox::Ok, [&](QWidget *dialog) {
            ModalAnswerer::chooseInFileDialog(dialog, folder, "from-menu");
        });
        fileAction("Save List…")->trigger(); // no list yet: asks where, as Save List As… does
    }
    const QString saved = QDir(folder).filePath("from-menu.json");
    QVERIFY(QFileInfo(saved).isFile());
    QCOMPARE(m_window->recentLists(), QStringList{saved});

    m_window->preprocWidgetAt(1)->applyState(framedState(FillMode::CenterCrop, 1.0, 0.0, 3.0));
    fileAction("Save List…")->trigger(); // the same file again, without a dialog
    m_window->onClearAll();

    QMenu *recent = fileAction("Recent Lists")->menu();
    emit recent->aboutToShow();
    QCOMPARE(recent->actions().first()->text(), QStringLiteral("&1  from-menu.json"));
    recent->actions().first()->trigger();
    QCOMPARE(m_window->imageTable()->rowCount(), 2);
    QVERIFY(states().at(1) == framedState(FillMode::CenterCrop, 1.0, 0.0, 3.0));

    // A recent list that is gone is said so and leaves the menu.
    QVERIFY(QFile::remove(saved));
    ModalAnswerer gone;
    emit recent->aboutToShow();
    recent->actions().first()->trigger();
    QCOMPARE(gone.titles(), QStringList{"Open List"});
    QVERIFY(m_window->recentLists().isEmpty());
    QCOMPARE(m_window->imageTable()->rowCount(), 2);
}

void TestMainWindowLists::listsAreRefusedDuringARun()
{
    addColours({Qt::red, Qt::blue});
    QVERIFY(saveList(listPath()));
    qputenv("TARN_SIM_SLEEP_MS", "1500");
    ModalAnswerer answerer(QMessageBox::Cancel);
    m_window->onStartProcess();
    QTRY_VERIFY(m_window->isProcessing());
    QVERIFY(!fileAction("Open List…")->isEnabled());
    QVERIFY(!fileAction("Save List As…")->isEnabled());
    QVERIFY(!m_window->openPictureList(listPath()));
    QVERIFY(!m_window->savePictureList(m_fixture->path("lists/other.json")));
    QCOMPARE(answerer.titles(), (QStringList{"Notice", "Notice"}));
    QCOMPARE(answerer.text(),
             QStringLiteral("Images are being processed. Stop processing before you open or save a list."));
    QVERIFY(!QFileInfo::exists(m_fixture->path("lists/other.json")));
    m_window->onStopProcess();
    QVERIFY(fileAction("Open List…")->isEnabled());
}

QTEST_MAIN(TestMainWindowLists)
#include "tst_MainWindowLists.moc"
