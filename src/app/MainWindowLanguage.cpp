// The re-labelling pass: every text of the window set again from the catalogue.
#include "app/MainWindow.h"

#include "ui/AppBranding.h"
#include "ui/AppStrings.h"

#include <QAction>
#include <QDialog>
#include <QLabel>
#include <QMenu>
#include <QPlainTextEdit>

void MainWindow::retranslateUi()
{
    setWindowTitle(Str::windowTitle());

    if (m_helpMenu)
        m_helpMenu->setTitle(Str::menuHelp());
    if (m_actionViewLog)
        m_actionViewLog->setText(Str::actionViewLog());
    if (m_actionAbout)
        m_actionAbout->setText(Str::actionAbout());

    if (m_introLabel)
        m_introLabel->setText(Str::workflowIntro());
    if (m_logWindow) {
        m_logWindow->setWindowTitle(Str::logSection());
        AppBranding::updateHeaderTitle(m_logWindow, Str::logSection());
    }
    if (m_logView)
        m_logView->setPlaceholderText(Str::logPlaceholder());
}
