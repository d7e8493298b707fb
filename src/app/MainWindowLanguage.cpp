// The re-labelling pass: every text of the window set again from the catalogue. Each step
// skips the widgets this edition did not create.
#include "app/MainWindow.h"

#include "images/ImageTableWidget.h"
#include "preprocess/PreprocControlPanel.h"
#include "ui/AppBranding.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>

namespace {

template <typename Widget> void setTextIf(Widget *widget, const QString &text)
{
    if (widget)
        widget->setText(text);
}

void setToolTipIf(QWidget *widget, const QString &tip)
{
    if (widget)
        widget->setToolTip(tip);
}

bool containsAny(const QString &text, std::initializer_list<const char *> needles)
{
    for (const char *needle : needles) {
        if (text.contains(QString::fromUtf8(needle)))
            return true;
    }
    return false;
}

// The catalogue entry for a label the window keeps no pointer to, found by its current text
// in either language; the first match wins.
QString relabelFor(const QString &text)
{
    if (containsAny(text, {"处理器", "Processor"}))
        return Str::processorVariant();
    if (containsAny(text, {"工作目录", "Working"}))
        return Str::workDir();
    if (containsAny(text, {"可执行", "Executable"}))
        return Str::executable();
    if (containsAny(text, {"输出路径", "Output path"}))
        return Str::outputPath();
    if (containsAny(text, {"LUT"}))
        return Str::lutFile();
    if (containsAny(text, {"相框型号", "Frame model", "面板类型", "Panel type"}))
        return Str::frameModel();
    if (containsAny(text, {"相框方向", "Frame orientation"}))
        return Str::frameOrientation();
    if (containsAny(text, {"屏幕方向", "Screen orientation"}))
        return Str::screenOrientation();
    if (containsAny(text, {"方向:", "Orientation:"}))
        return Str::orientation();
    if (containsAny(text, {"增强策略", "Enhancement strategy"}))
        return Str::enhanceStrategy();
    if (containsAny(text, {"批量:", "Batch:"}))
        return Str::batchLabel();
    return QString();
}

} // namespace

void MainWindow::relabelUnnamedLabels()
{
    QWidget *central = centralWidget();
    if (!central)
        return;
    for (QLabel *label : central->findChildren<QLabel *>()) {
        // Rows show file names and the control panels their own captions: a picture called
        // "Batch: summer.jpg" must keep its name.
        // The processors' count has a label of its own, though its text names a processor.
        if ((m_imageTable && m_imageTable->isAncestorOf(label)) ||
            qobject_cast<PreprocControlPanel *>(label->parentWidget()) || label == m_processorsLabel)
            continue;
        const QString text = relabelFor(label->text());
        if (!text.isEmpty())
            label->setText(text);
    }
}

void MainWindow::retranslateUi()
{
    // 1. Title. 2. The File menu holds the picture lists; the Language menu is not built here.
    setWindowTitle(Str::windowTitle());
    if (m_fileMenu)
        m_fileMenu->setTitle(Str::menuFile());
    setTextIf(m_actionOpenList, Str::actionOpenList());
    setTextIf(m_actionSaveList, Str::actionSaveList());
    setTextIf(m_actionSaveListAs, Str::actionSaveListAs());
    setTextIf(m_actionReopenSession, Str::actionReopenSession());
    if (m_recentListsMenu)
        m_recentListsMenu->setTitle(Str::menuRecentLists());
    rebuildRecentListsMenu();

    // 3. The Edit, View and Arrange menus.
    if (m_editMenu)
        m_editMenu->setTitle(Str::menuEdit());
    updateUndoActions();
    if (m_viewMenu)
        m_viewMenu->setTitle(Str::menuView());
    setTextIf(m_actionViewList, Str::actionViewList());
    setTextIf(m_actionViewGrid, Str::actionViewGrid());
    setTextIf(m_gridZoomLabel, Str::gridTileSize());
    if (m_gridZoom)
        m_gridZoom->setToolTip(Str::gridTileSizeTip());
    if (m_arrangeMenu)
        m_arrangeMenu->setTitle(Str::menuArrange());
    setTextIf(m_actionSortByDateTaken, Str::actionSortByDateTaken());
    setTextIf(m_actionSortByName, Str::actionSortByName());
    setTextIf(m_actionSortByFileDate, Str::actionSortByFileDate());
    setTextIf(m_actionReverseOrder, Str::actionReverseOrder());
    setTextIf(m_actionShuffle, Str::actionShuffle());
    setTextIf(m_actionMoveRowsUp, Str::actionMoveRowsUp());
    setTextIf(m_actionMoveRowsDown, Str::actionMoveRowsDown());
    setTextIf(m_actionRemoveRows, Str::actionRemoveRows());
    setTextIf(m_actionWarnDuplicates, Str::actionWarnDuplicates());

    // 4. Help menu.
    if (m_helpMenu)
        m_helpMenu->setTitle(Str::menuHelp());
    setTextIf(m_actionViewLog, Str::actionViewLog());
    setTextIf(m_actionAbout, Str::actionAbout());

    // 5. Every browse button (the import button is named so too and is re-labelled below).
    if (QWidget *central = centralWidget()) {
        for (QPushButton *button : central->findChildren<QPushButton *>(QStringLiteral("tarnBrowseBtn")))
            button->setText(Str::browseButton());
    }

    // 6. Sections and the widgets the window keeps.
    setTextIf(m_introLabel, Str::workflowIntro());
    if (m_stepDevice)
        m_stepDevice->setTitle(Str::stepSelectDevice());
    if (m_stepImages)
        m_stepImages->setTitle(Str::stepAddImages());
    if (m_stepPlayback)
        m_stepPlayback->setTitle(Str::stepCreatePlayback());
    setTextIf(m_keyFileLabel, Str::keyFileLabel());
    setTextIf(m_copyToCardButton, Str::copyToCardMainButton());
    if (m_copyToCardButton)
        m_copyToCardButton->setToolTip(Str::copyToCardTip());
    setTextIf(m_importKeyButton, Str::importKeyButton());
    setTextIf(m_frameModelLabel, Str::frameModel());
    setTextIf(m_orientationLabel, Str::frameOrientation());
    setTextIf(m_customSizeLabel, Str::customSize());
    if (m_customSizeEdit)
        m_customSizeEdit->setPlaceholderText(Str::customSizePlaceholder());
    if (m_orientationCombo && m_orientationCombo->count() >= 2) {
        m_orientationCombo->setItemText(0, Str::portraitOrientation());
        m_orientationCombo->setItemText(1, Str::landscapeOrientation());
    }
    setToolTipIf(m_variantCombo, Str::processorVariantTip());

    setTextIf(m_jpgOnlyCheck, Str::jpgOnly());
    setToolTipIf(m_jpgOnlyCheck, Str::jpgOnlyTip());
    setTextIf(m_disableAnalysisCheck, Str::disableAnalysis());
    setToolTipIf(m_disableAnalysisCheck, Str::disableAnalysisTip());
    setTextIf(m_disableCropCheck, Str::disableCrop());
    setToolTipIf(m_disableCropCheck, Str::disableCropTip());
    setTextIf(m_analysisOnlyCheck, Str::analysisOnly());
    setToolTipIf(m_analysisOnlyCheck, Str::analysisOnlyTip());
    if (m_modeCombo) {
        const QStringList modes = Str::modeList();
        for (int i = 0; i < m_modeCombo->count() && i < modes.size(); ++i)
            m_modeCombo->setItemText(i, modes.at(i));
    }

    if (m_logWindow) {
        m_logWindow->setWindowTitle(Str::logSection());
        AppBranding::updateHeaderTitle(m_logWindow, Str::logSection());
    }
    setTextIf(m_playlistEnableCheck, Str::playlistEnable());
    setToolTipIf(m_playlistEnableCheck, Str::playlistEnableTip());
    setTextIf(m_intervalLabel, Str::slideshowInterval());
    for (QWidget *widget : std::initializer_list<QWidget *>{m_intervalLabel, m_intervalDays, m_intervalHours,
                                                            m_intervalMinutes})
        setToolTipIf(widget, Str::slideshowIntervalTip());
    setTextIf(m_unitDays, Str::intervalUnitDays());
    setTextIf(m_unitHours, Str::intervalUnitHours());
    setTextIf(m_unitMinutes, Str::intervalUnitMinutes());
    setTextIf(m_saveLocationLabel, Str::saveLocation());
    if (m_playlistDirEdit)
        m_playlistDirEdit->setPlaceholderText(Str::playlistDirPlaceholderLite());
    setTextIf(m_playlistHintLabel, Str::playlistHintLite());
    setTextIf(m_loopCheck, Str::loopPlayback());
    setToolTipIf(m_loopCheck, Str::loopPlaybackTip());
    setTextIf(m_processorsLabel, Str::processorsAtOnce());
    setToolTipIf(m_processorsLabel, Str::processorsAtOnceTip());
    setToolTipIf(m_processorsSpin, Str::processorsAtOnceTip());

    setTextIf(m_addImagesButton, Str::addImages());
    setTextIf(m_addFolderButton, Str::addFolder());
    setTextIf(m_clearButton, Str::clearList());
    setTextIf(m_removeButton, Str::removeSelected());
    setTextIf(m_includeSubfoldersCheck, Str::includeSubfolders());
    setToolTipIf(m_includeSubfoldersCheck, Str::includeSubfoldersTip());
    setTextIf(m_frameFacesCheck, Str::frameFacesSetting());
    setToolTipIf(m_frameFacesCheck, Str::frameFacesSettingTip());
    setTextIf(m_selectAllCheck, Str::selectAll());
    setToolTipIf(m_selectAllCheck, Str::selectAllTip());
    if (m_imageTable) {
        m_imageTable->setHorizontalHeaderLabels(Str::tableHeadersLite());
        m_imageTable->setToolTip(Str::dragReorderTip());
    }
    setToolTipIf(m_countLabel, Str::dragReorderTip());
    if (m_logView)
        m_logView->setPlaceholderText(Str::logPlaceholder());
    setTextIf(m_openPlaylistButton, Str::openPlaylist());
    setTextIf(m_createPlaylistButton, Str::createPlaylist());
    setToolTipIf(m_createPlaylistButton, Str::createPlaylistTip());
    setTextIf(m_startButton, Str::startProcessing());
    setTextIf(m_stopButton, Str::stopProcessing());

    // 7. Labels without a pointer, by their current text.
    relabelUnnamedLabels();

    // 8. Texts that carry state.
    updatePanelResolutionLabel();
    updateCount();
    refreshAllRowStatusText();

    // 9. The control panels.
    refreshPreprocLanguage();
}
