// The window's widgets and menus.
#include "app/MainWindow.h"

#include "ui/AppBranding.h"
#include "ui/AppStrings.h"
#include "ui/AppTheme.h"

#include <QDialog>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QVBoxLayout>

namespace {
constexpr int kLogLineLimit = 3000;
}

void MainWindow::setupMenuBar()
{
    m_helpMenu = menuBar()->addMenu(QString());
    m_actionAbout = m_helpMenu->addAction(QString());
    m_helpMenu->addSeparator();
    m_actionViewLog = m_helpMenu->addAction(QString());

    connect(m_actionAbout, &QAction::triggered, this, &MainWindow::showAboutBox);
    connect(m_actionViewLog, &QAction::triggered, this, &MainWindow::onShowLog);
}

void MainWindow::setupUI()
{
    setWindowTitle(Str::windowTitle());
    setMinimumSize(720, 620);
    resize(860, 720);
    setAcceptDrops(true);
    AppBranding::applyWindowIcon(this);

    auto *central = new QWidget(this);
    auto *layout = new QVBoxLayout(central);
    layout->setSpacing(6);
    layout->setContentsMargins(8, 6, 8, 8);

    m_introLabel = new QLabel(Str::workflowIntro(), central);
    m_introLabel->setWordWrap(true);
    m_introLabel->setStyleSheet(AppTheme::mutedLabelStyleSheet("font-size:12px; padding:2px 0 8px 0;"));
    layout->addWidget(m_introLabel);
    layout->addStretch(1);
    setCentralWidget(central);

    setupLogWindow();
}

void MainWindow::setupLogWindow()
{
    m_logWindow = new QDialog(this);
    m_logWindow->setWindowTitle(Str::logSection());
    AppBranding::applyWindowIcon(m_logWindow);
    m_logWindow->resize(760, 480);

    auto *layout = new QVBoxLayout(m_logWindow);
    AppBranding::insertDialogHeader(layout, Str::logSection());

    m_logView = new QPlainTextEdit(m_logWindow);
    m_logView->setReadOnly(true);
    m_logView->setMaximumBlockCount(kLogLineLimit);
    m_logView->setPlaceholderText(Str::logPlaceholder());
    m_logView->setFont(QFont(QStringLiteral("Microsoft YaHei"), 9));
    layout->addWidget(m_logView, 1);
}

void MainWindow::showAboutBox()
{
    QMessageBox box(this);
    AppBranding::applyWindowIcon(&box);
    box.setWindowTitle(Str::aboutTitle());
    box.setIcon(QMessageBox::Information);
    box.setTextFormat(Qt::RichText);
    box.setText(Str::aboutHtml());
    box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::LinksAccessibleByMouse |
                                Qt::LinksAccessibleByKeyboard);
    box.setStandardButtons(QMessageBox::Ok);
    box.exec();
}
