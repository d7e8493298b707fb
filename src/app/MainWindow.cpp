// Construction, events and the log.
#include "app/MainWindow.h"

#include <QDialog>
#include <QPlainTextEdit>
#include <QScrollBar>

MainWindow::MainWindow(QWidget *parent)
    : QMainWindow(parent)
{
    setupMenuBar();
    setupUI();
    loadProcessorConfig();
    retranslateUi();
}

MainWindow::~MainWindow() = default;

void MainWindow::setUiLanguage(UiLanguage::Lang /*lang*/) {}

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
