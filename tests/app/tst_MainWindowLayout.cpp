// The widget tree of the window: the three steps, their controls, sizes and first values.
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

namespace {

// The interval's days, hours and minutes.
QList<QSpinBox *> intervalSpins(QWidget &root)
{
    QList<QSpinBox *> spins = root.findChildren<QSpinBox *>();
    spins.removeIf([](QSpinBox *spin) { return spin->toolTip() != Str::slideshowIntervalTip(); });
    return spins;
}

} // namespace

class TestMainWindowLayout : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void stepSelectDevice();
    void internalOptionsAreHidden();
    void stepAddImages();
    void imageTableSettings();
    void stepCreatePlayback();
    void intervalEditor();

private:
    std::unique_ptr<WindowFixture> m_fixture;
    static QPlainTextEdit *logView(MainWindow &window) { return window.findChild<QPlainTextEdit *>(); }
    static QDialog *logWindow(MainWindow &window) { return window.findChild<QDialog *>(); }
};

void TestMainWindowLayout::initTestCase()
{
    m_fixture = std::make_unique<WindowFixture>();
    UiLanguage::set(UiLanguage::English);
    QApplication::setApplicationVersion(QStringLiteral("1.0.3"));
}

void TestMainWindowLayout::cleanup() { WindowFixture::removeSettings(); }

void TestMainWindowLayout::stepSelectDevice()
{
    MainWindow window;
    QGroupBox *step = section(window, QStringLiteral("Step 1: Select Device"));
    QVERIFY(step);
    QCOMPARE(step->objectName(), QStringLiteral("tarnStepSection"));
    auto *grid = qobject_cast<QGridLayout *>(step->layout());
    QCOMPARE(grid->columnStretch(1), 1);
    QCOMPARE(grid->columnStretch(4), 1);
    QCOMPARE(grid->horizontalSpacing(), 6);
    QCOMPARE(grid->verticalSpacing(), 5);
    QCOMPARE(qobject_cast<QLabel *>(grid->itemAtPosition(0, 0)->widget())->text(),
             QStringLiteral("Key file:"));

    QPushButton *import = withText<QPushButton>(window, QStringLiteral("Import Key..."));
    QVERIFY(import);
    QCOMPARE(import->objectName(), QStringLiteral("tarnBrowseBtn"));
    QCOMPARE(import->width(), 100);
    QCOMPARE(grid->itemAtPosition(0, 4)->widget(), import);
    auto *history = qobject_cast<QComboBox *>(grid->itemAtPosition(0, 1)->widget());
    QVERIFY(history);
    QCOMPARE(history->sizeAdjustPolicy(), QComboBox::AdjustToMinimumContentsLengthWithIcon);
    QCOMPARE(history->minimumContentsLength(), 24);

    QComboBox *panel = comboStartingWith(window, QStringLiteral("133"));
    QStringList types;
    for (int i = 0; i < panel->count(); ++i)
        types << panel->itemText(i);
    QCOMPARE(types, (QStringList{"133", "070", "100", "253", "285"}));
    QVERIFY(withText<QLabel>(window, QStringLiteral("1200 × 1600")));
    QLabel *customLabel = withText<QLabel>(window, QStringLiteral("Custom size:"));
    QVERIFY(customLabel && !customLabel->isEnabled());
    bool customEdit = false;
    for (QLineEdit *edit : step->findChildren<QLineEdit *>())
        customEdit |= edit->placeholderText() == QStringLiteral("WxH, e.g. 1200x825") && !edit->isEnabled();
    QVERIFY(customEdit);

    QComboBox *orientation = comboStartingWith(window, QStringLiteral("Portrait (0)"));
    QCOMPARE(orientation->count(), 2);
    QCOMPARE(orientation->itemData(0).toString(), QStringLiteral("0"));
    QCOMPARE(orientation->itemText(1), QStringLiteral("Landscape (90)"));
    QCOMPARE(orientation->itemData(1).toString(), QStringLiteral("90"));
    QCOMPARE(orientation->currentIndex(), 0);
    QVERIFY(withText<QLabel>(window, QStringLiteral("Frame model:")));
    QVERIFY(withText<QLabel>(window, QStringLiteral("Frame orientation:")));
    QCOMPARE(window.frameOrientationValue(), QStringLiteral("0"));
    QVERIFY(!window.isLandscapeOrientation());

    // The key path field and the processor fields exist but are never shown to this user.
    window.show();
    int visibleEdits = 0;
    for (QLineEdit *edit : step->findChildren<QLineEdit *>())
        visibleEdits += edit->isVisible() ? 1 : 0;
    QCOMPARE(visibleEdits, 1); // the (disabled) custom size field
    for (const QString &label : QStringList{"Executable:", "Working directory:", "Output path:", "LUT file:"})
        QVERIFY2(withText<QLabel>(window, label) && !withText<QLabel>(window, label)->isVisible(),
                 qPrintable(label));
}

void TestMainWindowLayout::internalOptionsAreHidden()
{
    MainWindow window;
    window.show();
    for (const QString &text :
         QStringList{"JPG preview only", "Disable analysis", "Disable crop", "Analysis only"}) {
        QCheckBox *box = withText<QCheckBox>(window, text);
        QVERIFY2(box && !box->isVisible(), qPrintable(text));
    }
    QComboBox *mode = comboStartingWith(window, QStringLiteral("Soft"));
    QVERIFY(mode && !mode->isVisible());
    QCOMPARE(mode->currentIndex(), 1);
    QComboBox *strategy = comboStartingWith(window, QStringLiteral("auto"));
    QVERIFY(strategy && !strategy->isVisible());
    QComboBox *format = comboStartingWith(window, QStringLiteral("CSV"));
    QVERIFY(format && !format->isVisible());
    QCOMPARE(format->itemText(1), QStringLiteral("JSON"));
    strategy->setCurrentText(QStringLiteral("manual-mode"));
    window.onGlobalStrategyChanged(strategy->currentIndex());
    QVERIFY(mode->isEnabled());
    strategy->setCurrentText(QStringLiteral("auto"));
    window.onGlobalStrategyChanged(strategy->currentIndex());
    QVERIFY(!mode->isEnabled());
}

void TestMainWindowLayout::stepAddImages()
{
    MainWindow window;
    QGroupBox *step = section(window, QStringLiteral("Step 2: Add Images"));
    QVERIFY(step);
    QCOMPARE(step->objectName(), QStringLiteral("tarnStepSection"));
    for (const QString &text : QStringList{"Add Images", "Add Folder", "Clear", "Remove Selected"})
        QVERIFY2(withText<QPushButton>(*step, text), qPrintable(text));
    QLabel *count = withText<QLabel>(window, QStringLiteral("0 image(s)"));
    QVERIFY(count);
    QCOMPARE(count->toolTip(), QStringLiteral("Use the ↑↓ buttons on each row to change playback order"));
    QVERIFY(count->styleSheet().endsWith(QStringLiteral("padding-left: 6px;")));
    QCheckBox *subfolders = withText<QCheckBox>(window, QStringLiteral("Include subfolders"));
    QVERIFY(subfolders->isChecked());
    QCOMPARE(subfolders->toolTip(), QStringLiteral("Recursively scan subfolders when adding a folder"));
    QCheckBox *selectAll = withText<QCheckBox>(window, QStringLiteral("Select All"));
    QVERIFY(selectAll && !selectAll->isChecked());
    QVERIFY(!selectAll->toolTip().isEmpty());
    QVERIFY(withText<QLabel>(window, QStringLiteral("Batch:")));
    PreprocControlPanel *batch = nullptr;
    for (PreprocControlPanel *panel : step->findChildren<PreprocControlPanel *>())
        batch = panel;
    QVERIFY(batch);
    QVERIFY(!batch->fillButton(FillMode::Direct));
    QVERIFY(!batch->rotationLabel());
    QVERIFY(batch->fillButton(FillMode::BlurFill)->isChecked());
}

void TestMainWindowLayout::imageTableSettings()
{
    MainWindow window;
    ImageTableWidget *table = window.imageTable();
    QCOMPARE(table->columnCount(), 5);
    QStringList headers;
    for (int c = 0; c < 5; ++c)
        headers << table->horizontalHeaderItem(c)->text();
    QCOMPARE(headers, (QStringList{"Sel", "Ord", "Thumb", "Filename", "Status"}));
    QCOMPARE(table->columnWidth(0), 28);
    QCOMPARE(table->columnWidth(1), 30);
    QCOMPARE(table->columnWidth(2), 86);
    QCOMPARE(table->columnWidth(4), 88);
    QCOMPARE(table->horizontalHeader()->sectionResizeMode(0), QHeaderView::Fixed);
    QCOMPARE(table->horizontalHeader()->sectionResizeMode(1), QHeaderView::Fixed);
    QCOMPARE(table->horizontalHeader()->sectionResizeMode(3), QHeaderView::Stretch);
    QCOMPARE(table->verticalHeader()->defaultSectionSize(), 140);
    QVERIFY(table->verticalHeader()->isHidden());
    QCOMPARE(table->selectionBehavior(), QAbstractItemView::SelectRows);
    QCOMPARE(table->editTriggers(), QAbstractItemView::NoEditTriggers);
    QVERIFY(table->alternatingRowColors());
    QVERIFY(table->showGrid());
    QCOMPARE(table->toolTip(), QStringLiteral("Use the ↑↓ buttons on each row to change playback order"));
}

void TestMainWindowLayout::stepCreatePlayback()
{
    MainWindow window;
    window.show();
    QGroupBox *step = section(window, QStringLiteral("Step 3: Create Playback File"));
    QVERIFY(step);
    QCOMPARE(step->objectName(), QStringLiteral("tarnStepSection"));
    QCheckBox *playlist = withText<QCheckBox>(window, QStringLiteral("Generate playlist"));
    QVERIFY(playlist->isChecked());
    QVERIFY(!playlist->toolTip().isEmpty());
    QCheckBox *loop = withText<QCheckBox>(window, QStringLiteral("Loop playback"));
    QVERIFY(loop->isChecked());
    QCOMPARE(loop->toolTip(), QStringLiteral("Maps to play.loop in playlist.json"));
    QVERIFY(withText<QLabel>(window, QStringLiteral("Slideshow interval:")));
    for (const QString &unit : QStringList{"d", "h", "min"})
        QVERIFY(withText<QLabel>(*step, unit));
    QLineEdit *saveLocation = nullptr;
    for (QLineEdit *edit : step->findChildren<QLineEdit *>())
        saveLocation = edit;
    QCOMPARE(saveLocation->placeholderText(),
             QStringLiteral("Required: choose save location; vl_play folder will be created there"));
    QPushButton *browse = withText<QPushButton>(*step, QStringLiteral("Browse..."));
    QCOMPARE(browse->objectName(), QStringLiteral("tarnBrowseBtn"));
    QLabel *hint = withText<QLabel>(*step, Str::playlistHintLite());
    QVERIFY(hint && hint->styleSheet().endsWith(QStringLiteral("font-size:11px;")));
    QProgressBar *progress = step->findChild<QProgressBar *>();
    QVERIFY(!progress->isVisible());
    QVERIFY(progress->isTextVisible());
    QCOMPARE(progress->height(), 18);
    QVERIFY(withText<QPushButton>(*step, QStringLiteral("Open Playlist"))->isVisible());
    QVERIFY(!withText<QPushButton>(*step, QStringLiteral("Create Playlist"))->isVisible());
    QPushButton *start = withText<QPushButton>(*step, QStringLiteral("▶  Start Processing"));
    QCOMPARE(start->minimumSize(), QSize(130, 34));
    QCOMPARE(start->styleSheet(), AppTheme::primaryButtonStyleSheet());
    QVERIFY(start->isEnabled());
    QPushButton *stop = withText<QPushButton>(*step, QStringLiteral("■  Stop"));
    QCOMPARE(stop->minimumSize(), QSize(90, 34));
    QCOMPARE(stop->styleSheet(), AppTheme::stopButtonStyleSheet());
    QVERIFY(!stop->isEnabled());
    for (QSpinBox *spin : intervalSpins(window))
        QVERIFY(spin->isEnabled());
    QVERIFY(saveLocation->isEnabled() && loop->isEnabled() && browse->isEnabled());
}

void TestMainWindowLayout::intervalEditor()
{
    MainWindow window;
    const QList<QSpinBox *> spins = intervalSpins(window);
    QCOMPARE(spins.size(), 3);
    QSpinBox *days = spins.at(0);
    QSpinBox *hours = spins.at(1);
    QSpinBox *minutes = spins.at(2);
    QCOMPARE(days->maximum(), 34);
    QCOMPARE(hours->maximum(), 23);
    QCOMPARE(minutes->maximum(), 59);
    QCOMPARE(days->value(), 0);
    QCOMPARE(hours->value(), 0);
    QCOMPARE(minutes->value(), 30);
    QCOMPARE(window.playlistIntervalMinutes(), 30);
    days->setValue(99);
    QCOMPARE(days->value(), 34);
    minutes->setValue(0); // 0 d 0 h 0 min snaps to 3 minutes
    days->setValue(0);
    QCOMPARE(days->value(), 0);
    QCOMPARE(hours->value(), 0);
    QCOMPARE(minutes->value(), 3);
    days->setValue(34);
    hours->setValue(23);
    minutes->setValue(59);
    QCOMPARE(days->value(), 34);
    QCOMPARE(hours->value(), 17);
    QCOMPARE(minutes->value(), 20);
    QCOMPARE(window.playlistIntervalMinutes(), 50000);
    window.setPlaylistIntervalMinutes(1);
    QCOMPARE(window.playlistIntervalMinutes(), 3);
    window.setPlaylistIntervalMinutes(1441);
    QCOMPARE(days->value(), 1);
    QCOMPARE(hours->value(), 0);
    QCOMPARE(minutes->value(), 1);
}

QTEST_MAIN(TestMainWindowLayout)
#include "tst_MainWindowLayout.moc"
