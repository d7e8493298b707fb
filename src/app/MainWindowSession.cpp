// The session: the table saved in the list format to the user's configuration folder shortly
// after each change, in the background (SessionSaver), and opened again at the next start: at
// once after a normal close (unless the user said not to), after a crash or a kill only when
// the user says so. A lock file held while a window keeps the session tells the two apart; a
// second window of the program, finding the session held, keeps none.
#include "app/MainWindow.h"

#include "app/PictureList.h"
#include "app/SessionSaver.h"
#include "images/ImageTableWidget.h"

#include <QAction>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QMenu>
#include <QMessageBox>
#include <QPointer>
#include <QStandardPaths>
#include <QTimer>

namespace {

const QString kReopenSessionKey = QStringLiteral("reopen_session");
constexpr int kSessionSaveDelayMs = 800;

} // namespace

QString MainWindow::sessionFolder()
{
    return QDir(QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation))
        .filePath(QStringLiteral("session"));
}

QString MainWindow::sessionFile() { return QDir(sessionFolder()).filePath(QStringLiteral("session.json")); }

void MainWindow::setupSessionAction()
{
    // Text from retranslateUi.
    m_actionReopenSession = m_fileMenu->addAction(QString());
    m_actionReopenSession->setCheckable(true);
    m_actionReopenSession->setChecked(appSettings()->value(kReopenSessionKey, true).toBool());
    connect(m_actionReopenSession, &QAction::toggled, this,
            [](bool on) { appSettings()->setValue(kReopenSessionKey, on); });
}

void MainWindow::startSession()
{
    if (m_sessionSaver)
        return;
    QDir().mkpath(sessionFolder());
    const QString lockPath = QDir(sessionFolder()).filePath(QStringLiteral("session.lock"));
    // A lock file left behind is a session that did not end normally (its process is gone,
    // so the lock is taken over).
    const bool endedAbnormally = QFileInfo::exists(lockPath);
    auto lock = std::make_unique<QLockFile>(lockPath);
    if (!lock->tryLock(0))
        return; // another window keeps the session
    m_sessionLock = std::move(lock);

    const QPointer<MainWindow> alive(this);
    if (QFileInfo::exists(sessionFile()))
        offerLastSession(endedAbnormally);
    if (!alive)
        return;
    m_sessionSaver = new SessionSaver(sessionFile(), this);
    connect(m_sessionSaver, &SessionSaver::written, this, [this](bool ok, const QString &error) {
        if (!ok && !m_sessionFailed)
            appendLog(Str::sessionSaveFailed(error)); // once, until a write succeeds again
        m_sessionFailed = !ok;
    });
    m_sessionTimer = new QTimer(this);
    m_sessionTimer->setSingleShot(true);
    m_sessionTimer->setInterval(kSessionSaveDelayMs);
    connect(m_sessionTimer, &QTimer::timeout, this, [this] { m_sessionSaver->save(currentPictureList()); });
    scheduleSessionSave();
}

void MainWindow::offerLastSession(bool endedAbnormally)
{
    QString error;
    const std::optional<PictureList> list = PictureList::load(sessionFile(), &error);
    if (!list) {
        // Set aside, never in the way of a start: the next save writes a new one.
        const QString aside = sessionFile() + QStringLiteral(".unreadable-") +
                              QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
        QFile::remove(aside);
        const bool moved = QFile::rename(sessionFile(), aside);
        QMessageBox::warning(
            this, Str::sessionTitle(),
            Str::sessionUnreadable(error, moved ? QDir::toNativeSeparators(aside) : QString()));
        return;
    }
    if (list->pictures.isEmpty())
        return;
    if (endedAbnormally) {
        if (QMessageBox::question(this, Str::sessionTitle(),
                                  Str::sessionRestoreQuestion(int(list->pictures.size())),
                                  QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes) != QMessageBox::Yes)
            return;
    } else if (!m_actionReopenSession || !m_actionReopenSession->isChecked()) {
        return;
    }
    QStringList missing;
    if (!fillTableFromList(*list, &missing))
        return;
    absorbTableChange(); // where undo starts
    appendLog(Str::sessionRestoredLog(m_imageTable->rowCount()));
    showMissingPictures(Str::sessionTitle(), missing);
}

void MainWindow::scheduleSessionSave()
{
    if (m_sessionTimer)
        m_sessionTimer->start();
}

void MainWindow::endSession()
{
    if (!m_sessionSaver)
        return;
    m_sessionTimer->stop();
    m_sessionSaver->saveNow(currentPictureList());
    delete m_sessionSaver;
    m_sessionSaver = nullptr;
    m_sessionLock.reset(); // unlocked: a normal end
}
