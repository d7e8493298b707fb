// Construction, events and the log.
#include "app/MainWindow.h"

#include "app/SettingsLocation.h"
#include "images/DecodeQueue.h"
#include "images/FaceSearch.h"
#include "images/ImageLoader.h"
#include "preprocess/Caption.h"
#include "preprocess/PreviewRenderer.h"
#include "run/RenderAheadQueue.h"
#include "run/ScratchFolders.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QDialog>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMessageBox>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QScrollBar>
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
    , m_renderAhead(new RenderAheadQueue(m_scratch->renderDir(), this))
{
    connect(m_renderAhead, &RenderAheadQueue::ready, this, &MainWindow::onRenderReady);
    ImageLoader::pruneHeicCache(ImageLoader::kHeicCacheLimitBytes);
    (void)Caption::font(Caption::kMinPixels); // the caption font is loaded here, before a worker draws
    setupMenuBar();
    setupUI();
    loadProcessorConfig();
    loadSettings();
    retranslateUi();
}

MainWindow::~MainWindow()
{
    saveSettings();
    // An adding under way stops; it returns as soon as its event loop does.
    stopAdding();
    if (m_faceSearch)
        m_faceSearch->cancel(); // its decodes under way end with it, a child of this window
    // A processor still running is killed; its end no longer reaches the run, which is over.
    // Then this window's scratch folders go (ScratchFolders).
    m_processing = false;
    if (m_process && m_process->state() != QProcess::NotRunning) {
        m_process->disconnect(this);
        m_process->kill();
        m_process->waitForFinished(2000);
    }
    // Renders under way end (and their files go) before the scratch folders do.
    delete m_renderAhead;
    m_renderAhead = nullptr;
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
