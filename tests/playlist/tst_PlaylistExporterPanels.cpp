// The panel types of the package: GUI types, key-file panel codes and custom sizes.
#include "playlist/PlaylistExporter.h"
#include "ui/UiLanguage.h"

#include "TestFiles.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

class TestPlaylistExporterPanels : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void panelTypes_data();
    void panelTypes();
    void panelTypesAreCaseSensitive();
    void customPanel_data();
    void customPanel();
    void pubkeyPanelCodes_data();
    void pubkeyPanelCodes();

private:
    PlaylistExportRequest request(int frames);
    QTemporaryDir m_dir;
};

void TestPlaylistExporterPanels::initTestCase() { UiLanguage::set(UiLanguage::English); }

void TestPlaylistExporterPanels::panelTypes_data()
{
    QTest::addColumn<QString>("guiType");
    QTest::addColumn<QString>("code");
    QTest::addColumn<QSize>("size");
    QTest::newRow("133") << "133"
                         << "13.3" << QSize(1200, 1600);
    QTest::newRow("070") << "070"
                         << "7.09" << QSize(1200, 1600);
    QTest::newRow("7.09") << "7.09"
                          << "7.09" << QSize(1200, 1600);
    QTest::newRow("100") << "100"
                         << "10" << QSize(1200, 1600);
    QTest::newRow("253") << "253"
                         << "25.3" << QSize(1800, 3200);
    QTest::newRow("285") << "285"
                         << "28.5" << QSize(2160, 3060);
}

void TestPlaylistExporterPanels::panelTypes()
{
    QFETCH(QString, guiType);
    QFETCH(QString, code);
    QFETCH(QSize, size);
    const PanelSpec panelSpec = PlaylistExporter::panelFromGuiType(guiType, QStringLiteral("ignored"));
    QVERIFY(panelSpec.ok);
    QCOMPARE(panelSpec.panel, code);
    QCOMPARE(panelSpec.size, size);
    QCOMPARE(panelSpec.error, QString());
}

void TestPlaylistExporterPanels::panelTypesAreCaseSensitive()
{
    PanelSpec panelSpec =
        PlaylistExporter::panelFromGuiType(QStringLiteral("CUSTOM"), QStringLiteral("1200x825"));
    QVERIFY(!panelSpec.ok);
    QCOMPARE(panelSpec.error, QStringLiteral("Unknown panel type: CUSTOM"));
    panelSpec = PlaylistExporter::panelFromGuiType(QStringLiteral(" 133"), QString());
    QVERIFY(!panelSpec.ok);
    QCOMPARE(panelSpec.error, QStringLiteral("Unknown panel type:  133"));
    panelSpec = PlaylistExporter::panelFromGuiType(QString(), QString());
    QVERIFY(!panelSpec.ok);
    QCOMPARE(panelSpec.error, QStringLiteral("Unknown panel type: "));
}

void TestPlaylistExporterPanels::customPanel_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("matchesSize");
    QTest::newRow("lower x") << "1200x825" << true;
    QTest::newRow("upper X") << "1200X825" << true;
    QTest::newRow("times sign") << "1200×825" << true;
    QTest::newRow("blanks around x") << "1200  x 825" << true;
    QTest::newRow("surrounding blanks") << "  1200x1600 " << true;
    QTest::newRow("empty") << "" << false;
    QTest::newRow("width only") << "1200x" << false;
    QTest::newRow("height only") << "x825" << false;
    QTest::newRow("star") << "1200*825" << false;
    QTest::newRow("decimal") << "12.5x10" << false;
    QTest::newRow("negative") << "-1200x825" << false;
    QTest::newRow("three parts") << "1x2x3" << false;
    QTest::newRow("words") << "wide" << false;
}

void TestPlaylistExporterPanels::customPanel()
{
    QFETCH(QString, text);
    QFETCH(bool, matchesSize);
    const PanelSpec panelSpec = PlaylistExporter::panelFromGuiType(QStringLiteral("custom"), text);
    QVERIFY(!panelSpec.ok);
    QCOMPARE(panelSpec.error,
             matchesSize
                 ? QStringLiteral(
                       "Custom panel type cannot build a TF playlist. Choose 133 / 070 / 100 / 253 / 285.")
                 : QStringLiteral("Invalid custom panel size. Use WxH, e.g. 1200x1600."));
}

void TestPlaylistExporterPanels::pubkeyPanelCodes_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("guiType");
    QTest::newRow("7.09") << "7.09"
                          << "070";
    QTest::newRow("13.3") << "13.3"
                          << "133";
    QTest::newRow("25.3") << "25.3"
                          << "253";
    QTest::newRow("28.5") << "28.5"
                          << "285";
    QTest::newRow("10") << "10"
                        << "100";
    QTest::newRow("10.0") << "10.0"
                          << "";
    QTest::newRow("12") << "12"
                        << "";
    QTest::newRow("133 itself") << "133"
                                << "";
    QTest::newRow("blank") << " 13.3"
                           << "";
    QTest::newRow("empty") << ""
                           << "";
}

void TestPlaylistExporterPanels::pubkeyPanelCodes()
{
    QFETCH(QString, code);
    QFETCH(QString, guiType);
    QCOMPARE(PlaylistExporter::pubkeyPanelToGuiType(code), guiType);
}

QTEST_MAIN(TestPlaylistExporterPanels)
#include "tst_PlaylistExporterPanels.moc"
