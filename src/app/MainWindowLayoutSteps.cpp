// The widgets of Step 2 (images and the table) and Step 3 (the playback file).
#include "app/MainWindow.h"

#include "images/CellWidgetDelegate.h"
#include "images/ImageTableWidget.h"
#include "preprocess/PreprocControlPanel.h"
#include "ui/AppTheme.h"

#include <QApplication>
#include <QCheckBox>
#include <QFrame>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

namespace {

// The file cell is covered by the row's widget, which shows the name itself: the cell paints
// its background and selection only, so its text never shows through.
class CoveredCellDelegate : public CellWidgetDelegate
{
public:
    using CellWidgetDelegate::CellWidgetDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        QStyleOptionViewItem covered = option;
        initStyleOption(&covered, index);
        covered.text.clear();
        const QWidget *widget = option.widget;
        QStyle *style = widget ? widget->style() : QApplication::style();
        style->drawControl(QStyle::CE_ItemViewItem, &covered, painter, widget);
    }
};

} // namespace

QGroupBox *MainWindow::createStepAddImages()
{
    m_stepImages = new QGroupBox(Str::stepAddImages(), centralWidget());
    m_stepImages->setObjectName(QStringLiteral("tarnStepSection"));
    QGroupBox *section = m_stepImages;
    auto *layout = new QVBoxLayout(section);

    auto *buttons = new QHBoxLayout;
    m_addImagesButton = new QPushButton(Str::addImages(), section);
    m_addFolderButton = new QPushButton(Str::addFolder(), section);
    m_clearButton = new QPushButton(Str::clearList(), section);
    m_removeButton = new QPushButton(Str::removeSelected(), section);
    m_countLabel = new QLabel(Str::imageCount(0), section);
    m_countLabel->setStyleSheet(AppTheme::mutedLabelStyleSheet("padding-left: 6px;"));
    m_countLabel->setToolTip(Str::dragReorderTip());
    m_includeSubfoldersCheck = new QCheckBox(Str::includeSubfolders(), section);
    m_includeSubfoldersCheck->setChecked(true);
    m_includeSubfoldersCheck->setToolTip(Str::includeSubfoldersTip());
    m_frameFacesCheck = new QCheckBox(Str::frameFacesSetting(), section);
    m_frameFacesCheck->setToolTip(Str::frameFacesSettingTip());
    for (QWidget *widget : std::initializer_list<QWidget *>{m_addImagesButton, m_addFolderButton,
                                                            m_clearButton, m_removeButton, m_countLabel})
        buttons->addWidget(widget);
    buttons->addStretch(1);
    buttons->addWidget(m_frameFacesCheck);
    buttons->addWidget(m_includeSubfoldersCheck);
    layout->addLayout(buttons);

    // A frame without a drawn line: a line shape would strike through the bar's captions.
    auto *batchBar = new QFrame(section);
    batchBar->setFrameShape(QFrame::NoFrame);
    auto *batchLayout = new QHBoxLayout(batchBar);
    batchLayout->setContentsMargins(0, 2, 0, 2);
    m_selectAllCheck = new QCheckBox(Str::selectAll(), batchBar);
    m_selectAllCheck->setToolTip(Str::selectAllTip());
    m_batchLabel = new QLabel(Str::batchLabel(), batchBar);
    m_batchPanel =
        new PreprocControlPanel(PreprocControlPanel::LayoutStyle::SingleRow, false, false, batchBar);
    // Styled as the rotate buttons.
    const auto actionButton = [batchBar](const QString &text, const QString &tip) {
        auto *button = new QPushButton(text, batchBar);
        button->setObjectName(QStringLiteral("tarnActionBtn"));
        button->setFixedHeight(22);
        button->setToolTip(tip);
        return button;
    };
    m_batchToneButton = actionButton(Str::batchToneButton(), Str::batchToneTip());
    m_batchCaptionButton = actionButton(Str::batchCaptionButton(), Str::batchCaptionTip());
    m_batchAutoFrameButton = actionButton(Str::batchAutoFrameButton(), Str::batchAutoFrameTip());
    batchLayout->addWidget(m_selectAllCheck);
    batchLayout->addWidget(m_batchLabel);
    batchLayout->addWidget(m_batchPanel, 1);
    batchLayout->addWidget(m_batchAutoFrameButton);
    batchLayout->addWidget(m_batchToneButton);
    batchLayout->addWidget(m_batchCaptionButton);
    layout->addWidget(batchBar);

    layout->addWidget(createPictureViews(section), 1);

    connect(m_addImagesButton, &QPushButton::clicked, this, &MainWindow::onAddImages);
    connect(m_addFolderButton, &QPushButton::clicked, this, &MainWindow::onAddFolder);
    connect(m_clearButton, &QPushButton::clicked, this, &MainWindow::onClearAll);
    connect(m_removeButton, &QPushButton::clicked, this, &MainWindow::onRemoveSelected);
    connect(m_batchPanel, &PreprocControlPanel::fillModeSelected, this, &MainWindow::onBatchFillMode);
    connect(m_batchPanel, &PreprocControlPanel::rotateLeftRequested, this, &MainWindow::onBatchRotateLeft);
    connect(m_batchPanel, &PreprocControlPanel::rotateRightRequested, this, &MainWindow::onBatchRotateRight);
    connect(m_batchToneButton, &QPushButton::clicked, this, &MainWindow::onBatchTone);
    connect(m_batchCaptionButton, &QPushButton::clicked, this, &MainWindow::onBatchCaption);
    connect(m_batchAutoFrameButton, &QPushButton::clicked, this, [this] { autoFrameCheckedRows(); });
    connect(m_selectAllCheck, &QCheckBox::toggled, this, &MainWindow::onSelectAllToggled);
    return section;
}

void MainWindow::setupImageTable()
{
    m_imageTable = new ImageTableWidget(5, nullptr);
    m_imageTable->setHorizontalHeaderLabels(Str::tableHeadersLite());
    QHeaderView *header = m_imageTable->horizontalHeader();
    header->setSectionResizeMode(SelectColumn, QHeaderView::Fixed);
    header->setSectionResizeMode(OrderColumn, QHeaderView::Fixed);
    header->setSectionResizeMode(ThumbColumn, QHeaderView::Fixed);
    header->setSectionResizeMode(FileColumn, QHeaderView::Stretch);
    header->setSectionResizeMode(StatusColumn, QHeaderView::Fixed);
    m_imageTable->setColumnWidth(SelectColumn, 28);
    m_imageTable->setColumnWidth(OrderColumn, 30);
    m_imageTable->setColumnWidth(ThumbColumn, 86);
    m_imageTable->setColumnWidth(StatusColumn, 88);
    m_imageTable->verticalHeader()->setVisible(false);
    m_imageTable->verticalHeader()->setDefaultSectionSize(kRowHeight);
    m_imageTable->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_imageTable->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_imageTable->setAlternatingRowColors(true);
    m_imageTable->setShowGrid(true);
    m_imageTable->setToolTip(Str::dragReorderTip());
    m_imageTable->setItemDelegateForColumn(FileColumn, new CoveredCellDelegate(m_imageTable));
    m_imageTable->setSwapRowContentHandler([this](int a, int b) { swapRowContent(a, b); });
    connect(m_imageTable, &ImageTableWidget::externalFilesDropped, this, &MainWindow::addImageFiles);
}

QGroupBox *MainWindow::createStepCreatePlayback()
{
    m_stepPlayback = new QGroupBox(Str::stepCreatePlayback(), centralWidget());
    m_stepPlayback->setObjectName(QStringLiteral("tarnStepSection"));
    QGroupBox *section = m_stepPlayback;
    m_playbackGrid = new QGridLayout(section);
    m_playbackGrid->setColumnStretch(1, 1);

    m_playlistEnableCheck = new QCheckBox(Str::playlistEnable(), section);
    m_playlistEnableCheck->setToolTip(Str::playlistEnableTip());
    m_playlistEnableCheck->setChecked(true);
    m_playbackGrid->addWidget(m_playlistEnableCheck, 0, 0, 1, 3);

    m_intervalLabel = new QLabel(Str::slideshowInterval(), section);
    m_intervalLabel->setToolTip(Str::slideshowIntervalTip());
    auto *intervalRow = new QHBoxLayout;
    const auto addPart = [&](QSpinBox *&spin, int maximum, QLabel *&unit, const QString &unitText) {
        spin = new QSpinBox(section);
        spin->setRange(0, maximum);
        spin->setToolTip(Str::slideshowIntervalTip());
        unit = new QLabel(unitText, section);
        intervalRow->addWidget(spin);
        intervalRow->addWidget(unit);
        connect(spin, &QSpinBox::valueChanged, this, &MainWindow::onPlaylistIntervalPartChanged);
    };
    addPart(m_intervalDays, 34, m_unitDays, Str::intervalUnitDays());
    addPart(m_intervalHours, 23, m_unitHours, Str::intervalUnitHours());
    addPart(m_intervalMinutes, 59, m_unitMinutes, Str::intervalUnitMinutes());
    intervalRow->addStretch(1);
    m_playbackGrid->addWidget(m_intervalLabel, 1, 0);
    m_playbackGrid->addLayout(intervalRow, 1, 1, 1, 2);
    setPlaylistIntervalMinutes(30);

    m_loopCheck = new QCheckBox(Str::loopPlayback(), section);
    m_loopCheck->setToolTip(Str::loopPlaybackTip());
    m_loopCheck->setChecked(true);
    m_playbackGrid->addWidget(m_loopCheck, 2, 0, 1, 2);

    // Several processors at once, for a computer with several cores; one, as ever, by default.
    auto *processorsRow = new QHBoxLayout;
    m_processorsLabel = new QLabel(Str::processorsAtOnce(), section);
    m_processorsSpin = new QSpinBox(section);
    m_processorsSpin->setObjectName(QStringLiteral("processorsAtOnce"));
    m_processorsSpin->setRange(1, PackageJob::maxProcessorsAtOnce());
    for (QWidget *widget : std::initializer_list<QWidget *>{m_processorsLabel, m_processorsSpin})
        widget->setToolTip(Str::processorsAtOnceTip());
    processorsRow->addStretch(1);
    processorsRow->addWidget(m_processorsLabel);
    processorsRow->addWidget(m_processorsSpin);
    m_playbackGrid->addLayout(processorsRow, 2, 2);
    connect(m_processorsSpin, &QSpinBox::valueChanged, this, [this](int count) {
        m_job->setProcessorsAtOnce(count);
        if (m_processing)
            m_job->startNext(); // more at once from now on
    });

    m_saveLocationLabel = new QLabel(Str::saveLocation(), section);
    m_playlistDirEdit = new QLineEdit(section);
    m_playlistDirEdit->setPlaceholderText(Str::playlistDirPlaceholderLite());
    m_playlistDirBrowse = new QPushButton(Str::browseButton(), section);
    m_playlistDirBrowse->setObjectName(QStringLiteral("tarnBrowseBtn"));
    m_playbackGrid->addWidget(m_saveLocationLabel, 3, 0);
    m_playbackGrid->addWidget(m_playlistDirEdit, 3, 1);
    m_playbackGrid->addWidget(m_playlistDirBrowse, 3, 2);

    m_playlistHintLabel = new QLabel(Str::playlistHintLite(), section);
    m_playlistHintLabel->setWordWrap(true);
    m_playlistHintLabel->setStyleSheet(AppTheme::mutedLabelStyleSheet("font-size:11px;"));
    m_playbackGrid->addWidget(m_playlistHintLabel, 4, 0, 1, 3);

    m_progressBar = new QProgressBar(section);
    m_progressBar->setTextVisible(true);
    m_progressBar->setFixedHeight(18);
    m_progressBar->hide();
    m_playbackGrid->addWidget(m_progressBar, 5, 0, 1, 3);

    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    m_openPlaylistButton = new QPushButton(Str::openPlaylist(), section);
    m_copyToCardButton = new QPushButton(Str::copyToCardMainButton(), section);
    m_copyToCardButton->setToolTip(Str::copyToCardTip());
    m_createPlaylistButton = new QPushButton(Str::createPlaylist(), section);
    m_createPlaylistButton->setToolTip(Str::createPlaylistTip());
    m_createPlaylistButton->hide(); // this edition writes the playlist at the end of each run
    m_startButton = new QPushButton(Str::startProcessing(), section);
    m_startButton->setMinimumSize(130, 34);
    m_startButton->setStyleSheet(AppTheme::primaryButtonStyleSheet());
    m_stopButton = new QPushButton(Str::stopProcessing(), section);
    m_stopButton->setMinimumSize(90, 34);
    m_stopButton->setStyleSheet(AppTheme::stopButtonStyleSheet());
    m_stopButton->setEnabled(false);
    buttons->addWidget(m_openPlaylistButton);
    buttons->addWidget(m_copyToCardButton);
    buttons->addWidget(m_createPlaylistButton);
    buttons->addStretch(1);
    buttons->addWidget(m_startButton);
    buttons->addWidget(m_stopButton);
    m_playbackGrid->addLayout(buttons, 6, 0, 1, 3);

    connect(m_playlistDirBrowse, &QPushButton::clicked, this, &MainWindow::onBrowsePlaylistDir);
    connect(m_openPlaylistButton, &QPushButton::clicked, this, &MainWindow::openOutputOrPlaylistDir);
    connect(m_copyToCardButton, &QPushButton::clicked, this, &MainWindow::onCopyToCard);
    connect(m_playlistDirEdit, &QLineEdit::textChanged, this, &MainWindow::updateCopyToCardButton);
    connect(m_startButton, &QPushButton::clicked, this, &MainWindow::onStartProcess);
    connect(m_stopButton, &QPushButton::clicked, this, &MainWindow::onStopProcess);
    updatePlaylistUiState();
    updateCopyToCardButton();
    return section;
}
