// Construction, events and the log.
#include "app/MainWindow.h"

#include "app/SettingsLocation.h"
#include "images/DecodeQueue.h"
#include "images/FaceSearch.h"
#include "images/ImageLoader.h"
#include "images/ImageTableWidget.h"
#include "preprocess/Caption.h"
#include "preprocess/PreviewRenderer.h"
#include "run/ScratchFolders.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QDialog>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QItemSelectionModel>
#include <QLockFile>
#include <QMessageBox>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QUndoStack>
#include <QUrl>

const QString MainWindow::kTempPreprocDir = QStringLiteral("/tarngui_preproc");

std::unique_ptr<QSettings> appSettings()
{
    return std::make_unique<QSettings>(SettingsLocation::path(), QSettings::IniFormat);
}

MainWindow::MainWindow(QWidget *parent)
    : QMainWindow(parent)
    , m_scratch(std::make_unique<ScratchFolders>())
    , m_previewRenderer(new PreviewRenderer(this))
{
    m_job = new PackageJob(m_scratch->stagingDir(), m_scratch->renderDir(), m_scratch->keyDir(), this);
    connect(m_job, &PackageJob::statusChanged, this, &MainWindow::onJobStatusChanged);
    connect(m_job, &PackageJob::logLine, this, &MainWindow::appendLog);
    connect(m_job, &PackageJob::itemLogged, this, &MainWindow::onJobItemLogged);
    connect(m_job, &PackageJob::runFinished, this, &MainWindow::finishRun);
    ImageLoader::pruneHeicCache(ImageLoader::kHeicCacheLimitBytes);
    (void)Caption::font(Caption::kMinPixels); // the caption font is loaded here, before a worker draws
    setupUI();
    setupMenuBar(); // after the table, whose selection some of its actions work on
    loadProcessorConfig();
    loadSettings();
    watchSettings(); // after loading: what was read is not written back at once
    retranslateUi();
}

MainWindow::~MainWindow()
{
    if (m_undoStack)
        m_undoStack->disconnect(this); // it goes after the menus' actions
    // The table's rows go with it; the grid's sync has nothing to do with them any more.
    m_imageTable->disconnect(this);
    m_imageTable->model()->disconnect(this);
    m_imageTable->selectionModel()->disconnect(this);
    endSession();
    saveSettings();
    // An adding under way stops; it returns as soon as its event loop does.
    stopAdding();
    if (m_faceSearch)
        m_faceSearch->cancel(); // its decodes under way end with it, a child of this window
    // The processors still running are killed; their ends no longer reach the run, which is
    // over. Renders under way end (and their files go) before the scratch folders do.
    m_processing = false;
    m_job->disconnect(this);
    delete m_job;
    m_job = nullptr;
}

void MainWindow::setUiLanguage(UiLanguage::Lang /*lang*/) {}

void MainWindow::showEvent(QShowEvent *event)
{
    QMainWindow::showEvent(event);
    if (!m_startupCheckDone) {
        m_startupCheckDone = true;
        checkProcessorAtStartup(); // its self-test runs in the background
    }
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (m_processing) {
        const auto answer =
            QMessageBox::question(this, Str::confirmTitle(), Str::confirmQuitWhileProcessing(),
                                  QMessageBox::Yes | QMessageBox::No, QMessageBox::NoButton);
        if (answer != QMessageBox::Yes) {
            event->ignore();
            return;
        }
        onStopProcess();
    }
    event->accept();
}

void MainWindow::dragEnterEvent(QDragEnterEvent *event)
{
    if (event->mimeData() && event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent *event)
{
    if (!event->mimeData())
        return;
    QStringList paths;
    for (const QUrl &url : event->mimeData()->urls())
        paths << url.toLocalFile(); // a URL that is not a local file gives an empty path, ignored later
    addImageFiles(paths);
}

void MainWindow::onShowLog()
{
    if (!m_logWindow)
        return;
    m_logWindow->show();
    m_logWindow->raise();
    m_logWindow->activateWindow();
}

void MainWindow::appendLog(const QString &text)
{
    if (!m_logView)
        return;
    m_logView->appendPlainText(text);
    QScrollBar *bar = m_logView->verticalScrollBar();
    bar->setValue(bar->maximum());
}
