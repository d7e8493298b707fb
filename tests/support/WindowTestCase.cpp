#include "WindowTestCase.h"

#include "app/MainWindow.h"
#include "images/ImageTableWidget.h"
#include "playlist/Volumes.h"
#include "ui/UiLanguage.h"

#include "DialogSpy.h"
#include "PackageCheck.h"
#include "TestFiles.h"
#include "WindowProbe.h"

#include <QAction>
#include <QCheckBox>
#include <QDir>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

namespace {
const QStringList kFaults = {"TARN_SIM_EXIT", "TARN_SIM_CRASH", "TARN_SIM_SLEEP_MS", "TARN_SIM_HANG",
                             "TARN_SIM_BAD_UTF8"};
}

WindowTestCase::WindowTestCase() = default;
WindowTestCase::~WindowTestCase() = default;

void WindowTestCase::initTestCase()
{
    UiLanguage::set(UiLanguage::English);
    m_fixture = std::make_unique<WindowFixture>();
}

void WindowTestCase::init()
{
    // No card in the computer, whatever this machine has mounted: a test that wants one says so.
    Volumes::setOverride(QList<Volume>{});
    m_fixture->useProcessor(WindowFixture::demoProcessor(), WindowFixture::demoProcessorDir());
    for (const QString &leftover :
         {m_fixture->path("out"), m_fixture->path("tmp/tarngui_lite_bins"), MainWindow::tempPreprocDir()})
        QDir(leftover).removeRecursively();
    m_window = std::make_unique<MainWindow>();
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    QTRY_VERIFY(!startupCheckRunning(*m_window)); // the stand-in passes it, silently
    saveLocation(*m_window)->setText(m_fixture->path("out"));
    // Tests add the same picture more than once on purpose: only the duplicate tests are told.
    withoutDuplicateWarnings(*m_window);
}

void WindowTestCase::cleanup()
{
    for (const QString &name : kFaults)
        qunsetenv(name.toLatin1().constData());
    m_window.reset();
    WindowFixture::removeSettings();
}

QString WindowTestCase::nextFolder()
{
    const QString folder = m_fixture->path(QStringLiteral("pictures%1").arg(m_batch++));
    QDir().mkpath(folder);
    return folder;
}

QStringList WindowTestCase::addPictures(const QList<QImage> &images)
{
    const QString folder = nextFolder();
    QStringList paths;
    for (int i = 0; i < images.size(); ++i) {
        paths << QDir(folder).filePath(QStringLiteral("photo_%1.png").arg(i));
        images.at(i).save(paths.last());
    }
    m_window->addImageFiles(paths);
    return paths;
}

QStringList WindowTestCase::addPictures(int count)
{
    const QStringList pictures = TestFiles::makePictures(nextFolder(), count);
    DialogSpy quiet; // 16 or more show a progress dialog; nothing to answer
    m_window->addImageFiles(pictures);
    return pictures;
}

QStringList WindowTestCase::addColours(const QList<QColor> &colours)
{
    QList<QImage> images;
    for (const QColor &colour : colours)
        images << TestFiles::solidImage(400, 300, colour);
    return addPictures(images);
}

void WindowTestCase::expectPackage(const QList<QColor> &colours) const
{
    QStringList frames;
    for (int i = 0; i < colours.size(); ++i)
        frames << QStringLiteral("frame_%1.bin").arg(i, 3, 10, QLatin1Char('0'));
    QCOMPARE(PackageCheck::files(packageDir()), frames + QStringList{"playlist.json"});
    QCOMPARE(PackageCheck::listedFrames(packageDir()), frames);
    QCOMPARE(PackageCheck::colours(packageDir()), colours);
}

QString WindowTestCase::key(const QString &name, const QByteArray &json) const
{
    const QString path = m_fixture->path(QStringLiteral("keys/") + name);
    TestFiles::write(path, json);
    return path;
}

void WindowTestCase::setKeyFile(const QString &path) { QVERIFY(m_window->applyPubkeyFile(path)); }

void WindowTestCase::writeOutputs(std::initializer_list<int> rows)
{
    for (int row : rows) {
        TestFiles::write(m_window->resolveOutputPathsForRow(row), "frame of row " + QByteArray::number(row));
        m_window->setRowStatus(row, Str::RowStatus::Done);
    }
}

void WindowTestCase::runToTheEnd(int timeoutMs)
{
    QTest::mouseClick(withText<QPushButton>(*m_window, QStringLiteral("▶  Start Processing")),
                      Qt::LeftButton);
    QTRY_VERIFY_WITH_TIMEOUT(!m_window->isProcessing(), timeoutMs);
}

QString WindowTestCase::statusText(int row) const
{
    return m_window->imageTable()->item(row, MainWindow::StatusColumn)->text();
}

QStringList WindowTestCase::rowNames() const
{
    QStringList names;
    for (int row = 0; row < m_window->imageTable()->rowCount(); ++row)
        names << m_window->imageTable()->item(row, MainWindow::FileColumn)->text();
    return names;
}

QCheckBox *WindowTestCase::selectAllBox() const
{
    return withText<QCheckBox>(*m_window, QStringLiteral("Select All"));
}

void WindowTestCase::check(std::initializer_list<int> rows)
{
    for (int row : rows)
        m_window->imageTable()->item(row, MainWindow::SelectColumn)->setCheckState(Qt::Checked);
}

QString WindowTestCase::packageDir() const { return QDir(m_fixture->path("out")).filePath("vl_play"); }
