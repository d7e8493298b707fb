// Several processors at once, through the window's "Processors at once" setting: the same
// package as one at a time, the same statuses, progress and completion box, the log's blocks
// whole and in table order, and Stop ending every processor.
#include "app/MainWindow.h"
#include "run/PackageJob.h"

#include "ModalAnswerer.h"
#include "TestFiles.h"
#include "WindowProbe.h"
#include "WindowTestCase.h"

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>

class TestMainWindowProcessors : public WindowTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void theSettingIsInStepThreeAndRemembered();
    void severalAtOnceMakeTheSamePackage();
    void stopEndsEveryProcessor();

private:
    QSpinBox *processors() const
    {
        return m_window->findChild<QSpinBox *>(QStringLiteral("processorsAtOnce"));
    }
};

void TestMainWindowProcessors::theSettingIsInStepThreeAndRemembered()
{
    QSpinBox *spin = processors();
    QVERIFY(spin);
    QCOMPARE(spin->value(), 1);
    QCOMPARE(spin->minimum(), 1);
    QCOMPARE(spin->maximum(), PackageJob::maxProcessorsAtOnce());
    QVERIFY(spin->toolTip().contains(QStringLiteral("If pictures fail with more than 1, go back to 1.")));
    QVERIFY(withText<QLabel>(*m_window, QStringLiteral("Processors at once:")));
    spin->setValue(spin->maximum());
    m_window.reset();
    m_window = std::make_unique<MainWindow>();
    QCOMPARE(processors()->value(), PackageJob::maxProcessorsAtOnce());
    processors()->setValue(1);
}

void TestMainWindowProcessors::severalAtOnceMakeTheSamePackage()
{
    addColours({Qt::red, Qt::green, Qt::blue, Qt::yellow, Qt::cyan});
    {
        ModalAnswerer completion(QMessageBox::Cancel);
        runToTheEnd();
    }
    const auto one = TestFiles::contents(packageDir());
    for (int row = 0; row < 5; ++row)
        m_window->markRowChanged(row);
    processors()->setValue(qMin(3, PackageJob::maxProcessorsAtOnce()));
    qputenv("TARN_SIM_SLEEP_MS", "300");
    ModalAnswerer completion(QMessageBox::Cancel);
    runToTheEnd();
    qunsetenv("TARN_SIM_SLEEP_MS");
    for (int row = 0; row < 5; ++row)
        QCOMPARE(statusText(row), QStringLiteral("Done ✓"));
    QCOMPARE(m_window->findChild<QProgressBar *>()->format(), QStringLiteral("Done 5 / 5"));
    QCOMPARE(completion.text(), Str::processingCompleteSummaryHtml(5, 5, 0));
    QCOMPARE(TestFiles::contents(packageDir()), one);
    // The log's blocks in table order, each with one result.
    const QStringList log = logLines(*m_window);
    int last = -1;
    for (int row = 1; row <= 5; ++row) {
        const int header =
            int(log.indexOf(QRegularExpression(QStringLiteral("^\\[.*\\] \\(%1/5\\) .*").arg(row))));
        QVERIFY2(header > last, qPrintable(log.join('\n')));
        last = header;
    }
    QCOMPARE(log.count(QStringLiteral("  ✅ Done")), 5);
    processors()->setValue(1);
}

void TestMainWindowProcessors::stopEndsEveryProcessor()
{
    if (PackageJob::maxProcessorsAtOnce() < 2)
        QSKIP("one core: one processor at a time");
    addColours({Qt::red, Qt::green, Qt::blue});
    processors()->setValue(2);
    qputenv("TARN_SIM_SLEEP_MS", "20000");
    QTest::mouseClick(withText<QPushButton>(*m_window, QStringLiteral("▶  Start Processing")),
                      Qt::LeftButton);
    QTRY_COMPARE(logLines(*m_window).filter(QStringLiteral("| tarn-sim: quantising")).size(), 1);
    QTRY_VERIFY(statusText(1) == QStringLiteral("Processing..."));
    QTest::mouseClick(withText<QPushButton>(*m_window, QStringLiteral("■  Stop")), Qt::LeftButton);
    qunsetenv("TARN_SIM_SLEEP_MS");
    QVERIFY(!m_window->isProcessing());
    QTRY_COMPARE(statusText(0), QStringLiteral("Pending"));
    QTRY_COMPARE(statusText(1), QStringLiteral("Pending"));
    QCOMPARE(statusText(2), QStringLiteral("Pending"));
    QCOMPARE(logLines(*m_window).count(
                 QStringLiteral("  ■ Stopped; this picture is processed again at the next start")),
             2);
    processors()->setValue(1);
}

QTEST_MAIN(TestMainWindowProcessors)
#include "tst_MainWindowProcessors.moc"
