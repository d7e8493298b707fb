#pragma once

#include "run/RowStatus.h"

#include <QString>
#include <QStringList>

#include <QtGlobal>

enum class FillMode : qint32;
enum class TonePreset : qint32;
enum class CaptionKind : qint32;
enum class CaptionCorner : qint32;
enum class CaptionStyle : qint32;

// The bilingual catalogue: one function per user-visible text. Each call builds its text
// in the language UiLanguage holds at that moment, so callers fetch texts where they use
// them and never keep one across a change of language.
namespace Str {

// Chinese when the language is not English, else English; literals are UTF-8.
QString pick(const char *zh, const char *en);
QString pickQ(const QString &zh, const QString &en);

// --- Application and menus ---
QString appDisplayName();
QString appVersionString();
QString windowTitle();
QString menuFile();
QString menuHelp();
QString menuLanguage();
QString actionOpenImages();
QString actionOpenFolder();
QString actionReloadConfig();
QString actionCreatePlaylist();
QString actionClearList();
QString actionQuit();
QString actionAbout();
QString actionViewLog();
QString actionLangChinese();
QString actionLangEnglish();
QString aboutTitle();
QString aboutHtml();
QString offlineGuideLinkHtml();

// --- Steps and groups ---
QString workflowIntro();
QString stepSelectDevice();
QString stepAddImages();
QString stepCreatePlayback();
QString logSection();
QString groupProcessingSettings();
QString groupDeviceSettings();
QString groupGlobalSettings();
QString groupPlaylist();

// --- Device and processor fields ---
QString browseButton();
QString keyFileLabel();
QString importKeyButton();
QString selectKeyFile();
QString keyFileComboText(const QString &panelCode, const QString &detail);
QString processorVariant();
QString processorVariantTip();
QString workDir();
QString executable();
QString outputPath();
QString lutFile();
QString panelType();
QString frameModel();
QString frameOrientation();
QString screenOrientation();
QString orientation();
QString customSize();
QString customSizePlaceholder();
QString portraitOrientation();
QString landscapeOrientation();
QString enhanceStrategy();
QString enhanceMode();
QString jpgOnly();
QString jpgOnlyTip();
QString disableAnalysis();
QString disableAnalysisTip();
QString disableCrop();
QString disableCropTip();
QString analysisOnly();
QString analysisOnlyTip();
QString analysisOutputFile();
QString formatLabel();
QString variantDefault();
QString panelResolutionUnset();
QString panelResolutionSize(int width, int height);
QString globalDefaultStrategy();
QStringList strategyDirect();
QStringList strategyWithGlobal();
QStringList modeList();

// --- Playlist settings ---
QString playlistAutoHint();
QString playlistEnable();
QString playlistEnableTip();
QString slideshowInterval();
QString spinMinutesSuffix();
QString slideshowIntervalTip();
QString intervalUnitDays();
QString intervalUnitHours();
QString intervalUnitMinutes();
QString loopPlayback();
QString loopPlaybackTip();
QString processorsAtOnce();
QString processorsAtOnceTip();
QString saveLocation();
QString playlistDirPlaceholderLite();
QString playlistDirPlaceholderInternal();
QString playlistHintLite();
QString playlistHintInternal();
QString openPlaylist();
QString openOutputDir();
QString createPlaylist();
QString createPlaylistTip();

// --- Image list ---
QString addImages();
QString addFolder();
QString clearList();
QString removeSelected();
QString includeSubfolders();
QString includeSubfoldersTip();
QString importImagesTitle();
QString selectAll();
QString selectAllTip();
QString batchLabel();
QString batchProcessingTitle();
QString batchRotateTitle();
QString frameSettingsProgressTitle();
QString dragReorderTip();
QString moveRowUpTip();
QString moveRowDownTip();
QString logPlaceholder();
QString startProcessing();
QString stopProcessing();
QString thumbOriginalTip();
QString thumbPreprocTip();
QString imageCount(int count);
QString importScanLabel(const QString &folder, int found);
QString importAddLabel(int done, int total);
QString batchApplyProgress(int done, int total);
QString frameSettingsProgress(int done, int total);
QString subdirTooltip(const QString &subfolder);
QStringList tableHeadersLite();
QStringList tableHeadersInternal();

// --- Dialog titles, choosers and filters ---
QString noticeTitle();
QString confirmTitle();
QString settingsErrorTitle();
QString selectProcessorExe();
QString selectWorkDir();
QString selectOutputPath();
QString selectLutFile();
QString selectAnalysisOutput();
QString selectPlaylistSaveDir();
QString selectImages();
QString selectImageFolder();
QString imageFileFilter();
QString exeFileFilter();
QString lutFileFilter();
QString analysisFileFilter();
QString allFilesFilter();

// --- Questions and refusals ---
QString confirmQuitWhileProcessing();
QString confirmReprocessAll();
QString addImagesFirst();
QString setAnalysisOutputFirst();
QString setPlaylistSaveLocation();
QString setOutputPathFirst();
QString lutNotFound(const QString &path);
QString stopBeforeClear();
QString stopBeforeRemove();
QString processingPlaylistBusy();
QString enablePlaylistFirst();
QString analysisOnlyNoPlaylist();
QString jpgOnlyNoBin();
QString noBinFiles();
QString selectImagesForBatch();
QString customPanelSizeInvalid();
QString customPanelNoPlaylist();
QString panelInfoInvalid();
QString heicLoadFailed(const QString &path);
// A picture whose colour profile cannot be used (damaged, or of a kind not converted).
QString colourProfileWarning(const QString &name, bool damaged);
QString playlistTooManyFrames(int limit);
QString importSkippedPlaylistLimit(int skipped, int limit);

// --- Run and log ---
QString logSeparator();
QString rowLogHeader(const QString &time, int rowNumber, int rowCount, const QString &name);
QString commandLineLog(const QString &program, const QStringList &args);
QString stdoutLogLine(const QString &line);
QString stderrLogLine(const QString &line);
QString progressFraction(int done, int total);
QString processingProgress(int done, int total);
QString allDone(int succeeded, int total);
QString startProcessing(int count);
QString startAnalysis(int count, const QString &analysisOutput);
QString startProcessingWithPlaylist(int count, const QString &playlistDir);
QString startProcessingWithOutput(int count, const QString &outputDir);
QString processFailed(int exitCode);
QString processCrashed(int exitCode);
QString processStartFailed(const QString &error);
QString processingStopped();
QString preprocFailedUseOriginal();
QString rowDone();
QString workDirLog(const QString &dir);
QString workDirMissing(const QString &dir);
QString configLoaded(const QString &path);
QString configLoadWarning(const QString &error);
QString configReloaded();
QString unknownPanelType(const QString &type);
QString exeNotFound(const QString &variantName, const QString &configName);
QString copyFailed(const QString &source, const QString &target);
QString processingInProgress();
QString processingCompleteTitle();
QString processingCompleteOkButton();
QString processingCompleteHtml();
QString playlistExportSkippedJpgOnly();

// --- Playlist results ---
QString missingBinList(const QString &names);
QString missingBinCount(int count, const QString &names);
QString playlistCreateFailed(const QString &error);
QString playlistCreateFailedTitle();
QString playlistPartialMissing(const QString &message);
QString playlistPartialMissingTitle();
QString playlistSaveLocationMissing();
QString playlistSaveLocationNotSet();
QString dirNotExistPlaylist();
QString dirNotExistOutput();
QString playlistDirExists(const QString &path);
QString playlistDirExistsTitle();
QString playlistCreated(const QString &folder, int frames, int intervalMinutes);
QString playlistCreatedTitle();
QString playlistCreatedLog(const QString &folder, int frames, int intervalMinutes);
QString playlistCannotCreateTitle();
QString writePlaylistFailed(const QString &path);
QString playlistExportFailed(const QString &error);

// --- Processor check ---
QString processorStartupCheckTitle();
QString processorStartupCheckFailed(const QString &executable, const QString &workDir,
                                    const QString &errorLine);
QString processorStartupCheckMissingWorkDir(const QString &dir);
QString processorDirIncomplete(const QString &missing, const QString &dir);
QString processorSelfTestStartFailed(const QString &error);
QString processorSelfTestTimedOut();
QString processorSelfTestCrashed(int exitCode);
QString processorSelfTestAbnormalExit(int exitCode);

// --- Messages of the configuration reader and the package writer ---
QString configFileNotFound(const QString &fileName);
QString configFileUnreadable(const QString &path);
QString configJsonParseFailed(const QString &error);
QString configMissingVariants();
QString configVariantMissingExecutable(const QString &id);
QString playlistFrameCountMismatch();
QString playlistNeedsFrame();
QString playlistIntervalTooShort();
QString playlistIntervalTooLong();
QString playlistOutputDirMissing();
QString playlistCannotCreateDir(const QString &path);
QString playlistBinMissing(const QString &path);
QString playlistCannotOpenJson(const QString &path);

// --- Package integrity: the key snapshot, the save location, the package swap ---
QString keyFileProblemTitle();
QString keyFileUnreadable(const QString &path, const QString &reason);
QString keyFileNotAKey(const QString &path, const QString &reason);
QString keyFilePanelMismatch(const QString &path, const QString &keyType, const QString &chosenType);
// A run's item that could not get its copy of the key.
QString keyCopyFailed(const QString &folder, const QString &reason);
// The save location has no room for the new package beside the old one.
QString packageNeedsRoom(const QString &location, const QString &needed, const QString &free);
QString saveLocationNotWritable(const QString &path, const QString &reason);
QString packageNotAFolder(const QString &path);
QString packageHoldsForeignFiles(const QString &path, const QStringList &names);
QString packageCannotReplace(const QString &path, const QString &reason);
QString packageLeftUnchanged(const QString &path);
QString packageNothingWritten();
QString withReason(const QString &message, const QString &reason);
QString packageSummary(int frames, int rows, int failed);
QString processingCompleteSummaryHtml(int frames, int rows, int failed);
QString rowStoppedPending();
QString rowChangedWhileProcessing();

// --- Preprocessing and editor ---
QString fillModeLabel(FillMode mode);
QString fillModeButtonText(FillMode mode);
QString fillModeToolTip(FillMode mode);
QString formatPreprocStateLabel(FillMode mode, int rotationDegrees);
QString fillCropCaption();
QString fillCropCaptionInline();
QString rotateCaption();
QString rotateCaptionInline();
QString rotateLeft();
QString rotateRight();
QString rotateLeftTip();
QString rotateRightTip();
QString rotationCurrent(int degrees);
QString batchRotateLeft();
QString batchRotateRight();
QString batchFillApplied(const QString &modeLabel, int count);
QString batchRotateApplied(const QString &direction, int count);
QString clickPreviewTip();
QString preprocPreviewTip();
QString previewDialogTitle();
QString previewDialogHint();
QString previewCannotLoad();
QString previewLandscapeFrameHint();
QString previewInfo(const QString &stateLabel, const QString &resolution, const QString &suffix);
QString previewInfoLine(const QString &stateLabel, const QString &resolution, bool landscape);
QString cancel();
QString confirm();
// Framing a picture in the preview dialog, the e-paper look and the low-resolution warning.
QString zoomSuffix(int percent);
QString zoomCaption();
QString zoomPercent(int percent);
QString resetFraming();
QString resetFramingTip();
QString framingTip();
QString showAsEpaper();
QString epaperNote();
QString lowResolutionWarning(const QString &pictureSize, double enlargement);
// The tone of a picture, and the e-paper view at actual pixels.
QString tonePresetName(TonePreset preset);
QString tonePresetTip(TonePreset preset);
QString toneExposurePart(double ev);
QString toneContrastPart(int percent);
QString toneSaturationPart(int percent);
QString listSeparator();
QString toneAdjustedName(const QString &preset);
QString toneSuffix(const QString &name);
QString toneMarkTip(const QString &description);
QString toneCaption();
QString exposureCaption();
QString contrastCaption();
QString saturationCaption();
QString exposureValue(double ev);
QString contrastValue(int percent);
QString saturationValue(int percent);
QString exposureTip();
QString contrastTip();
QString saturationTip();
QString resetTone();
QString resetToneTip();
QString toneBefore();
QString toneBeforeTip();
QString batchToneButton();
QString batchToneTip();
QString batchToneTitle();
QString batchToneHint(int count);
QString batchToneApplied(const QString &tone, int count);
QString actualPixels();
QString actualPixelsTip();
QString showAsEpaperTip();
QString previewRendering();

// --- Faces: the mark of a crop that cuts one, framing new pictures around them ---
QString faceCutTip(int faces);
QString frameFacesSetting();
QString frameFacesSettingTip();
QString frameFacesButton();
QString frameFacesButtonTip();
QString showFaces();
QString showFacesTip();
QString facesSearching();
QString facesFound(int faces);
QString facesNoneFound();
QString facesUnavailable();
QString batchAutoFrameButton();
QString batchAutoFrameTip();
QString batchAutoFrameSearching(int done, int total);
QString batchAutoFrameApplied(int count);
QString packOptionAutoFrame();

// --- Captions ---
QString captionKindName(CaptionKind kind);
QString captionCornerName(CaptionCorner corner);
QString captionStyleName(CaptionStyle style);
QString captionDescription(const QString &kind, const QString &corner);
QString captionLabel();
QString captionTextPlaceholder();
QString captionTip();
QString captionNoDateTip();
QString captionMarkTip(const QString &description, const QString &text);
QString batchCaptionButton();
QString batchCaptionTip();
QString batchCaptionTitle();
QString batchCaptionHint(int count);
QString batchCaptionApplied(const QString &caption, int count);
QString listBadCaption(int number, const QString &what);
QString captionUnknownValue(const QString &field, const QString &value);
QString packOptionCaption();
QString packBadCaption(const QString &caption);
QString cropDialogTitle();
QString cropDialogIntro();
QString cropLandscapeMode();
QString cropFillMode();
QString cropStandard();
QString cropBlurFlex();
QString cropReset();
QString cropConfirm();
QString cropCannotLoad();
QString cropMoveBoxToImage();
QString cropDragPanHint();
QString cropBlurWheelHint();
QString cropLandscapeHint();
QString cropPortraitHint();

// --- Picture lists: the File menu, reading and writing a list ---
QString actionOpenList();
QString actionSaveList();
QString actionSaveListAs();
QString menuRecentLists();
QString recentListsEmpty();
QString clearRecentLists();
QString openListTitle();
QString saveListTitle();
QString listFileFilter();
QString listNotJson(const QString &reason, int offset);
QString listNotAList();
QString listWrongVersion(const QString &found, int oldest, int newest);
QString listBadSettings();
QString listBadPicture(int number);
QString listBadTone(int number, const QString &what);
QString toneUnknownPreset(const QString &key);
QString toneOutOfRange(const QString &field, const QString &value, double low, double high);
QString listTooLarge();
QString listCannotRead(const QString &path, const QString &reason);
QString listCannotWrite(const QString &path, const QString &reason);
QString listReplaceQuestion(int rows);
QString listMissingPictures(int count, const QString &names);
QString andMore(int count);
QString listBusy();
QString listSavedLog(const QString &path, int pictures);
QString listOpenedLog(const QString &path, int pictures);

// --- Copying the package onto a TF card ---
QString copyToCardButton();
QString copyToCardMainButton();
QString copyToCardTip();
QString copyToCardTitle();
QString copyToCardIntro(const QString &packageDir, int files, const QString &size);
QString refreshCards();
QString close();
QString noCardFound();
QString cardVolumeItem(const QString &name, const QString &root, const QString &fileSystem,
                       const QString &free, bool fits);
QString cardFileSystemWarning(const QString &fileSystem);
// A card whose file system could not be read (a FUSE mount of an unreadable device).
QString cardFileSystemUnknown(const QString &mountType);
QString cardReplaceQuestion(const QString &target);
QString cardCopying();
QString cardVerifying();
QString cardCopyDone(int files, const QString &size, const QString &target);
// What an interrupted package write or card copy left, found and put right before the next.
// What a failed, cancelled or interrupted copy left on the card: nothing (its removal checked),
// or its hidden folder.
QString cardNothingLeft();
QString cardCopyLeftBehind(const QString &folder);
// Put before the reason of a copy that failed because the card no longer answers.
QString cardGone(const QString &root);
QString leftoverOldRestored(const QString &old, const QString &target);
QString leftoverOldNotRestored(const QString &old);
QString leftoverOldRemoved(const QString &old);
QString leftoverPartialRemoved(const QString &partial);
QString leftoverNotRemoved(const QString &folder);
QString cardCopyCancelled();
QString cardCannotWrite(const QString &root);
QString cardCopyFileFailed(const QString &name, const QString &reason);
QString cardVerifyFailed(const QString &name);
QString cardCannotReplace(const QString &target);
QString noPackageToCopy();
QString cardBusy();

// --- velora-pack: the command-line packager ---
QString launchDescription();
QString launchPositional();
QString userGuideLinkText();
QString packDescription();
QString packPositional();
QString packOptionOut();
QString packOptionKey();
QString packOptionPanel();
QString packOptionLandscape();
QString packOptionFill();
QString packOptionInterval();
QString packOptionNoLoop();
QString packOptionList();
QString packOptionVerbose();
QString packOptionHelp();
QString packOptionVersion();
QString packExitCodes();
QString packSeeHelp();
QString packPictureMissing(const QString &path);
QString packBadPanel(const QString &panel);
QString packBadFill(const QString &fill);
QString packOptionTone();
QString packBadTone(const QString &tone);
QString packBadInterval(const QString &value);
QString packOptionJobs();
QString packBadJobs(const QString &value, int most);
QString packNoOutput();
QString packNoPictures();
QString packProgressLine(int number, int total, const QString &path, const QString &status);
// velora-pack's summary when no picture was made, and what to do next.
QString packNothingMade(int total);
QString packNothingMadeHint();

// --- Row status ---
using RowStatus = ::RowStatus;
QString rowStatusText(RowStatus status, int exitCode = 0);

// --- Arranging the table: moving, sorting, undo ---
QString menuArrange();
QString menuView();
QString actionViewList();
QString actionViewGrid();
QString gridTileSize();
QString gridTileSizeTip();
QString actionSortByDateTaken();
QString actionSortByName();
QString actionSortByFileDate();
QString actionReverseOrder();
QString actionShuffle();
QString actionMoveRowsUp();
QString actionMoveRowsDown();
QString actionRemoveRows();
QString menuEdit();
// "Undo" / "Undo <what>" (what: empty for none).
QString actionUndo(const QString &what);
QString actionRedo(const QString &what);
QString undoAddPictures();
QString undoRemovePictures();
QString undoClearAll();
QString undoMovePictures();
QString undoChangePicture();
QString undoAutoFrame();
QString undoOpenList();
QString actionWarnDuplicates();
QString duplicatesTitle();
// exact: exact copies, near: near ones; list: a line for each (duplicateExactLine/NearLine).
QString duplicatesFound(int exact, int near, const QString &list);
QString duplicateExactLine(const QString &name, const QString &original);
QString duplicateNearLine(const QString &name, const QString &original);
QString skipExactCopies();
QString keepAll();
QString exactCopiesSkipped(int count);

// --- The session ---
QString actionReopenSession();
QString sessionTitle();
QString sessionRestoreQuestion(int pictures);
// aside: where the file was set aside (empty: it could not be).
QString sessionUnreadable(const QString &reason, const QString &aside);
QString sessionRestoredLog(int pictures);
QString sessionSaveFailed(const QString &reason);
// The settings file could not be written (told once).
QString settingsNotSaved(const QString &file);

} // namespace Str
