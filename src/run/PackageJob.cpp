// The run engine's items: their pictures, order, statuses and stamps, their outputs and the
// package they make. The run itself is in PackageJobRun.cpp.
#include "run/PackageJob.h"

#include "images/ImageLoader.h"
#include "run/ExportRender.h"
#include "run/ProcessorCommand.h"
#include "run/RenderAheadQueue.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThread>

namespace {
constexpr int kMostProcessors = 64;
} // namespace

int PackageJob::maxProcessorsAtOnce() { return qMax(1, QThread::idealThreadCount()); }

void PackageJob::setProcessorsAtOnce(int count) { m_processorsAtOnce = qBound(1, count, kMostProcessors); }

void PackageJob::insert(quint64 id, const JobPicture &picture, int index)
{
    if (id == 0 || m_items.contains(id))
        return;
    m_items.insert(id, Item{picture, RowStatus::Pending, 0, QByteArray()});
    if (index < 0 || index > m_order.size())
        m_order.append(id);
    else
        m_order.insert(index, id);
}

void PackageJob::update(quint64 id, const JobPicture &picture)
{
    const auto it = m_items.find(id);
    if (it != m_items.end())
        it->picture = picture;
}

void PackageJob::remove(quint64 id)
{
    if (!m_items.contains(id))
        return;
    m_renderAhead->discard(id);
    discardOutput(id);
    m_items.remove(id);
    m_order.removeAll(id);
}

void PackageJob::clear()
{
    for (const quint64 id : std::as_const(m_order))
        remove(id);
}

void PackageJob::setOrder(const QList<quint64> &ids)
{
    QList<quint64> order;
    order.reserve(m_order.size());
    QSet<quint64> placed;
    for (const quint64 id : ids) {
        if (m_items.contains(id) && !placed.contains(id)) {
            order << id;
            placed.insert(id);
        }
    }
    for (const quint64 id : std::as_const(m_order)) {
        if (!placed.contains(id))
            order << id;
    }
    m_order = order;
}

const JobPicture *PackageJob::picture(quint64 id) const
{
    const auto it = m_items.constFind(id);
    return it == m_items.constEnd() ? nullptr : &it->picture;
}

RowStatus PackageJob::status(quint64 id) const { return m_items.value(id).status; }

int PackageJob::exitCode(quint64 id) const { return m_items.value(id).exitCode; }

QByteArray PackageJob::outputStamp(quint64 id) const { return m_items.value(id).outputStamp; }

void PackageJob::setStatus(quint64 id, RowStatus status, int exitCode)
{
    if (m_items.contains(id))
        setItemStatus(id, status, exitCode);
}

void PackageJob::setItemStatus(quint64 id, RowStatus status, int exitCode)
{
    Item &item = m_items[id];
    item.status = status;
    item.exitCode = exitCode;
    emit statusChanged(id, status, exitCode);
}

int PackageJob::countWithStatus(const QList<RowStatus> &statuses) const
{
    int count = 0;
    for (const Item &item : m_items)
        count += statuses.contains(item.status);
    return count;
}

QString PackageJob::outputPath(quint64 id) const
{
    const QString name = QStringLiteral("out_%1.bin").arg(id, 6, 10, QLatin1Char('0'));
    return QDir::fromNativeSeparators(QDir(m_outputDir).filePath(name));
}

QString PackageJob::keptOutputPath(quint64 id, const QByteArray &stamp) const
{
    const QString name = QStringLiteral("out_%1.%2.bin")
                             .arg(id, 6, 10, QLatin1Char('0'))
                             .arg(QString::fromLatin1(stamp.left(16)));
    return QDir::fromNativeSeparators(QDir(m_outputDir).filePath(name));
}

void PackageJob::discardOutput(quint64 id)
{
    if (id == 0)
        return;
    const QString output = outputPath(id);
    const QByteArray stamp = m_items.value(id).outputStamp;
    if (!stamp.isEmpty() && QFileInfo::exists(output)) {
        const QString kept = keptOutputPath(id, stamp);
        QFile::remove(kept);
        if (QFile::rename(output, kept))
            return;
    }
    QFile::remove(output);
}

std::optional<PackageJob::Record> PackageJob::record(quint64 id) const
{
    const auto it = m_items.constFind(id);
    if (it == m_items.constEnd())
        return std::nullopt;
    return *it;
}

void PackageJob::restore(quint64 id, const Record &record, int index)
{
    if (id == 0 || isWorkingOn(id))
        return;
    if (!m_items.contains(id))
        insert(id, record.picture, index);
    Item &item = m_items[id];
    item.picture = record.picture;
    const bool finished = record.status == RowStatus::Done && !record.outputStamp.isEmpty();
    if (finished && item.outputStamp == record.outputStamp && QFileInfo::exists(outputPath(id))) {
        setItemStatus(id, RowStatus::Done);
        return;
    }
    discardOutput(id);
    item.outputStamp.clear();
    if (finished && QFile::rename(keptOutputPath(id, record.outputStamp), outputPath(id))) {
        item.outputStamp = record.outputStamp;
        setItemStatus(id, RowStatus::Done);
        return;
    }
    // A failure comes back as it was; what was under way, or finished without its output, is
    // to be done again.
    const bool failed = isFailure(record.status) && record.status != RowStatus::Cancelled;
    setItemStatus(id, failed ? record.status : RowStatus::Pending, failed ? record.exitCode : 0);
}

QByteArray PackageJob::inputStamp(quint64 id, const QByteArray &keyFingerprint) const
{
    const auto it = m_items.constFind(id);
    if (it == m_items.constEnd())
        return QByteArray();
    const QFileInfo source(it->picture.path);
    QByteArray text = source.absoluteFilePath().toUtf8();
    text += '|' + QByteArray::number(source.lastModified().toMSecsSinceEpoch());
    text += '|' + QByteArray::number(source.size());
    const PreprocState &state = it->picture.state;
    text += '|' + QByteArray::number(qint32(state.fillMode));
    text += '|' + QByteArray::number(state.rotationDegrees);
    // The framing, exactly (a change of a pixel's worth makes another frame).
    text += '|' + QByteArray::number(state.focusX, 'g', 17);
    text += '|' + QByteArray::number(state.focusY, 'g', 17);
    text += '|' + QByteArray::number(state.zoom, 'g', 17);
    const ToneSettings &tone = state.tone;
    text += '|' + QByteArray::number(qint32(tone.preset));
    text += '|' + QByteArray::number(tone.exposure, 'g', 17);
    text += '|' + QByteArray::number(tone.contrast, 'g', 17);
    text += '|' + QByteArray::number(tone.saturation, 'g', 17);
    const CaptionSettings &caption = state.caption;
    text += '|' + QByteArray::number(qint32(caption.kind)) + ',' +
            QByteArray::number(qint32(caption.corner)) + ',' + QByteArray::number(qint32(caption.style)) +
            ',' + caption.shown.toUtf8().toHex();
    text +=
        '|' + QByteArray::number(m_frame.panel.width()) + 'x' + QByteArray::number(m_frame.panel.height());
    text += '|' + m_frame.orientation.toUtf8();
    text += '|' + m_frame.panelType.toUtf8();
    text += '|' + keyFingerprint;
    return QCryptographicHash::hash(text, QCryptographicHash::Sha256).toHex();
}

void PackageJob::markChanged(quint64 id)
{
    const auto it = m_items.find(id);
    if (it == m_items.end())
        return;
    if (isWorkingOn(id))
        return; // judged when its processor ends (its stamp is compared then)
    discardOutput(id);
    it->outputStamp.clear();
    if (it->status != RowStatus::Pending)
        setItemStatus(id, RowStatus::Pending);
}

void PackageJob::revalidate(const QByteArray &keyFingerprint)
{
    for (const quint64 id : std::as_const(m_order)) {
        const Item &item = m_items[id];
        if (item.outputStamp.isEmpty())
            continue;
        const bool outputLost = item.status == RowStatus::Done && !QFileInfo::exists(outputPath(id));
        if (outputLost || item.outputStamp != inputStamp(id, keyFingerprint))
            markChanged(id);
    }
}

QString PackageJob::processorInput(quint64 id)
{
    Item &item = m_items[id];
    QString heicCopy = item.picture.heicCopy;
    if (!heicCopy.isEmpty() && !QFileInfo::exists(heicCopy)) {
        // The copy was pruned or cleared since the picture was added: convert again.
        heicCopy = ImageLoader::resolveProcessorInputPath(item.picture.path);
        item.picture.heicCopy = heicCopy;
    }
    return !heicCopy.isEmpty() ? heicCopy : QDir::fromNativeSeparators(item.picture.path);
}

QStringList PackageJob::arguments(quint64 id, const std::optional<QString> &rendered, const QString &keyPath)
{
    if (!m_items.contains(id))
        return QStringList();
    QString input = processorInput(id);
    if (rendered && !rendered->isEmpty())
        input = QDir::fromNativeSeparators(*rendered);
    return ProcessorCommand::arguments(input, outputPath(id), m_frame.panelType, m_setup.variant, keyPath);
}

RenderRequest PackageJob::renderRequest(const JobPicture &picture) const
{
    // A HEIC/HEIF picture renders from its converted copy while that is there.
    const QString source =
        !picture.heicCopy.isEmpty() && QFileInfo::exists(picture.heicCopy) ? picture.heicCopy : picture.path;
    return RenderRequest{source, picture.state, m_frame.panel, m_frame.landscape,
                         QFileInfo(picture.path).completeBaseName() + QStringLiteral("_preproc.jpg")};
}

std::optional<QString> PackageJob::renderNow(quint64 id, const QString &subfolder) const
{
    const auto it = m_items.constFind(id);
    if (it == m_items.constEnd() || it->picture.state.fillMode == FillMode::Direct)
        return std::nullopt;
    const RenderRequest request = renderRequest(it->picture);
    return ExportRender::write(request,
                               QDir(QDir(m_renderDir).filePath(subfolder)).filePath(request.fileName));
}

QStringList PackageJob::frames(QStringList *missingNames) const
{
    QStringList frames;
    for (const quint64 id : m_order) {
        const Item &item = m_items[id];
        const QString output = outputPath(id);
        if (item.status == RowStatus::Done && QFileInfo::exists(output))
            frames << output;
        else if (missingNames)
            *missingNames << item.picture.name;
    }
    return frames;
}

PlaylistExportRequest PackageJob::packageRequest(const PanelSpec &panel, int intervalMinutes, bool loop,
                                                 const KeySnapshot &key, QStringList *missingNames) const
{
    PlaylistExportRequest request;
    request.intervalMinutes = intervalMinutes;
    request.loop = loop;
    request.panel = panel;
    key.applyTo(&request);
    // Names stay contiguous: items without a frame take no number.
    request.sourcePaths = frames(missingNames);
    for (int i = 0; i < request.sourcePaths.size(); ++i)
        request.frameNames << PlaylistExporter::frameName(i);
    return request;
}

QString PackageJob::keyPathForRun(QString *error) const
{
    return m_key.isNull() ? QString() : m_key.pathForProcessor(m_keyDir, error);
}
