// The run engine's run: the Pending items begun in order, their pictures rendered ahead, their
// processors started without waiting and several at once, their ends turned into statuses and
// their log blocks written whole and in order; Stop, and what a Start right after it settles.
#include "run/PackageJob.h"

#include "images/ImageLoader.h"
#include "run/ProcessorCommand.h"
#include "run/RenderAheadQueue.h"
#include "ui/AppStrings.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTime>
#include <QTimer>

#include <algorithm>

namespace {
constexpr int kStartTimeoutMs = 5000;
constexpr int kRowsAhead = 2; // at least; one more than the processors at once with several
} // namespace

// One item being processed: its processor (once launched) and its log block, written when it is
// the oldest one still being written.
struct PackageJob::Slot {
    quint64 id = 0;
    QByteArray stamp; // what the item was begun from
    QProcess *process = nullptr;
    QTimer *startTimer = nullptr;
    QString rendered; // its picture, removed at its end
    bool waitingForRender = false;
    bool stopped = false; // killed by Stop: its end is not a result
    bool ended = false;
    bool counted = true; // its end moves the progress (not for one stopped before it ran)
    QStringList lines;   // its log lines not yet written
};

PackageJob::PackageJob(const QString &outputDir, const QString &renderDir, const QString &keyDir,
                       QObject *parent)
    : QObject(parent)
    , m_outputDir(outputDir)
    , m_renderDir(renderDir)
    , m_keyDir(keyDir)
    , m_renderAhead(new RenderAheadQueue(renderDir, this))
{
    connect(m_renderAhead, &RenderAheadQueue::ready, this, &PackageJob::onRenderReady);
}

PackageJob::~PackageJob()
{
    // The processors still running end with this engine; nothing they report is taken.
    for (const std::unique_ptr<Slot> &slot : m_slots) {
        if (!slot->process)
            continue;
        slot->process->disconnect(this);
        slot->process->kill();
        slot->process->waitForFinished(100); // a killed process ends at once
        removeRender(slot->rendered, m_renderDir);
    }
}

bool PackageJob::start(const KeySnapshot &key)
{
    if (m_running)
        return false;
    drainStopped();
    m_key = key;
    if (countWithStatus({RowStatus::Pending}) == 0)
        return false;
    m_running = true;
    m_successCount = 0;
    m_lastBegun = 0;
    startNext();
    return true;
}

quint64 PackageJob::nextPending() const
{
    // In order from the last item begun down, then once more from the top, for items made
    // Pending again during the run (changed, or moved above it), so none is left out.
    const int rows = int(m_order.size());
    for (int index = indexOf(m_lastBegun) + 1; index < rows; ++index) {
        if (m_items[m_order.at(index)].status == RowStatus::Pending)
            return m_order.at(index);
    }
    for (int index = 0; index < rows; ++index) {
        if (m_items[m_order.at(index)].status == RowStatus::Pending)
            return m_order.at(index);
    }
    return 0;
}

int PackageJob::working() const
{
    return int(std::count_if(m_slots.begin(), m_slots.end(), [](const auto &slot) { return !slot->ended; }));
}

void PackageJob::startNext()
{
    if (m_startingNext)
        return; // an item that ended at once: the loop below goes on
    m_startingNext = true;
    while (m_running && working() < m_processorsAtOnce) {
        const quint64 id = nextPending();
        if (id == 0)
            break;
        begin(id);
    }
    m_startingNext = false;
    if (m_running && m_slots.empty())
        finishRun();
}

void PackageJob::begin(quint64 id)
{
    m_lastBegun = id;
    auto owned = std::make_unique<Slot>();
    Slot *slot = owned.get();
    slot->id = id;
    slot->stamp = inputStamp(id, m_key.fingerprint());
    m_slots.push_back(std::move(owned));
    setItemStatus(id, RowStatus::Processing);
    emit itemStarted(id);
    discardOutput(id); // nothing left from an earlier attempt may pass for this one's output
    renderAhead(id);
    startWhenRendered(slot);
}

bool PackageJob::requestRender(quint64 id)
{
    const Item &item = m_items[id];
    if (item.picture.state.fillMode == FillMode::Direct)
        return false;
    m_renderAhead->request(id, inputStamp(id, m_key.fingerprint()), renderRequest(item.picture));
    return true;
}

void PackageJob::renderAhead(quint64 id)
{
    requestRender(id);
    const int wanted = qMax(kRowsAhead, m_processorsAtOnce + 1);
    int ahead = 0;
    for (int index = indexOf(id) + 1; index < m_order.size() && ahead < wanted; ++index) {
        const quint64 next = m_order.at(index);
        if (m_items[next].status == RowStatus::Pending && requestRender(next))
            ++ahead;
    }
}

void PackageJob::startWhenRendered(Slot *slot)
{
    if (!m_items.contains(slot->id)) { // removed before its processor started
        slot->ended = true;
        slot->counted = false;
        releaseLogs();
        return;
    }
    if (m_items[slot->id].picture.state.fillMode == FillMode::Direct) {
        launch(slot, std::nullopt); // sent as it is
        return;
    }
    ColourProfile::Problem problem = ColourProfile::Problem::None;
    if (const std::optional<QString> file = m_renderAhead->take(slot->id, slot->stamp, &problem)) {
        slot->waitingForRender = false;
        if (problem != ColourProfile::Problem::None)
            emit colourProblem(slot->id, problem == ColourProfile::Problem::Damaged);
        launch(slot, *file);
        return;
    }
    if (!m_renderAhead->has(slot->id))
        requestRender(slot->id);
    slot->waitingForRender = true; // onRenderReady goes on
}

void PackageJob::onRenderReady(quint64 id)
{
    if (!m_running)
        return;
    for (const std::unique_ptr<Slot> &slot : m_slots) {
        if (slot->id == id && slot->waitingForRender && !slot->ended) {
            startWhenRendered(slot.get());
            return;
        }
    }
}

void PackageJob::launch(Slot *slot, const std::optional<QString> &rendered)
{
    if (rendered && rendered->isEmpty())
        log(slot, Str::preprocFailedUseOriginal());
    if (rendered && !rendered->isEmpty())
        slot->rendered = *rendered;
    // The processor reads the run's own copy of the key, whatever becomes of the user's file.
    QString keyError;
    const QString keyPath = keyPathForRun(&keyError);
    if (!m_key.isNull() && keyPath.isEmpty()) {
        end(slot, RowStatus::Failed, 0, Str::keyCopyFailed(QDir::toNativeSeparators(m_keyDir), keyError));
        return;
    }
    const QStringList args = arguments(slot->id, rendered, keyPath);
    const QString executable = m_setup.executable;
    const QString workDir = m_setup.workDir;
    log(slot, Str::rowLogHeader(QTime::currentTime().toString(QStringLiteral("HH:mm:ss")),
                                indexOf(slot->id) + 1, int(m_order.size()), m_items[slot->id].picture.name));
    log(slot, Str::commandLineLog(QFileInfo(executable).fileName(), args));
    QDir().mkpath(QFileInfo(args.at(1)).absolutePath());
    log(slot, Str::workDirLog(workDir));
    if (!QFileInfo(workDir).isDir()) {
        end(slot, RowStatus::Failed, 0, Str::workDirMissing(workDir));
        return;
    }

    auto *process = new QProcess(this);
    slot->process = process;
    const auto output = [this, slot, process](bool standardError) {
        const QByteArray bytes =
            standardError ? process->readAllStandardError() : process->readAllStandardOutput();
        for (const QString &line : ProcessorCommand::outputLines(bytes))
            log(slot, standardError ? Str::stderrLogLine(line) : Str::stdoutLogLine(line));
    };
    connect(process, &QProcess::readyReadStandardOutput, this, [output] { output(false); });
    connect(process, &QProcess::readyReadStandardError, this, [output] { output(true); });
    connect(process, &QProcess::started, this, [slot, process] {
        delete slot->startTimer;
        slot->startTimer = nullptr;
        ProcessorCommand::adopt(process);
    });
    connect(process, &QProcess::errorOccurred, this, [this, slot, process](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart || slot->ended)
            return; // a processor that ran ends through finished
        if (slot->stopped)
            end(slot, RowStatus::Pending, 0, Str::rowStoppedPending());
        else
            end(slot, RowStatus::StartFailed, 0, Str::processStartFailed(process->errorString()));
    });
    connect(process, &QProcess::finished, this,
            [this, slot, output](int exitCode, QProcess::ExitStatus status) {
                output(false);
                output(true);
                onProcessFinished(slot, exitCode, status);
            });
    // A start that takes over 5 s counts as a failed one.
    slot->startTimer = new QTimer(this);
    slot->startTimer->setSingleShot(true);
    connect(slot->startTimer, &QTimer::timeout, this, [this, slot, process] {
        process->disconnect(this);
        process->kill();
        connect(process, &QProcess::finished, process, &QObject::deleteLater);
        slot->process = nullptr;
        if (slot->stopped)
            end(slot, RowStatus::Pending, 0, Str::rowStoppedPending());
        else
            end(slot, RowStatus::StartFailed, 0,
                Str::processStartFailed(QStringLiteral("Process operation timed out")));
    });
    slot->startTimer->start(kStartTimeoutMs);
    ProcessorCommand::launch(process, executable, args, workDir);
}

void PackageJob::onProcessFinished(Slot *slot, int exitCode, QProcess::ExitStatus status)
{
    if (slot->ended)
        return;
    if (slot->stopped) {
        // Stopped: not a result. The item is Pending again, so the next start processes it.
        end(slot, RowStatus::Pending, 0, Str::rowStoppedPending());
        return;
    }
    const ProcessorCommand::Outcome outcome = ProcessorCommand::outcome(exitCode, status);
    if (outcome.status == RowStatus::Done && m_items.contains(slot->id) &&
        inputStamp(slot->id, m_key.fingerprint()) != slot->stamp) {
        // Changed while its processor worked: this output shows what the item no longer is.
        end(slot, RowStatus::Pending, 0, Str::rowChangedWhileProcessing());
        return;
    }
    if (outcome.status == RowStatus::Done)
        ++m_successCount;
    end(slot, outcome.status, outcome.exitCode, outcome.log);
}

void PackageJob::end(Slot *slot, RowStatus status, int exitCode, const QString &logText)
{
    slot->ended = true;
    delete slot->startTimer;
    slot->startTimer = nullptr;
    removeRender(slot->rendered, m_renderDir);
    slot->rendered.clear();
    const auto it = m_items.find(slot->id);
    if (it == m_items.end() || status != RowStatus::Done)
        discardOutput(slot->id); // a failed or stopped item's output, if any, is not a frame
    if (it != m_items.end()) {
        it->outputStamp = status == RowStatus::Pending ? QByteArray() : slot->stamp;
        setItemStatus(slot->id, status, exitCode);
    }
    log(slot, logText);
    releaseLogs();
    startNext();
}

void PackageJob::log(Slot *slot, const QString &text)
{
    if (!m_slots.empty() && m_slots.front().get() == slot && slot->lines.isEmpty())
        emit logLine(text);
    else
        slot->lines << text;
}

void PackageJob::releaseLogs()
{
    while (!m_slots.empty()) {
        Slot *head = m_slots.front().get();
        for (const QString &line : std::as_const(head->lines))
            emit logLine(line);
        head->lines.clear();
        if (!head->ended)
            return;
        std::unique_ptr<Slot> done = std::move(m_slots.front());
        m_slots.erase(m_slots.begin());
        if (done->process) {
            done->process->disconnect(this);
            done->process->deleteLater();
        }
        if (done->counted && m_items.contains(done->id))
            emit itemLogged(done->id, indexOf(done->id) + 1);
    }
}

void PackageJob::stop()
{
    if (!m_running)
        return;
    m_running = false;
    m_renderAhead->clear(); // renders under way are dropped, their files with them
    if (m_slots.empty())
        return;
    for (const std::unique_ptr<Slot> &slot : m_slots) { // what was written so far, in order
        for (const QString &line : std::as_const(slot->lines))
            emit logLine(line);
        slot->lines.clear();
    }
    emit logLine(Str::processingStopped());
    for (const std::unique_ptr<Slot> &slot : m_slots) {
        if (slot->ended)
            continue;
        if (slot->process && slot->process->state() != QProcess::NotRunning) {
            slot->stopped = true;
            slot->process->kill();
            removeRender(slot->rendered, m_renderDir);
            slot->rendered.clear();
            if (m_items.contains(slot->id))
                setItemStatus(slot->id, RowStatus::Cancelled); // until the killed process has ended
        } else {
            // Stopped while its picture was still being rendered: no processor ran for it yet.
            slot->ended = true;
            slot->counted = false;
            if (m_items.contains(slot->id))
                setItemStatus(slot->id, RowStatus::Pending);
        }
    }
    releaseLogs();
}

void PackageJob::drainStopped()
{
    // A start right after a stop: the killed processors' ends are not waited for. Their items
    // are settled now; the processes go once they have ended. (end() releases ended slots, so
    // the ones still to settle are taken first.)
    std::vector<Slot *> stopped;
    for (const std::unique_ptr<Slot> &slot : m_slots) {
        if (!slot->ended)
            stopped.push_back(slot.get());
    }
    for (Slot *slot : stopped) {
        if (slot->process) {
            slot->process->disconnect(this);
            slot->process->kill();
            connect(slot->process, &QProcess::finished, slot->process, &QObject::deleteLater);
            slot->process = nullptr;
        }
        end(slot, RowStatus::Pending, 0, Str::rowStoppedPending());
    }
    releaseLogs();
}

void PackageJob::finishRun()
{
    m_running = false;
    m_renderAhead->clear();
    ImageLoader::releaseFreedMemory();
    emit runFinished();
}

void PackageJob::removeRender(const QString &file, const QString &renderDir)
{
    if (file.isEmpty())
        return;
    QFile::remove(file);
    // A picture rendered ahead has a folder of its own in the render folder: it goes too.
    const QString folder = QFileInfo(file).absolutePath();
    if (QFileInfo(folder).absolutePath() == QFileInfo(renderDir).absoluteFilePath())
        QDir().rmdir(folder);
}

bool PackageJob::isWorkingOn(quint64 id) const
{
    return std::any_of(m_slots.begin(), m_slots.end(),
                       [id](const std::unique_ptr<Slot> &slot) { return slot->id == id && !slot->ended; });
}
