// Picture lists: the table and its package settings saved to a file and opened again, from
// the File menu with its recent lists.
#include "app/MainWindow.h"

#include "app/PictureList.h"
#include "images/ImageTableWidget.h"
#include "preprocess/PreprocWidget.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHash>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPointer>
#include <QScopeGuard>
#include <QSignalBlocker>

namespace {

const QString kRecentListsKey = QStringLiteral("recent_lists");
constexpr int kRecentListLimit = 8;
constexpr int kMissingNamesShown = 20;

QString listKey(const QString &path)
{
    return QDir::fromNativeSeparators(QFileInfo(path).absoluteFilePath());
}

} // namespace

void MainWindow::setupFileMenu()
{
    // Texts come from retranslateUi.
    m_fileMenu = menuBar()->addMenu(QString());
    m_actionOpenList = m_fileMenu->addAction(QString());
    m_actionSaveList = m_fileMenu->addAction(QString());
    m_actionSaveListAs = m_fileMenu->addAction(QString());
    m_fileMenu->addSeparator();
    m_recentListsMenu = m_fileMenu->addMenu(QString());
    m_actionOpenList->setShortcut(QKeySequence::Open);
    m_actionSaveList->setShortcut(QKeySequence::Save);
    m_actionSaveListAs->setShortcut(QKeySequence::SaveAs);

    connect(m_actionOpenList, &QAction::triggered, this, &MainWindow::onOpenList);
    connect(m_actionSaveList, &QAction::triggered, this, &MainWindow::onSaveList);
    connect(m_actionSaveListAs, &QAction::triggered, this, &MainWindow::onSaveListAs);
    // Rebuilt whenever it opens (and when the language changes): never from one of its own
    // actions, which a rebuild would delete while they run.
    connect(m_recentListsMenu, &QMenu::aboutToShow, this, &MainWindow::rebuildRecentListsMenu);
    m_fileMenu->addSeparator();
    setupSessionAction();
}

QStringList MainWindow::recentLists() const { return appSettings()->value(kRecentListsKey).toStringList(); }

void MainWindow::rememberRecentList(const QString &path, bool keep)
{
    QStringList lists = recentLists();
    lists.removeAll(listKey(path));
    if (keep)
        lists.prepend(listKey(path));
    appSettings()->setValue(kRecentListsKey, lists.mid(0, kRecentListLimit));
}

void MainWindow::rebuildRecentListsMenu()
{
    if (!m_recentListsMenu)
        return;
    m_recentListsMenu->clear();
    const QStringList lists = recentLists();
    for (int i = 0; i < lists.size(); ++i) {
        const QString path = lists.at(i);
        QAction *action = m_recentListsMenu->addAction(
            QStringLiteral("&%1  %2").arg(i + 1).arg(QFileInfo(path).fileName()));
        action->setToolTip(QDir::toNativeSeparators(path));
        action->setData(path);
        connect(action, &QAction::triggered, this, [this, path] { openPictureList(path); });
    }
    if (lists.isEmpty()) {
        m_recentListsMenu->addAction(Str::recentListsEmpty())->setEnabled(false);
        return;
    }
    m_recentListsMenu->addSeparator();
    connect(m_recentListsMenu->addAction(Str::clearRecentLists()), &QAction::triggered, this,
            [] { appSettings()->remove(kRecentListsKey); });
}

PictureList MainWindow::currentPictureList() const
{
    PictureList list;
    for (int row = 0; row < m_imageTable->rowCount(); ++row) {
        const QTableWidgetItem *file = m_imageTable->item(row, FileColumn);
        const PreprocWidget *widget = preprocWidgetAt(row);
        if (!file)
            continue;
        PictureList::Picture picture;
        picture.path = QDir::fromNativeSeparators(file->data(kSourcePathRole).toString());
        if (widget)
            picture.state = widget->state();
        list.pictures << picture;
    }
    list.keyFile = currentKeyFilePath();
    list.panelType = m_panelTypeCombo ? m_panelTypeCombo->currentText().trimmed() : QString();
    list.landscape = isLandscapeOrientation();
    list.intervalMinutes = playlistIntervalMinutes();
    list.loop = m_loopCheck && m_loopCheck->isChecked();
    list.saveLocation = QDir::fromNativeSeparators(playlistParentDir());
    return list;
}

bool MainWindow::savePictureList(const QString &path)
{
    if (m_processing) {
        QMessageBox::warning(this, Str::noticeTitle(), Str::listBusy());
        return false;
    }
    QString error;
    if (!currentPictureList().save(path, &error)) {
        QMessageBox::critical(this, Str::saveListTitle(), error);
        return false;
    }
    m_listPath = listKey(path);
    rememberRecentList(path, true);
    appendLog(Str::listSavedLog(QDir::toNativeSeparators(m_listPath), m_imageTable->rowCount()));
    return true;
}

void MainWindow::applyListSettings(const PictureList &list)
{
    if (!list.keyFile.isEmpty() && QFileInfo::exists(list.keyFile)) {
        addKeyFileToHistory(list.keyFile);
        applyPubkeyFile(list.keyFile);
        refreshSavedKeyCombo();
    } else {
        if (m_keyFileEdit)
            m_keyFileEdit->clear();
        setLitePanelType(list.panelType);
    }
    if (m_orientationCombo)
        m_orientationCombo->setCurrentIndex(qMax(
            0, m_orientationCombo->findData(list.landscape ? QStringLiteral("90") : QStringLiteral("0"))));
    updatePanelResolutionLabel();
    updatePreprocPanelSettings();
    setPlaylistIntervalMinutes(list.intervalMinutes);
    if (m_loopCheck)
        m_loopCheck->setChecked(list.loop);
    if (m_playlistDirEdit)
        m_playlistDirEdit->setText(QDir::toNativeSeparators(list.saveLocation));
}

bool MainWindow::fillTableFromList(const PictureList &list, QStringList *missing)
{
    // A part of a larger step (and the window may go while the pictures come).
    const QPointer<MainWindow> alive(this);
    ++m_undoPaused;
    const auto resume = qScopeGuard([alive] {
        if (alive)
            --alive->m_undoPaused;
    });
    onClearAll();
    applyListSettings(list);
    QStringList existing;
    QHash<QString, PreprocState> states;
    for (const PictureList::Picture &picture : list.pictures) {
        if (QFileInfo(picture.path).isFile()) {
            existing << picture.path;
            states.insert(listKey(picture.path), picture.state);
        } else {
            missing->append(QDir::toNativeSeparators(picture.path));
        }
    }
    if (!list.keyFile.isEmpty() && !QFileInfo::exists(list.keyFile))
        missing->prepend(QDir::toNativeSeparators(list.keyFile));

    addImageFiles(existing); // the pictures come in as any adding brings them
    if (!alive)
        return false;
    for (int row = 0; row < m_imageTable->rowCount(); ++row) {
        const QTableWidgetItem *file = m_imageTable->item(row, FileColumn);
        PreprocWidget *widget = preprocWidgetAt(row);
        const auto state =
            file ? states.constFind(listKey(file->data(kSourcePathRole).toString())) : states.constEnd();
        if (widget && state != states.constEnd())
            widget->applyState(*state);
    }
    return true;
}

void MainWindow::showMissingPictures(const QString &title, const QStringList &missing)
{
    if (missing.isEmpty())
        return;
    QStringList shown = missing.mid(0, kMissingNamesShown);
    if (missing.size() > kMissingNamesShown)
        shown << Str::andMore(int(missing.size()) - kMissingNamesShown);
    QMessageBox::warning(this, title,
                         Str::listMissingPictures(int(missing.size()), shown.join(QLatin1Char('\n'))));
}

bool MainWindow::openPictureList(const QString &path)
{
    if (m_processing) {
        QMessageBox::warning(this, Str::noticeTitle(), Str::listBusy());
        return false;
    }
    QString error;
    const std::optional<PictureList> list = PictureList::load(path, &error);
    if (!list) {
        QMessageBox::warning(this, Str::openListTitle(), error);
        if (!QFileInfo::exists(path))
            rememberRecentList(path, false);
        return false;
    }
    if (m_imageTable->rowCount() > 0 &&
        QMessageBox::question(this, Str::openListTitle(), Str::listReplaceQuestion(m_imageTable->rowCount()),
                              QMessageBox::Yes | QMessageBox::No, QMessageBox::No) != QMessageBox::Yes)
        return false;

    QStringList missing;
    if (!fillTableFromList(*list, &missing))
        return false; // the window went meanwhile
    m_listPath = listKey(path);
    rememberRecentList(path, true);
    recordTableChange(Str::undoOpenList());
    appendLog(Str::listOpenedLog(QDir::toNativeSeparators(m_listPath), m_imageTable->rowCount()));
    showMissingPictures(Str::openListTitle(), missing);
    return true;
}

void MainWindow::onOpenList()
{
    if (m_processing) {
        QMessageBox::warning(this, Str::noticeTitle(), Str::listBusy());
        return;
    }
    const QString path = QFileDialog::getOpenFileName(
        this, Str::openListTitle(), QFileInfo(m_listPath).absolutePath(), Str::listFileFilter());
    if (!path.isEmpty())
        openPictureList(path);
}

void MainWindow::onSaveList()
{
    if (m_listPath.isEmpty())
        onSaveListAs();
    else
        savePictureList(m_listPath);
}

void MainWindow::onSaveListAs()
{
    if (m_processing) {
        QMessageBox::warning(this, Str::noticeTitle(), Str::listBusy());
        return;
    }
    QString path = QFileDialog::getSaveFileName(this, Str::saveListTitle(),
                                                m_listPath.isEmpty() ? QDir::homePath() : m_listPath,
                                                Str::listFileFilter());
    if (path.isEmpty())
        return;
    if (QFileInfo(path).suffix().isEmpty())
        path += QStringLiteral(".") + PictureList::fileSuffix();
    savePictureList(path);
}
