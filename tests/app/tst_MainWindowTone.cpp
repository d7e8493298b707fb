// Toning the checked rows from the batch bar: each keeps its framing and fill, shows the tone
// mark, and a Done row is made again with its new tone.
#include "app/MainWindow.h"
#include "images/ImageTableWidget.h"
#include "preprocess/PreprocWidget.h"
#include "preprocess/Tone.h"
#include "preprocess/ToneControls.h"
#include "preprocess/ToneDialog.h"

#include "FramedState.h"
#include "ModalAnswerer.h"
#include "PackageCheck.h"
#include "WindowProbe.h"
#include "WindowTestCase.h"

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QTest>

namespace {

// Answers the batch tone dialog with a preset and an exposure, and records what it showed.
struct ToneAnswer {
    ToneAnswer(TonePreset preset, int exposureSteps, bool accept = true)
        : preset(preset)
        , exposureSteps(exposureSteps)
        , accept(accept)
    {
    }

    TonePreset preset;
    int exposureSteps;
    bool accept;
    QString title;
    TonePreset shownPreset = TonePreset::Neutral;

    void operator()(QWidget *widget)
    {
        auto *dialog = qobject_cast<ToneDialog *>(widget);
        if (!dialog)
            return;
        title = dialog->windowTitle();
        shownPreset = dialog->controls()->tone().preset;
        dialog->controls()->presetBox()->setCurrentIndex(int(preset));
        dialog->controls()->exposureSlider()->setValue(exposureSteps);
        if (accept)
            QTest::mouseClick(withText<QPushButton>(*dialog, QStringLiteral("OK")), Qt::LeftButton);
        else
            dialog->reject();
    }
};

} // namespace

class TestMainWindowTone : public WindowTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void batchToneKeepsEachRowsFramingAndFill();
    void cancelledBatchToneChangesNothing();
    void aDoneRowWhoseToneChangesIsMadeAgain();

private:
    PreprocWidget *rowWidget(int row) const { return m_window->preprocWidgetAt(row); }
    void batchTone(ToneAnswer &answer)
    {
        ModalAnswerer answerer(QMessageBox::Ok, std::ref(answer));
        QTest::mouseClick(withText<QPushButton>(*section(*m_window, QStringLiteral("Step 2: Add Images")),
                                                QStringLiteral("Tone…")),
                          Qt::LeftButton);
    }
};

void TestMainWindowTone::batchToneKeepsEachRowsFramingAndFill()
{
    addColours({Qt::red, Qt::green, Qt::blue});
    QTRY_COMPARE(m_window->imageTable()->rowCount(), 3);
    rowWidget(0)->commitState(framedState(FillMode::CenterCrop, 0.2, 0.3, 2.0, 90), true);
    rowWidget(1)->commitState(framedState(FillMode::WhiteFill, 0.6, 0.5, 1.5), true);
    QVERIFY(rowWidget(0)->toneMark()->isHidden());
    check({0, 1});

    ToneAnswer answer{TonePreset::Vivid, 5};
    batchTone(answer);
    QCOMPARE(answer.title, QStringLiteral("Batch Tone"));
    QCOMPARE(answer.shownPreset, TonePreset::Neutral); // starts from the first checked row's tone
    const ToneSettings vivid = rowWidget(0)->state().tone;
    QCOMPARE(vivid.preset, TonePreset::Vivid);
    QVERIFY(vivid.exposure > 0);
    PreprocState expected = framedState(FillMode::CenterCrop, 0.2, 0.3, 2.0, 90);
    expected.tone = vivid;
    QVERIFY(rowWidget(0)->state() == expected);
    expected = framedState(FillMode::WhiteFill, 0.6, 0.5, 1.5);
    expected.tone = vivid;
    QVERIFY(rowWidget(1)->state() == expected);
    QVERIFY(rowWidget(2)->state() == PreprocState({FillMode::BlurFill, 0})); // not checked

    for (int row : {0, 1}) {
        QVERIFY(!rowWidget(row)->toneMark()->isHidden());
        QCOMPARE(rowWidget(row)->toneMark()->toolTip(), QStringLiteral("Tone: ") + Tone::description(vivid));
    }
    QVERIFY(logLines(*m_window).last().contains(
        QStringLiteral("Batch tone \"%1\" applied to 2 image(s)").arg(Tone::description(vivid))));

    // The next batch starts from the first checked row's tone; back to Neutral hides the mark.
    ToneAnswer neutral{TonePreset::Neutral, 0};
    batchTone(neutral);
    QCOMPARE(neutral.shownPreset, TonePreset::Vivid);
    QVERIFY(rowWidget(0)->state().tone == ToneSettings());
    QVERIFY(rowWidget(0)->toneMark()->isHidden());
}

void TestMainWindowTone::cancelledBatchToneChangesNothing()
{
    addColours({Qt::red});
    QTRY_COMPARE(m_window->imageTable()->rowCount(), 1);
    check({0});
    ToneAnswer answer{TonePreset::Monochrome, 0, false};
    batchTone(answer);
    QCOMPARE(answer.title, QStringLiteral("Batch Tone"));
    QVERIFY(rowWidget(0)->state() == PreprocState({FillMode::BlurFill, 0}));
}

void TestMainWindowTone::aDoneRowWhoseToneChangesIsMadeAgain()
{
    addColours({Qt::red, Qt::blue});
    QTRY_COMPARE(m_window->imageTable()->rowCount(), 2);
    {
        ModalAnswerer completion(QMessageBox::Cancel);
        runToTheEnd();
    }
    QCOMPARE(statusText(0), QStringLiteral("Done ✓"));
    expectPackage({Qt::red, Qt::blue});

    check({0});
    ToneAnswer answer{TonePreset::Monochrome, 0};
    batchTone(answer);
    QCOMPARE(statusText(0), QStringLiteral("Pending")); // a new tone makes a new frame
    QCOMPARE(statusText(1), QStringLiteral("Done ✓"));
    {
        ModalAnswerer completion(QMessageBox::Cancel);
        runToTheEnd();
    }
    QCOMPARE(statusText(0), QStringLiteral("Done ✓"));
    // The red picture in monochrome is a dark grey: the frame the processor made shows black.
    QCOMPARE(PackageCheck::colours(packageDir()), (QList<QColor>{Qt::black, Qt::blue}));
}

QTEST_MAIN(TestMainWindowTone)
#include "tst_MainWindowTone.moc"
