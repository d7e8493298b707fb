#pragma once

#include "app/Arrangement.h"
#include "app/TableEdit.h"
#include "images/FaceDetector.h"
#include "playlist/PlaylistExporter.h"
#include "preprocess/ImagePreprocess.h"
#include "processor/ProcessorConfig.h"
#include "run/KeySnapshot.h"
#include "run/PackageJob.h"
#include "ui/AppStrings.h"
#include "ui/UiLanguage.h"

#include <QMainWindow>
#include <QSet>
#include <QSettings>

#include <functional>
#include <memory>
#include <optional>

class DecodeQueue;
class FaceSearch;
class ImageTableWidget;
class PictureGrid;
struct GridTile;
class PreprocControlPanel;
class PreprocWidget;
class PreviewRenderer;
class ProcessorSelfTest;
class QProgressDialog;
struct DecodedPicture;
class QAction;
class QCheckBox;
class QComboBox;
class QDialog;
class QGroupBox;
class QGridLayout;
class QLabel;
class QLineEdit;
class QMenu;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class QSlider;
class QSpinBox;
class QStackedWidget;
class QUndoStack;
class QLockFile;
class QTimer;
class SessionSaver;
class ScratchFolders;
struct PictureList;

// The settings file "VeloraOfflineTool.ini" (beside the executable while it can be kept there,
// SettingsLocation); a fresh object each call.
std::unique_ptr<QSettings> appSettings();

// The main window: owns all state of the tool, its three-step layout and the image table, and
// drives the run engine (PackageJob), whose items follow the rows and whose reports it shows.
// Its member functions are spread over files named for the concern they implement
// (MainWindow*.cpp).
//
// Every row has an id of its own from the moment it is added; the processor's output of a
// row is named by that id and lives in this window's own staging folder. A finished row
// keeps its output, with a stamp of what it was made from (picture, state, frame settings,
// key), until that changes: then the row is Pending again and its output goes. So a run
// processes only Pending rows, reordering never credits an output to the wrong row, and the
// package is always made of the Done rows, in table order.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    // Below the system temporary folder: the rendered JPEGs of a run.
    static const QString kTempPreprocDir;

    // Columns of the image table.
    enum Column { SelectColumn = 0, OrderColumn = 1, ThumbColumn = 2, FileColumn = 3, StatusColumn = 4 };
    // Data roles on a row's file cell.
    static constexpr int kSourcePathRole = Qt::UserRole;
    static constexpr int kBaseDirRole = Qt::UserRole + 1;
    static constexpr int kTempPreprocRole = Qt::UserRole + 2;
    static constexpr int kHeicCacheRole = Qt::UserRole + 3;
    static constexpr int kRowIdRole = Qt::UserRole + 4;    // the row's id, for its whole life
    static constexpr int kLikenessRole = Qt::UserRole + 5; // what the picture looks like (Likeness)
    static constexpr int kPlaylistFrameLimit = PlaylistExporter::kMaxFrames;
    static constexpr int kRowHeight = 140;
    static constexpr int kDefaultIntervalMinutes = 30;
    static constexpr int kUndoSteps = 100;

    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

    // This edition has no language switch: deliberately does nothing.
    void setUiLanguage(UiLanguage::Lang lang);

    void retranslateUi();
    void refreshAllRowStatusText();
    void refreshPreprocLanguage();
    void appendLog(const QString &text);

    // Images and the table
    void addImageFiles(const QStringList &paths);
    void addSingleFile(const QString &path, const QString &baseDir, QSet<QString> *seen);
    void updateCount();
    // The rows the batch bar and Remove Selected act on: the checked rows, or in the grid the
    // selected tiles.
    QList<int> checkedRows() const;
    QList<int> checkedRowsInTable() const;
    QWidget *createRowReorderWidget(int row);
    int findRowForReorderButton(QWidget *button) const;
    void moveTableRowUp(int row);
    void moveTableRowDown(int row);
    void cleanupTempFile(int row);
    void cleanupHeicCache(int row);
    void setRowStatus(int row, Str::RowStatus status, int exitCode = 0);
    PreprocWidget *preprocWidgetAt(int row) const;

    // Row identity and the outputs kept for finished rows
    quint64 rowId(int row) const;
    int rowForId(quint64 id) const;
    QByteArray rowInputStamp(int row, const QByteArray &keyFingerprint) const;
    void markRowChanged(int row);
    void revalidateRows();
    int rowCountWithStatus(const QList<Str::RowStatus> &statuses) const;
    ImageTableWidget *imageTable() const { return m_imageTable; }
    PictureGrid *pictureGrid() const { return m_pictureGrid; }
    bool isGridShown() const;
    void showGrid(bool on);
    bool isProcessing() const { return m_processing; }

    // Batch preprocessing and frame settings
    int runBatchPreprocOnCheckedRows(const QString &title,
                                     const std::function<void(PreprocWidget *)> &action);
    int applyFillToCheckedRows(FillMode mode);
    int applyRotateStepToCheckedRows(int step);
    // Gives the checked rows this tone; their fill, rotation and framing stay.
    int applyToneToCheckedRows(const ToneSettings &tone);
    // Gives the checked rows this caption, each with its own date taken or file name.
    int applyCaptionToCheckedRows(const CaptionSettings &caption);
    // Frames the checked rows around their faces, looking for them first on worker threads
    // where they are not known; the rows it takes on (framed now or once found).
    int autoFrameCheckedRows();
    void updatePreprocPanelSettings();

    // Target device
    bool applyPubkeyFile(const QString &path);
    QStringList loadKeyFileHistory() const;
    void saveKeyFileHistory(const QStringList &history);
    void addKeyFileToHistory(const QString &path);
    QString keyFileComboLabel(const QString &path) const;
    void refreshSavedKeyCombo();
    QSize panelResolution() const;
    bool isLandscapeOrientation() const;
    QString frameOrientationValue() const;
    QString currentKeyFilePath() const;
    void setLitePanelType(const QString &type);
    void updatePanelResolutionLabel();

    // Processor
    QString currentVariantId() const;
    void updateVariantFeatures();
    void applyVariant(const QString &id);
    QString detectDefaultLut(const QString &configuredLut, const QString &workDir) const;
    void checkProcessorAtStartup();

    // The run and the processor's command line
    static QString tempPreprocDir();
    QString renderDir() const;
    QString liteBinStagingDir() const;
    QString resolveOutputPathsForRow(int row) const;
    QStringList buildArgs(int row);
    bool validateSettings() const;
    // How many processors a run keeps at work (the Step 3 setting; 1 by default).
    int processorsAtOnce() const;
    void processNext();
    void showProcessingCompleteDialog();

    // Playlist settings
    int playlistIntervalMinutes() const;
    void setPlaylistIntervalMinutes(int minutes);
    void updatePlaylistUiState();
    bool playlistFrameLimitApplies() const;
    QString playlistParentDir() const;
    void openOutputOrPlaylistDir();
    bool buildPlaylistRequest(PlaylistExportRequest *request, QString *message) const;
    // failure: for a silent export that did not write the package, the reason to show.
    bool runPlaylistExport(bool interactive, QString *failure = nullptr);
    // The package in the save location, once one is there: its folder; else empty.
    QString writtenPackageDir() const;
    void updateCopyToCardButton();

    // Arranging: the rows a move acts on (the selected ones, else the checked ones), and the
    // table put into a new order (new row i shows old row from[i]; the selection follows), an
    // undo step named what.
    QList<int> rowsToArrange() const;
    void arrangeRows(const QList<int> &from, const QString &what);

    // Undo: the table as it is, whole; a change of it made a step of the undo stack (named
    // text; nothing when the rows are as they were), or taken in without one; and the table
    // put back as recorded.
    TableRecord recordRows() const;
    void recordTableChange(const QString &text);
    void absorbTableChange(bool intoLastStep = false);
    void restoreRows(const TableRecord &rows);
    QUndoStack *undoStack() const { return m_undoStack; }

    // The session: the table kept in the user's configuration folder as it changes, and opened
    // again at the next start (startSession(), which the program calls once its window shows;
    // endSession() writes it a last time and ends it normally, as the destructor does).
    static QString sessionFolder();
    static QString sessionFile();
    void startSession();
    void endSession();

    // Picture lists: the table, each row's state and the package settings in a file
    PictureList currentPictureList() const;
    bool savePictureList(const QString &path);
    // Replaces the table (asking first when it holds pictures); false when nothing changed.
    bool openPictureList(const QString &path);
    QStringList recentLists() const;

public Q_SLOTS:
    void onBrowseExe();
    void onBrowseWorkDir();
    void onBrowseOutputDir();
    void onBrowseLut();
    void onBrowseAnalysisOutput();
    void onAddImages();
    void onAddFolder();
    void onClearAll();
    void onRemoveSelected();
    void onStartProcess();
    void onStopProcess();
    void onGlobalStrategyChanged(int index);
    void onAnalysisModeToggled(bool checked);
    void onBatchFillMode(FillMode mode);
    void onBatchRotateLeft();
    void onBatchRotateRight();
    void onBatchTone();
    void onBatchCaption();
    void onFacesFound(quint64 id, const PictureSubjects &subjects);
    void onFaceSearchFinished();
    void onSelectAllToggled(bool checked);
    void onVariantChanged(int index);
    void onReloadConfig();
    void onCreatePlaylist();
    void onPlaylistEnableToggled(bool checked);
    void onBrowsePlaylistDir();
    void onBrowseKeyFile();
    void onKeyHistoryChanged(int index);
    void onShowLog();
    void onCopyToCard();
    void onOpenList();
    void onSaveList();
    void onSaveListAs();
    void onSortByDateTaken();
    void onSortByName();
    void onSortByFileDate();
    void onReverseOrder();
    void onShuffle();
    void onMoveRowsUp();
    void onMoveRowsDown();
    void onRowsDragged(const QList<int> &rows, int destination);

protected:
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    // A picture waiting to become a row, and the folder it was added from.
    struct PendingImage {
        QString path;
        QString baseDir;
    };

    void setupMenuBar();
    void setupFileMenu();
    void setupArrangeMenu();
    void setupViewMenu();
    QWidget *createPictureViews(QWidget *parent);
    GridTile gridTile(int row) const;
    // The grid's selection and the table's check boxes made alike, once the events under way are
    // handled: in the direction asked for last, the checks winning over the selection.
    enum class GridSync { None, ChecksFromSelection, SelectionFromChecks };
    void scheduleGridSync(GridSync direction);
    void syncGridSelection();
    void setupEditMenu();
    void setupSessionAction();
    void offerLastSession(bool endedAbnormally);
    void scheduleSessionSave();
    void updateUndoActions();
    RowRecord recordRow(int row) const;
    QList<Arrangement::Key> arrangementKeys() const;
    void rebuildRecentListsMenu();
    void rememberRecentList(const QString &path, bool keep);
    void applyListSettings(const PictureList &list);
    // The table replaced by the list's pictures (those still there) and its settings; the
    // pictures and key file not found in missing. False when the window went meanwhile.
    bool fillTableFromList(const PictureList &list, QStringList *missing);
    void showMissingPictures(const QString &title, const QStringList &missing);
    void setupUI();
    QGroupBox *createStepSelectDevice();
    QGroupBox *createStepAddImages();
    QGroupBox *createStepCreatePlayback();
    void createInternalOptionWidgets(QGroupBox *section, QGridLayout *grid);
    void setupImageTable();
    void setupLogWindow();
    void showAboutBox();
    void relabelUnnamedLabels();
    void loadProcessorConfig();
    void loadSettings();
    void saveSettings();
    // Settings written a second after a change.
    void watchSettings();
    void finishRun();
    // The run engine's view of the table: the frame settings, each row as an item (its picture
    // and state) and their order. The table is the engine's view in turn: statuses come back
    // through onJobStatusChanged.
    JobFrame jobFrame() const;
    ProcessorSetup jobProcessor() const;
    JobPicture jobPicture(int row) const;
    void syncJob() const;
    void syncJobItem(int row) const;
    void syncJobOrder() const;
    void onJobStatusChanged(quint64 id, RowStatus status, int exitCode);
    void onJobItemLogged(quint64 id, int number);
    void runStartupSelfTest(const QString &dir);
    bool takeKeySnapshotForRun();
    bool checkSaveLocationForRun() const;
    QByteArray currentKeyFingerprint() const;
    void revalidateRows(const QByteArray &keyFingerprint);
    void discardOutput(int row);
    QString keyArgumentPath() const;
    void onRowPreprocessingChanged(PreprocWidget *widget);
    bool collectPendingImages(const QStringList &paths, QProgressDialog *progress,
                              QList<PendingImage> *pending);
    void stopAdding();
    // The Auto-frame button says how far the face search is; the search keeps to the rows
    // still listed.
    void showFaceSearchProgress();
    void keepFaceSearchToRows();
    // The state of the first checked row, which a batch dialog starts from, and how many rows
    // are checked; with none checked, a box under title says so and nothing comes back.
    std::optional<PreprocState> firstCheckedState(const QString &title, int *count);
    bool acceptDecodedImage(const PendingImage &image, const DecodedPicture &picture, QSet<QString> *seen);
    void appendImageRows(const QList<QPair<PendingImage, DecodedPicture>> &images);
    // The rows from firstAdded on that repeat a picture listed before them, told in one box that
    // offers to remove the exact copies.
    void reportDuplicates(int firstAdded);
    Likeness rowLikeness(int row) const;
    void fillImageRow(int row, const QString &absolute, const QString &baseDir,
                      const DecodedPicture &picture);
    void fillImageRow(int row, const RowRecord &record);
    static bool isReservedVariant(const QString &id);
    void onPlaylistIntervalPartChanged();
    void swapRowContent(int a, int b);
    // The rows go with their temporary files (their outputs set aside by the engine).
    void removeRows(QList<int> rows);
    void setListEditingEnabled(bool enabled);
    int applyToRowWidgets(const QList<int> &rows, const QString &title, QString (*progressLabel)(int, int),
                          const std::function<void(PreprocWidget *)> &action);

    ProcessorConfig m_processorConfig;
    QString m_variantId;

    // Menu
    QMenu *m_fileMenu = nullptr;
    QAction *m_actionOpenList = nullptr;
    QAction *m_actionSaveList = nullptr;
    QAction *m_actionSaveListAs = nullptr;
    QMenu *m_recentListsMenu = nullptr;
    QString m_listPath; // the list last opened or saved, for Save List
    QMenu *m_helpMenu = nullptr;
    QAction *m_actionAbout = nullptr;
    QAction *m_actionViewLog = nullptr;
    QMenu *m_editMenu = nullptr;
    QAction *m_actionUndo = nullptr;
    QAction *m_actionRedo = nullptr;
    QUndoStack *m_undoStack = nullptr;
    TableRecord m_undoBase;   // the table as the last step left it
    int m_undoPaused = 0;     // while above 0, changes are parts of a larger one
    bool m_restoring = false; // rows being put back (undo, redo)
    QAction *m_actionReopenSession = nullptr;
    SessionSaver *m_sessionSaver = nullptr; // while this window keeps the session
    std::unique_ptr<QLockFile> m_sessionLock;
    QTimer *m_sessionTimer = nullptr;
    bool m_sessionFailed = false;
    QTimer *m_settingsTimer = nullptr;
    bool m_settingsFailureTold = false; // a failed settings write is told once
    QMenu *m_arrangeMenu = nullptr;
    QAction *m_actionSortByDateTaken = nullptr;
    QAction *m_actionSortByName = nullptr;
    QAction *m_actionSortByFileDate = nullptr;
    QAction *m_actionReverseOrder = nullptr;
    QAction *m_actionShuffle = nullptr;
    QAction *m_actionMoveRowsUp = nullptr;
    QAction *m_actionMoveRowsDown = nullptr;
    QAction *m_actionRemoveRows = nullptr;
    QAction *m_actionWarnDuplicates = nullptr;
    QMenu *m_viewMenu = nullptr;
    QAction *m_actionViewList = nullptr;
    QAction *m_actionViewGrid = nullptr;

    // Sections
    QLabel *m_introLabel = nullptr;
    QGroupBox *m_stepDevice = nullptr;
    QGroupBox *m_stepImages = nullptr;
    QGroupBox *m_stepPlayback = nullptr;
    QGridLayout *m_deviceGrid = nullptr;
    QGridLayout *m_playbackGrid = nullptr;

    // Step 1: device and processor
    QLabel *m_keyFileLabel = nullptr;
    QComboBox *m_keyHistoryCombo = nullptr;
    QPushButton *m_importKeyButton = nullptr;
    QLineEdit *m_keyFileEdit = nullptr;
    QComboBox *m_variantCombo = nullptr; // not built in this edition
    QLineEdit *m_exeEdit = nullptr;
    QLineEdit *m_workDirEdit = nullptr;
    QLineEdit *m_outputEdit = nullptr;
    QLineEdit *m_lutEdit = nullptr;
    QLabel *m_frameModelLabel = nullptr;
    QComboBox *m_panelTypeCombo = nullptr;
    QLabel *m_panelResolutionLabel = nullptr;
    QLabel *m_customSizeLabel = nullptr;
    QLineEdit *m_customSizeEdit = nullptr;
    QLabel *m_orientationLabel = nullptr;
    QComboBox *m_orientationCombo = nullptr;

    // Step 1: the internal edition's options (created hidden here)
    QComboBox *m_strategyCombo = nullptr;
    QComboBox *m_modeCombo = nullptr;
    QCheckBox *m_jpgOnlyCheck = nullptr;
    QCheckBox *m_disableAnalysisCheck = nullptr;
    QCheckBox *m_disableCropCheck = nullptr;
    QCheckBox *m_analysisOnlyCheck = nullptr;
    QLineEdit *m_analysisOutputEdit = nullptr;
    QPushButton *m_analysisOutputBrowse = nullptr;
    QComboBox *m_analysisFormatCombo = nullptr;

    // Step 2: images
    QPushButton *m_addImagesButton = nullptr;
    QPushButton *m_addFolderButton = nullptr;
    QPushButton *m_clearButton = nullptr;
    QPushButton *m_removeButton = nullptr;
    QLabel *m_countLabel = nullptr;
    QCheckBox *m_includeSubfoldersCheck = nullptr;
    QCheckBox *m_frameFacesCheck = nullptr; // faces are looked for, and framed, as pictures are added
    QCheckBox *m_selectAllCheck = nullptr;
    QLabel *m_batchLabel = nullptr;
    PreprocControlPanel *m_batchPanel = nullptr;
    QPushButton *m_batchToneButton = nullptr;
    QPushButton *m_batchCaptionButton = nullptr;
    QPushButton *m_batchAutoFrameButton = nullptr;
    ImageTableWidget *m_imageTable = nullptr;
    QStackedWidget *m_pictureViews = nullptr; // the table, or the grid's page
    QWidget *m_gridPage = nullptr;
    PictureGrid *m_pictureGrid = nullptr;
    QLabel *m_gridZoomLabel = nullptr;
    QSlider *m_gridZoom = nullptr;
    GridSync m_gridSync = GridSync::None;
    bool m_syncingGrid = false;

    // Step 3: playback file
    QCheckBox *m_playlistEnableCheck = nullptr;
    QLabel *m_intervalLabel = nullptr;
    QSpinBox *m_intervalDays = nullptr;
    QSpinBox *m_intervalHours = nullptr;
    QSpinBox *m_intervalMinutes = nullptr;
    QLabel *m_unitDays = nullptr;
    QLabel *m_unitHours = nullptr;
    QLabel *m_unitMinutes = nullptr;
    QCheckBox *m_loopCheck = nullptr;
    QLabel *m_processorsLabel = nullptr;
    QSpinBox *m_processorsSpin = nullptr;
    QLabel *m_saveLocationLabel = nullptr;
    QLineEdit *m_playlistDirEdit = nullptr;
    QPushButton *m_playlistDirBrowse = nullptr;
    QLabel *m_playlistHintLabel = nullptr;
    QProgressBar *m_progressBar = nullptr;
    QPushButton *m_openPlaylistButton = nullptr;
    QPushButton *m_copyToCardButton = nullptr;
    QPushButton *m_createPlaylistButton = nullptr;
    QPushButton *m_startButton = nullptr;
    QPushButton *m_stopButton = nullptr;

    // Log
    QDialog *m_logWindow = nullptr;
    QPlainTextEdit *m_logView = nullptr;

    // Run state
    PackageJob *m_job = nullptr; // the run engine: the rows' items, statuses and outputs
    bool m_processing = false;
    bool m_startupCheckDone = false;
    std::unique_ptr<ScratchFolders> m_scratch;
    PreviewRenderer *m_previewRenderer = nullptr; // the rows' framed thumbnails, on worker threads
    DecodeQueue *m_imageDecodes = nullptr;        // the decodes of an adding under way
    FaceSearch *m_faceSearch = nullptr;           // the faces Auto-frame looks for
    int m_faceSearchFramed = 0;                   // rows it framed so far
    ProcessorSelfTest *m_selfTest = nullptr;
    quint64 m_nextRowId = 1;
    std::optional<KeySnapshot> m_runKey; // the key of the last run, its frames and its package
    int m_packageFrames = 0;             // frames in the package the last export wrote
};
