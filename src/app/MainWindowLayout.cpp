// The window's frame, menus, Step 1 (device) and the log window.
#include "app/MainWindow.h"

#include "ui/AppBranding.h"
#include "ui/AppTheme.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
constexpr int kLogLineLimit = 3000;
const QStringList kPanelTypes = {QStringLiteral("133"), QStringLiteral("070"), QStringLiteral("100"),
                                 QStringLiteral("253"), QStringLiteral("285")};
} // namespace

void MainWindow::setupMenuBar()
{
    setupFileMenu();
    setupEditMenu();
    setupViewMenu();
    setupArrangeMenu();
    // Texts come from retranslateUi.
    m_helpMenu = menuBar()->addMenu(QString());
    m_actionAbout = m_helpMenu->addAction(QString());
    m_helpMenu->addSeparator();
    m_actionViewLog = m_helpMenu->addAction(QString());

    connect(m_actionAbout, &QAction::triggered, this, &MainWindow::showAboutBox);
    connect(m_actionViewLog, &QAction::triggered, this, &MainWindow::onShowLog);
}

void MainWindow::setupUI()
{
    setWindowTitle(Str::windowTitle());
    setMinimumSize(720, 620);
    resize(860, 720);
    setAcceptDrops(true);
    AppBranding::applyWindowIcon(this);

    auto *central = new QWidget(this);
    auto *layout = new QVBoxLayout(central);
    layout->setSpacing(6);
    layout->setContentsMargins(8, 6, 8, 8);

    m_introLabel = new QLabel(Str::workflowIntro(), central);
    m_introLabel->setWordWrap(true);
    m_introLabel->setStyleSheet(AppTheme::mutedLabelStyleSheet("font-size:12px; padding:2px 0 8px 0;"));
    layout->addWidget(m_introLabel);
    setCentralWidget(central);

    layout->addWidget(createStepSelectDevice());
    layout->addWidget(createStepAddImages(), 1);
    layout->addWidget(createStepCreatePlayback());
    setupLogWindow();
}

QGroupBox *MainWindow::createStepSelectDevice()
{
    m_stepDevice = new QGroupBox(Str::stepSelectDevice(), centralWidget());
    m_stepDevice->setObjectName(QStringLiteral("tarnStepSection"));
    m_deviceGrid = new QGridLayout(m_stepDevice);
    m_deviceGrid->setColumnStretch(1, 1);
    m_deviceGrid->setColumnStretch(4, 1);
    m_deviceGrid->setHorizontalSpacing(6);
    m_deviceGrid->setVerticalSpacing(5);
    QGroupBox *section = m_stepDevice;

    // Key file: the history combo, the import button, and the hidden field holding the path.
    m_keyFileLabel = new QLabel(Str::keyFileLabel(), section);
    m_keyHistoryCombo = new QComboBox(section);
    m_keyHistoryCombo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_keyHistoryCombo->setMinimumContentsLength(24);
    m_importKeyButton = new QPushButton(Str::importKeyButton(), section);
    m_importKeyButton->setObjectName(QStringLiteral("tarnBrowseBtn"));
    m_importKeyButton->setFixedWidth(100);
    m_keyFileEdit = new QLineEdit(section);
    m_keyFileEdit->hide();
    m_deviceGrid->addWidget(m_keyFileLabel, 0, 0);
    m_deviceGrid->addWidget(m_keyHistoryCombo, 0, 1, 1, 3);
    m_deviceGrid->addWidget(m_importKeyButton, 0, 4);

    // Frame model, its resolution and the (unused here) custom size.
    m_frameModelLabel = new QLabel(Str::frameModel(), section);
    auto *deviceRow = new QHBoxLayout;
    deviceRow->setSpacing(4);
    m_panelTypeCombo = new QComboBox(section);
    m_panelTypeCombo->addItems(kPanelTypes);
    m_panelResolutionLabel = new QLabel(section);
    m_panelResolutionLabel->setStyleSheet(AppTheme::mutedLabelStyleSheet(nullptr));
    m_customSizeLabel = new QLabel(Str::customSize(), section);
    m_customSizeEdit = new QLineEdit(section);
    m_customSizeEdit->setPlaceholderText(Str::customSizePlaceholder());
    m_customSizeLabel->setEnabled(false);
    m_customSizeEdit->setEnabled(false);
    deviceRow->addWidget(m_panelTypeCombo);
    deviceRow->addWidget(m_panelResolutionLabel);
    deviceRow->addWidget(m_customSizeLabel);
    deviceRow->addWidget(m_customSizeEdit);
    deviceRow->addStretch(1);
    m_deviceGrid->addWidget(m_frameModelLabel, 1, 0);
    m_deviceGrid->addLayout(deviceRow, 1, 1, 1, 4);

    m_orientationLabel = new QLabel(Str::frameOrientation(), section);
    m_orientationCombo = new QComboBox(section);
    m_orientationCombo->addItem(Str::portraitOrientation(), QStringLiteral("0"));
    m_orientationCombo->addItem(Str::landscapeOrientation(), QStringLiteral("90"));
    m_orientationCombo->setCurrentIndex(0);
    m_deviceGrid->addWidget(m_orientationLabel, 2, 0);
    m_deviceGrid->addWidget(m_orientationCombo, 2, 1);

    // The processor paths: filled from the configuration and the settings, never edited by
    // this edition's user.
    int row = 3;
    for (auto [edit, text] :
         {std::pair{&m_exeEdit, Str::executable()}, std::pair{&m_workDirEdit, Str::workDir()},
          std::pair{&m_outputEdit, Str::outputPath()}, std::pair{&m_lutEdit, Str::lutFile()}}) {
        auto *label = new QLabel(text, section);
        *edit = new QLineEdit(section);
        m_deviceGrid->addWidget(label, row, 0);
        m_deviceGrid->addWidget(*edit, row, 1, 1, 4);
        label->hide();
        (*edit)->hide();
        ++row;
    }
    createInternalOptionWidgets(section, m_deviceGrid);

    connect(m_importKeyButton, &QPushButton::clicked, this, &MainWindow::onBrowseKeyFile);
    connect(m_keyHistoryCombo, &QComboBox::currentIndexChanged, this, &MainWindow::onKeyHistoryChanged);
    connect(m_panelTypeCombo, &QComboBox::currentIndexChanged, this, [this] {
        updatePanelResolutionLabel();
        updatePreprocPanelSettings();
    });
    connect(m_orientationCombo, &QComboBox::currentIndexChanged, this,
            &MainWindow::updatePreprocPanelSettings);
    return section;
}

void MainWindow::createInternalOptionWidgets(QGroupBox *section, QGridLayout *grid)
{
    // The internal edition's options exist so that it can be built from the same sources;
    // this edition keeps them hidden.
    auto *strategyLabel = new QLabel(Str::enhanceStrategy(), section);
    m_strategyCombo = new QComboBox(section);
    m_strategyCombo->addItems(Str::strategyDirect());
    auto *modeLabel = new QLabel(Str::enhanceMode(), section);
    m_modeCombo = new QComboBox(section);
    m_modeCombo->addItems(Str::modeList());
    m_modeCombo->setCurrentIndex(1);
    m_jpgOnlyCheck = new QCheckBox(Str::jpgOnly(), section);
    m_disableAnalysisCheck = new QCheckBox(Str::disableAnalysis(), section);
    m_disableCropCheck = new QCheckBox(Str::disableCrop(), section);
    m_analysisOnlyCheck = new QCheckBox(Str::analysisOnly(), section);
    auto *analysisLabel = new QLabel(Str::analysisOutputFile(), section);
    m_analysisOutputEdit = new QLineEdit(section);
    m_analysisOutputBrowse = new QPushButton(Str::browseButton(), section);
    m_analysisOutputBrowse->setObjectName(QStringLiteral("tarnBrowseBtn"));
    m_analysisFormatCombo = new QComboBox(section);
    m_analysisFormatCombo->addItems({QStringLiteral("CSV"), QStringLiteral("JSON")});

    grid->addWidget(strategyLabel, 7, 0);
    grid->addWidget(m_strategyCombo, 7, 1);
    grid->addWidget(modeLabel, 7, 2);
    grid->addWidget(m_modeCombo, 7, 3);
    grid->addWidget(m_jpgOnlyCheck, 8, 0);
    grid->addWidget(m_disableAnalysisCheck, 8, 1);
    grid->addWidget(m_disableCropCheck, 8, 2);
    grid->addWidget(m_analysisOnlyCheck, 8, 3);
    grid->addWidget(analysisLabel, 9, 0);
    grid->addWidget(m_analysisOutputEdit, 9, 1, 1, 2);
    grid->addWidget(m_analysisOutputBrowse, 9, 3);
    grid->addWidget(m_analysisFormatCombo, 9, 4);
    for (QWidget *widget : std::initializer_list<QWidget *>{
             strategyLabel, m_strategyCombo, modeLabel, m_modeCombo, m_jpgOnlyCheck, m_disableAnalysisCheck,
             m_disableCropCheck, m_analysisOnlyCheck, analysisLabel, m_analysisOutputEdit,
             m_analysisOutputBrowse, m_analysisFormatCombo})
        widget->hide();
}

void MainWindow::setupLogWindow()
{
    m_logWindow = new QDialog(this);
    m_logWindow->setWindowTitle(Str::logSection());
    AppBranding::applyWindowIcon(m_logWindow);
    m_logWindow->resize(760, 480);

    auto *layout = new QVBoxLayout(m_logWindow);
    AppBranding::insertDialogHeader(layout, Str::logSection());

    m_logView = new QPlainTextEdit(m_logWindow);
    m_logView->setReadOnly(true);
    m_logView->setMaximumBlockCount(kLogLineLimit);
    m_logView->setPlaceholderText(Str::logPlaceholder());
    m_logView->setFont(QFont(QStringLiteral("Microsoft YaHei"), 9));
    layout->addWidget(m_logView, 1);
}

void MainWindow::showAboutBox()
{
    QMessageBox box(this);
    AppBranding::applyWindowIcon(&box);
    box.setWindowTitle(Str::aboutTitle());
    box.setIcon(QMessageBox::Information);
    box.setTextFormat(Qt::RichText);
    box.setText(Str::aboutHtml());
    box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::LinksAccessibleByMouse |
                                Qt::LinksAccessibleByKeyboard);
    box.setStandardButtons(QMessageBox::Ok);
    box.exec();
}
