// The processor's paths chosen by hand (the internal edition shows these choosers).
#include "app/MainWindow.h"

#include <QDir>
#include <QFileDialog>
#include <QLineEdit>

void MainWindow::onBrowseOutputDir()
{
    const QString folder = QFileDialog::getExistingDirectory(this, Str::selectOutputPath(),
                                                             m_outputEdit ? m_outputEdit->text() : QString());
    if (!folder.isEmpty() && m_outputEdit)
        m_outputEdit->setText(QDir::toNativeSeparators(folder));
}

void MainWindow::onBrowseLut()
{
    const QString file = QFileDialog::getOpenFileName(
        this, Str::selectLutFile(), m_lutEdit ? m_lutEdit->text() : QString(), Str::lutFileFilter());
    if (!file.isEmpty() && m_lutEdit)
        m_lutEdit->setText(QDir::toNativeSeparators(file));
}

void MainWindow::onBrowseAnalysisOutput()
{
    const QString file = QFileDialog::getSaveFileName(
        this, Str::selectAnalysisOutput(), m_analysisOutputEdit ? m_analysisOutputEdit->text() : QString(),
        Str::analysisFileFilter());
    if (!file.isEmpty() && m_analysisOutputEdit)
        m_analysisOutputEdit->setText(QDir::toNativeSeparators(file));
}
