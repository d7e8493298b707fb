// The About box's guide is the user guide installed with the program, found from the
// program's folder in each layout, and linked as a local file.
#include "ui/AppStrings.h"
#include "ui/UiLanguage.h"
#include "ui/UserGuide.h"

#include "TestFiles.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

class TestUserGuide : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { UiLanguage::set(UiLanguage::English); }
    void foundInEachLayout_data();
    void foundInEachLayout();
    void notFoundNamesTheInstalledPlace();
    void aboutLinksTheGuideAsALocalFile();
};

void TestUserGuide::foundInEachLayout_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QString>("guide");
    QTest::newRow("installed") << "usr/lib/velora-offline-tool"
                               << "usr/share/doc/velora-offline-tool/user-guide.html";
    QTest::newRow("build tree") << "build/bin"
                                << "build/share/doc/velora-offline-tool/user-guide.html";
    QTest::newRow("Windows") << "Velora"
                             << "Velora/user-guide.html";
}

void TestUserGuide::foundInEachLayout()
{
    QFETCH(QString, program);
    QFETCH(QString, guide);
    QTemporaryDir root;
    QVERIFY(QDir().mkpath(root.filePath(program)));
    QVERIFY(TestFiles::write(root.filePath(guide), "<html></html>"));
    QCOMPARE(UserGuide::path(root.filePath(program)), QDir::cleanPath(root.filePath(guide)));
}

void TestUserGuide::notFoundNamesTheInstalledPlace()
{
    QTemporaryDir root;
    QCOMPARE(UserGuide::path(root.filePath("usr/lib/velora-offline-tool")),
             root.filePath("usr/share/doc/velora-offline-tool/user-guide.html"));
}

void TestUserGuide::aboutLinksTheGuideAsALocalFile()
{
    const QString html = Str::aboutHtml();
    const QString link =
        "<a href=\"" + UserGuide::url().toString(QUrl::FullyEncoded).toHtmlEscaped() + "\">User guide</a>";
    QVERIFY2(html.contains(link), qPrintable(html));
    QVERIFY(UserGuide::url().isLocalFile());
    QVERIFY(!html.contains("example.com"));
}

QTEST_GUILESS_MAIN(TestUserGuide)
#include "tst_UserGuide.moc"
