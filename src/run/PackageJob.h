#pragma once

#include "playlist/PlaylistExporter.h"
#include "preprocess/ImagePreprocess.h"
#include "processor/ProcessorSetup.h"
#include "run/ExportRender.h"
#include "run/KeySnapshot.h"
#include "run/RowStatus.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QObject>
#include <QProcess>
#include <QSize>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

class RenderAheadQueue;

// One picture of a package, as the run makes its frame.
struct JobPicture {
    QString path;     // the picture file
    QString heicCopy; // for a HEIC/HEIF picture, its converted copy (made again when it is gone)
    QString name;     // as the log names it
    PreprocState state;
};

// What every frame of a package is made for.
struct JobFrame {
    QString panelType; // the panel's GUI type ("133"), handed to the processor
    QSize panel;       // its resolution
    bool landscape = false;
    QString orientation; // as the settings name it, part of every stamp
};

// The run engine, shared by the window and velora-pack. It keeps the package's pictures as
// items, by id and in order, each with its status, and for a finished one the stamp of what
// its output was made from; an item whose input changes is Pending again and its output is set
// aside (kept by its stamp, in case the item is put back as it was: restore()).
// start() processes every Pending item in order with up to processorsAtOnce() processors at
// once, rendering the next items' pictures ahead on worker threads (RenderAheadQueue), each
// processor started without waiting (its start, a failure to start and a start that takes over
// 5 s all arrive as events). Items may be changed, moved and removed during a run: an item is
// always known by its id, and an output made from what an item no longer is, is not taken.
// stop() ends every processor (their items are Cancelled until each has ended, then Pending).
// The log comes as lines, each item's block (header, command line, output, result) whole and
// in the order the items were started, which is the items' order. Lives on one thread; the
// destructor ends the processors still running and drops the renders.
class PackageJob : public QObject
{
    Q_OBJECT

public:
    // Where its files go: the processor's outputs (out_<id>.bin), the rendered pictures, and
    // the copy of the key a processor may get.
    PackageJob(const QString &outputDir, const QString &renderDir, const QString &keyDir,
               QObject *parent = nullptr);
    ~PackageJob() override;

    void setProcessor(const ProcessorSetup &setup) { m_setup = setup; }
    const ProcessorSetup &processor() const { return m_setup; }
    void setFrame(const JobFrame &frame) { m_frame = frame; }
    const JobFrame &frame() const { return m_frame; }
    // 1 by default; more run side by side. Takes effect as processors start.
    void setProcessorsAtOnce(int count);
    int processorsAtOnce() const { return m_processorsAtOnce; }
    // What the window and velora-pack offer: as many as the computer has cores.
    static int maxProcessorsAtOnce();

    // The items. insert() adds a Pending item at index (at the end when out of range);
    // update() gives it another picture or state and judges nothing (markChanged() and
    // revalidate() do, and a run does at the end of its processor).
    void insert(quint64 id, const JobPicture &picture, int index = -1);
    void update(quint64 id, const JobPicture &picture);
    void remove(quint64 id);
    void clear();
    // The ids in their new order (ids it does not hold are left out, its own that are not named
    // keep their place at the end).
    void setOrder(const QList<quint64> &ids);
    QList<quint64> order() const { return m_order; }
    bool contains(quint64 id) const { return m_items.contains(id); }
    const JobPicture *picture(quint64 id) const;

    // An item as it is, and the item put back as it was (undo): at index when it is not held. A
    // finished item comes back finished when the output made from its stamp is still kept;
    // otherwise it is Pending.
    struct Record {
        JobPicture picture;
        RowStatus status = RowStatus::Pending;
        int exitCode = 0;
        QByteArray outputStamp;
    };
    std::optional<Record> record(quint64 id) const;
    void restore(quint64 id, const Record &record, int index = -1);

    RowStatus status(quint64 id) const;
    int exitCode(quint64 id) const;
    // Sets an item's status as it is (a list or a test restoring one); its stamp stays.
    void setStatus(quint64 id, RowStatus status, int exitCode = 0);
    int countWithStatus(const QList<RowStatus> &statuses) const;

    // The processor's output of an item, named by its id: out_000012.bin.
    QString outputPath(quint64 id) const;
    // A digest of everything an item's frame is made from: the picture as it is on disk, its
    // state, the frame and the key.
    QByteArray inputStamp(quint64 id, const QByteArray &keyFingerprint) const;
    QByteArray outputStamp(quint64 id) const;
    // The item is Pending again and its output gone; the one a processor works on is judged
    // when its processor ends.
    void markChanged(quint64 id);
    // Every finished item whose output is gone or was made from another input is marked changed.
    void revalidate(const QByteArray &keyFingerprint);

    // The processor's arguments for an item, given its picture (none: sent as it is; an empty
    // path: its render failed, and the picture is sent as it is) and the key path to pass (none
    // when empty).
    QStringList arguments(quint64 id, const std::optional<QString> &rendered, const QString &keyPath);
    // The item's picture rendered now, into renderDir/<subfolder>; none when it is sent as it is.
    std::optional<QString> renderNow(quint64 id, const QString &subfolder = QString()) const;
    // Removes a rendered picture, and its own folder when that is directly in renderDir.
    static void removeRender(const QString &file, const QString &renderDir);

    // The run. start() takes the key the whole run and its package are made from; false when
    // no item is Pending (nothing starts).
    bool start(const KeySnapshot &key);
    void stop();
    bool isRunning() const { return m_running; }
    bool isBusy() const { return m_running || !m_slots.empty(); } // stopped processors still ending
    int successCount() const { return m_successCount; }
    const KeySnapshot &runKey() const { return m_key; }
    // Tries to start processors for the next Pending items (what a run does after each end).
    void startNext();

    // The package: the Done items' outputs in order, and the names of the items without one.
    QStringList frames(QStringList *missingNames = nullptr) const;
    // The request that writes it: those outputs as frame_000.bin, … in order, made for panel (the
    // key's own panel wins) with the key's encryption, account and device, and the slideshow's
    // settings; the caller names its folder.
    PlaylistExportRequest packageRequest(const PanelSpec &panel, int intervalMinutes, bool loop,
                                         const KeySnapshot &key, QStringList *missingNames = nullptr) const;

Q_SIGNALS:
    void statusChanged(quint64 id, RowStatus status, int exitCode);
    void itemStarted(quint64 id);
    void logLine(const QString &text);
    // The picture's colour profile could not be used (damaged, or of a kind not converted): it
    // was rendered as if it had none.
    void colourProblem(quint64 id, bool damaged);
    // An item's end, once its log block is written whole: its place (1-based) in the items' order.
    void itemLogged(quint64 id, int number);
    void runFinished();

private:
    using Item = Record;
    struct Slot;

    void setItemStatus(quint64 id, RowStatus status, int exitCode = 0);
    // An output made from a known stamp is set aside under a name of its own; others are deleted.
    void discardOutput(quint64 id);
    QString keptOutputPath(quint64 id, const QByteArray &stamp) const;
    quint64 nextPending() const;
    int working() const; // items begun and not ended
    bool isWorkingOn(quint64 id) const;
    int indexOf(quint64 id) const { return int(m_order.indexOf(id)); }
    bool requestRender(quint64 id);
    void renderAhead(quint64 id);
    void begin(quint64 id);
    void startWhenRendered(Slot *slot);
    void onRenderReady(quint64 id);
    void launch(Slot *slot, const std::optional<QString> &rendered);
    void onProcessFinished(Slot *slot, int exitCode, QProcess::ExitStatus status);
    void end(Slot *slot, RowStatus status, int exitCode, const QString &log);
    void log(Slot *slot, const QString &text);
    void releaseLogs();
    void drainStopped();
    void finishRun();
    RenderRequest renderRequest(const JobPicture &picture) const;
    QString processorInput(quint64 id);
    QString keyPathForRun(QString *error = nullptr) const;

    QString m_outputDir;
    QString m_renderDir;
    QString m_keyDir;
    ProcessorSetup m_setup;
    JobFrame m_frame;
    int m_processorsAtOnce = 1;

    QHash<quint64, Item> m_items;
    QList<quint64> m_order;

    RenderAheadQueue *m_renderAhead = nullptr;
    std::vector<std::unique_ptr<Slot>> m_slots; // the items being processed, in the order they began
    bool m_running = false;
    bool m_startingNext = false;
    int m_successCount = 0;
    quint64 m_lastBegun = 0; // the next item is looked for below it
    KeySnapshot m_key;
};
