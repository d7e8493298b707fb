// The processing run: the processor over the pending rows, one after another.
#include "app/MainWindow.h"

#include <QPushButton>

void MainWindow::setListEditingEnabled(bool enabled)
{
    for (QPushButton *button : {m_addImagesButton, m_addFolderButton, m_removeButton, m_clearButton}) {
        if (button)
            button->setEnabled(enabled);
    }
}

void MainWindow::onStartProcess()
{
    // The run comes with the processor command line and the package.
}

void MainWindow::onStopProcess()
{
    if (!m_processing)
        return;
    m_processing = false;
    if (m_process && m_process->state() != QProcess::NotRunning)
        m_process->kill();
    if (m_startButton)
        m_startButton->setEnabled(true);
    if (m_stopButton)
        m_stopButton->setEnabled(false);
    setListEditingEnabled(true);
}

void MainWindow::onProcessFinished(int /*exitCode*/, QProcess::ExitStatus /*status*/) {}

void MainWindow::onProcessReadyReadStdOut() {}

void MainWindow::onProcessReadyReadStdErr() {}
