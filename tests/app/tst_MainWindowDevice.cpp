// The target device (panel, orientation, key file and its history) and the package built
// from the window, against the real window.
#include "app/MainWindow.h"
#include "images/ImageTableWidget.h"
#include "playlist/PlaylistExporter.h"
#include "preprocess/PreprocWidget.h"
#include "ui/UiLanguage.h"

#include "ModalAnswerer.h"
#include "TestFiles.h"
#include "WindowFixture.h"
#include "WindowProbe.h"
#include "WindowTestCase.h"

#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QTextBlock>

namespace {

QComboBox *historyCombo(MainWindow &window)
{
    // The first combo of the device step: the key-file history.
    for (QComboBox *combo : window.findChildren<QComboBox *>()) {
        if (combo->minimumContentsLength() == 24)
            return combo;
    }
    return nullptr;
}

} // namespace

class TestMainWindowDevice : public WindowTestCase
{
    Q_OBJECT

private Q_SLOTS:

    void keyFileSelectsItsPanel();
    void unknownOrMissingPanelSelects133();
    void missingKeyFileClearsTheField();
    void historyKeepsTheNewestThirty();
    void deletedHistoryEntriesAreHiddenButKept();
    void historyLabels();
    void importKeyButtonOpensTheChooser();
    void choosingFromTheHistoryAppliesTheKey();
    void customPanelSizeTakesALowerCaseXOnly();
    void setLitePanelTypeFallsBackTo133();
};

void TestMainWindowDevice::keyFileSelectsItsPanel()
{
    addPictures(2);
    QVERIFY(m_window->applyPubkeyFile(key("big.json", R"({"panel": "25.3"})")));
    QCOMPARE(comboStartingWith(*m_window, "133")->currentText(), QStringLiteral("253"));
    QCOMPARE(m_window->panelResolution(), QSize(1800, 3200));
    bool label = false;
    for (QLabel *l : m_window->findChildren<QLabel *>())
        label |= l->text() == QStringLiteral("1800 × 3200");
    QVERIFY(label);
    QCOMPARE(m_window->preprocWidgetAt(1)->panelResolution(), QSize(1800, 3200));
    QCOMPARE(m_window->currentKeyFilePath(), QDir::toNativeSeparators(m_fixture->path("keys/big.json")));
    for (const auto &[code, type] :
         {std::pair{"7.09", "070"}, std::pair{"10", "100"}, std::pair{"28.5", "285"}}) {
        m_window->applyPubkeyFile(key("k.json", QStringLiteral(R"({"panel": "%1"})").arg(code).toUtf8()));
        QCOMPARE(comboStartingWith(*m_window, "133")->currentText(), QString::fromLatin1(type));
    }
}

void TestMainWindowDevice::unknownOrMissingPanelSelects133()
{
    m_window->applyPubkeyFile(key("a.json", R"({"panel": "25.3"})"));
    QVERIFY(m_window->applyPubkeyFile(key("twelve.json", R"({"panel": "12"})")));
    QCOMPARE(comboStartingWith(*m_window, "133")->currentText(), QStringLiteral("133"));
    m_window->applyPubkeyFile(key("a.json", R"({"panel": "25.3"})"));
    QVERIFY(m_window->applyPubkeyFile(key("nopanel.json", R"({"uid": "u"})")));
    QCOMPARE(m_window->panelResolution(), QSize(1200, 1600));
    m_window->applyPubkeyFile(key("a.json", R"({"panel": "25.3"})"));
    QVERIFY(m_window->applyPubkeyFile(key("broken.json", R"({"panel": "25.3")")));
    QCOMPARE(comboStartingWith(*m_window, "133")->currentText(), QStringLiteral("133"));
    QCOMPARE(m_window->currentKeyFilePath(), QDir::toNativeSeparators(m_fixture->path("keys/broken.json")));
}

void TestMainWindowDevice::missingKeyFileClearsTheField()
{
    m_window->applyPubkeyFile(key("a.json", R"({"panel": "25.3"})"));
    QVERIFY(!m_window->applyPubkeyFile(m_fixture->path("keys/gone.json")));
    QCOMPARE(m_window->currentKeyFilePath(), QString());
    QCOMPARE(m_window->panelResolution(), QSize(1200, 1600));
}

void TestMainWindowDevice::historyKeepsTheNewestThirty()
{
    QStringList paths;
    for (int i = 0; i < 31; ++i) {
        paths << QDir::toNativeSeparators(key(QStringLiteral("h%1.json").arg(i), "{}"));
        m_window->addKeyFileToHistory(paths.last());
    }
    QStringList history = m_window->loadKeyFileHistory();
    QCOMPARE(history.size(), 30);
    QCOMPARE(history.first(), paths.at(30));
    QCOMPARE(history.last(), paths.at(1));
    m_window->addKeyFileToHistory(paths.at(5));
    history = m_window->loadKeyFileHistory();
    QCOMPARE(history.size(), 30);
    QCOMPARE(history.first(), paths.at(5));
    QCOMPARE(history.count(paths.at(5)), 1);
    m_window->addKeyFileToHistory(m_fixture->path("keys/absent.json")); // ignored
    m_window->addKeyFileToHistory(QString());
    QCOMPARE(m_window->loadKeyFileHistory(), history);
}

void TestMainWindowDevice::deletedHistoryEntriesAreHiddenButKept()
{
    const QString kept = key("kept.json", "{}");
    const QString gone = key("gone.json", "{}");
    m_window->addKeyFileToHistory(kept);
    m_window->addKeyFileToHistory(gone);
    QFile::remove(gone);
    m_window->refreshSavedKeyCombo();
    QComboBox *combo = historyCombo(*m_window);
    QCOMPARE(combo->count(), 1);
    QCOMPARE(combo->itemData(0).toString(), QDir::toNativeSeparators(kept));
    QCOMPARE(m_window->loadKeyFileHistory().size(), 2);
}

void TestMainWindowDevice::historyLabels()
{
    QCOMPARE(
        m_window->keyFileComboLabel(key("mac.json", R"({"panel": "13.3", "stamac": "A4:CF:12:34:56:78"})")),
        QStringLiteral("13.3 · A4:CF:12:34:56:78"));
    QCOMPARE(m_window->keyFileComboLabel(key("id.json", R"({"panel": "13.3", "device_id": "ABCDEFGHIJKL"})")),
             QStringLiteral("13.3 · ABCDEFGH"));
    QCOMPARE(m_window->keyFileComboLabel(key("short.json", R"({"panel": "25.3", "device_id": "ABC"})")),
             QStringLiteral("25.3 · ABC"));
    QCOMPARE(m_window->keyFileComboLabel(key("bare.json", R"({"stamac": "A4"})")),
             QStringLiteral("bare.json"));
    QCOMPARE(m_window->keyFileComboLabel(key("junk.json", "not json")), QStringLiteral("junk.json"));
}

void TestMainWindowDevice::importKeyButtonOpensTheChooser()
{
    const QString chosen = key("chosen.json", R"({"panel": "28.5", "stamac": "MAC-1"})");
    QString title;
    ModalAnswerer answerer(QMessageBox::Ok, [&](QWidget *dialog) {
        if (qobject_cast<QFileDialog *>(dialog))
            title = dialog->windowTitle();
        ModalAnswerer::chooseInFileDialog(dialog, QFileInfo(chosen).path(), QFileInfo(chosen).fileName());
    });
    QPushButton *import = nullptr;
    for (QPushButton *button : m_window->findChildren<QPushButton *>())
        import = button->text() == QStringLiteral("Import Key...") ? button : import;
    QTest::mouseClick(import, Qt::LeftButton);
    QCOMPARE(title, QStringLiteral("Select key file"));
    QCOMPARE(m_window->currentKeyFilePath(), QDir::toNativeSeparators(chosen));
    QCOMPARE(m_window->panelResolution(), QSize(2160, 3060));
    QCOMPARE(m_window->loadKeyFileHistory().first(), QDir::toNativeSeparators(chosen));
    QCOMPARE(historyCombo(*m_window)->currentText(), QStringLiteral("28.5 · MAC-1"));
}

void TestMainWindowDevice::choosingFromTheHistoryAppliesTheKey()
{
    const QString first = key("first.json", R"({"panel": "25.3", "stamac": "M1"})");
    const QString second = key("second.json", R"({"panel": "13.3", "stamac": "M2"})");
    m_window->addKeyFileToHistory(first);
    m_window->addKeyFileToHistory(second);
    m_window->applyPubkeyFile(second);
    m_window->refreshSavedKeyCombo();
    QComboBox *combo = historyCombo(*m_window);
    QCOMPARE(combo->currentText(), QStringLiteral("13.3 · M2"));
    combo->setCurrentIndex(1);
    QCOMPARE(m_window->currentKeyFilePath(), QDir::toNativeSeparators(first));
    QCOMPARE(m_window->panelResolution(), QSize(1800, 3200));
}

void TestMainWindowDevice::customPanelSizeTakesALowerCaseXOnly()
{
    QComboBox *panel = comboStartingWith(*m_window, "133");
    panel->addItem(QStringLiteral("custom")); // not offered by this window, understood by it
    panel->setCurrentText(QStringLiteral("custom"));
    QLineEdit *custom = withPlaceholder(*m_window, QStringLiteral("WxH"));
    const QList<QPair<QString, QSize>> cases = {
        {"1200x825", QSize(1200, 825)},  {" 800 x 600 ", QSize(800, 600)}, {"1200X825", QSize(1200, 1600)},
        {"1200×825", QSize(1200, 1600)}, {"x600", QSize(1200, 1600)},      {"0x5", QSize(1200, 1600)},
        {"12x", QSize(1200, 1600)},      {"", QSize(1200, 1600)}};
    for (const auto &[text, size] : cases) {
        custom->setText(text);
        QCOMPARE(m_window->panelResolution(), size);
    }
}

void TestMainWindowDevice::setLitePanelTypeFallsBackTo133()
{
    m_window->setLitePanelType(QStringLiteral("070"));
    QCOMPARE(comboStartingWith(*m_window, "133")->currentText(), QStringLiteral("070"));
    m_window->setLitePanelType(QStringLiteral("999"));
    QCOMPARE(comboStartingWith(*m_window, "133")->currentText(), QStringLiteral("133"));
}

QTEST_MAIN(TestMainWindowDevice)
#include "tst_MainWindowDevice.moc"
