#include "playlist/CardCopyDialog.h"

#include "playlist/CardCopy.h"
#include "playlist/PackageWriter.h"
#include "playlist/Volumes.h"
#include "ui/AppBranding.h"
#include "ui/AppStrings.h"

#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QLocale>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int kRootRole = Qt::UserRole;
constexpr int kFileSystemRole = Qt::UserRole + 1;
constexpr int kFileSystemKnownRole = Qt::UserRole + 2;

QString sizeText(qint64 bytes) { return QLocale().formattedDataSize(bytes, 1); }

} // namespace

CardCopyDialog::CardCopyDialog(const QString &packageDir, QWidget *parent)
    : QDialog(parent)
    , m_packageDir(packageDir)
    , m_copy(new CardCopy(this))
{
    setWindowTitle(Str::copyToCardTitle());
    AppBranding::applyWindowIcon(this);
    setMinimumWidth(480);
    m_packageBytes = CardCopy::packageSize(packageDir, &m_packageFiles);

    auto *layout = new QVBoxLayout(this);
    m_intro = new QLabel(
        Str::copyToCardIntro(QDir::toNativeSeparators(packageDir), m_packageFiles, sizeText(m_packageBytes)),
        this);
    m_intro->setWordWrap(true);
    layout->addWidget(m_intro);
    m_volumes = new QListWidget(this);
    layout->addWidget(m_volumes, 1);
    m_warning = new QLabel(this);
    m_warning->setObjectName(QStringLiteral("tarnCardWarning"));
    m_warning->setWordWrap(true);
    m_warning->hide();
    layout->addWidget(m_warning);
    m_progress = new QProgressBar(this);
    m_progress->setRange(0, 1000);
    m_progress->hide();
    layout->addWidget(m_progress);
    m_status = new QLabel(this);
    m_status->hide();
    layout->addWidget(m_status);

    auto *buttons = new QHBoxLayout;
    m_refreshButton = new QPushButton(Str::refreshCards(), this);
    m_copyButton = new QPushButton(Str::copyToCardButton(), this);
    m_copyButton->setDefault(true);
    m_closeButton = new QPushButton(Str::close(), this);
    buttons->addWidget(m_refreshButton);
    buttons->addStretch(1);
    buttons->addWidget(m_copyButton);
    buttons->addWidget(m_closeButton);
    layout->addLayout(buttons);

    connect(m_refreshButton, &QPushButton::clicked, this, &CardCopyDialog::refreshVolumes);
    connect(m_copyButton, &QPushButton::clicked, this, &CardCopyDialog::onCopy);
    connect(m_closeButton, &QPushButton::clicked, this, [this] {
        if (isCopying())
            m_copy->cancel(); // Cancel: the copy stops and the dialog stays
        else
            reject();
    });
    connect(m_volumes, &QListWidget::currentRowChanged, this, &CardCopyDialog::onSelectionChanged);
    connect(m_copy, &CardCopy::progress, this, &CardCopyDialog::onProgress);
    connect(m_copy, &CardCopy::finished, this, [this](const CardCopy::Result &result) {
        setCopying(false);
        // What an interrupted copy had left, and what was done about it, comes first.
        const QString found = result.recovered.isEmpty() ? QString() : result.recovered.join('\n') + "\n\n";
        if (result.ok) {
            QMessageBox::information(this, Str::copyToCardTitle(),
                                     found + Str::cardCopyDone(result.files, sizeText(result.bytes),
                                                               QDir::toNativeSeparators(result.target)));
            accept();
            return;
        }
        if (m_closeWhenDone) {
            QDialog::reject();
            return;
        }
        if (result.cancelled)
            QMessageBox::information(this, Str::copyToCardTitle(),
                                     found + Str::cardCopyCancelled() + "\n\n" + result.leftNote);
        else
            QMessageBox::critical(this, Str::copyToCardTitle(), found + result.error);
        refreshVolumes();
    });
    refreshVolumes();
}

CardCopyDialog::~CardCopyDialog() = default;

bool CardCopyDialog::isCopying() const { return m_copy->isRunning(); }

void CardCopyDialog::refreshVolumes()
{
    m_volumes->clear();
    int firstFitting = -1;
    for (const Volume &volume : Volumes::cards()) {
        const bool fits = volume.bytesFree >= m_packageBytes;
        auto *item =
            new QListWidgetItem(Str::cardVolumeItem(volume.name, QDir::toNativeSeparators(volume.rootPath),
                                                    volume.fileSystem, sizeText(volume.bytesFree), fits),
                                m_volumes);
        item->setData(kRootRole, volume.rootPath);
        item->setData(kFileSystemRole, volume.fileSystem);
        item->setData(kFileSystemKnownRole, volume.fileSystemKnown);
        if (!fits)
            item->setFlags(item->flags() & ~(Qt::ItemIsEnabled | Qt::ItemIsSelectable));
        else if (firstFitting < 0)
            firstFitting = m_volumes->count() - 1;
    }
    if (m_volumes->count() == 0) {
        auto *none = new QListWidgetItem(Str::noCardFound(), m_volumes);
        none->setFlags(Qt::NoItemFlags);
    }
    m_volumes->setCurrentRow(firstFitting);
    onSelectionChanged();
}

void CardCopyDialog::onSelectionChanged()
{
    const QListWidgetItem *item = m_volumes->currentItem();
    const bool chosen =
        item && (item->flags() & Qt::ItemIsEnabled) && !item->data(kRootRole).toString().isEmpty();
    m_copyButton->setEnabled(chosen && !isCopying());
    const QString fileSystem = chosen ? item->data(kFileSystemRole).toString() : QString();
    // Formatting is advised only for a file system known to be wrong: never for one not told.
    const bool known = chosen && item->data(kFileSystemKnownRole).toBool();
    m_warning->setVisible(chosen && (!known || !Volumes::isCardFileSystem(fileSystem)));
    m_warning->setText(known ? Str::cardFileSystemWarning(fileSystem)
                             : Str::cardFileSystemUnknown(fileSystem));
}

void CardCopyDialog::onCopy()
{
    const QListWidgetItem *item = m_volumes->currentItem();
    if (!item || isCopying())
        return;
    const QString root = item->data(kRootRole).toString();
    const QString target = QDir(root).filePath(QStringLiteral("vl_play"));
    if (const QString problem = PackageWriter::checkReplaceable(target); !problem.isEmpty()) {
        QMessageBox::warning(this, Str::copyToCardTitle(), problem); // a folder of the user's
        return;
    }
    if (QFileInfo::exists(target) &&
        QMessageBox::question(this, Str::copyToCardTitle(),
                              Str::cardReplaceQuestion(QDir::toNativeSeparators(target)),
                              QMessageBox::Yes | QMessageBox::No, QMessageBox::No) != QMessageBox::Yes)
        return;
    setCopying(true);
    m_copy->start(m_packageDir, root);
}

void CardCopyDialog::onProgress(qint64 done, qint64 total, bool verifying)
{
    m_progress->setValue(total > 0 ? int(done * 1000 / total) : 0);
    m_status->setText(verifying ? Str::cardVerifying() : Str::cardCopying());
}

void CardCopyDialog::setCopying(bool copying)
{
    m_volumes->setEnabled(!copying);
    m_refreshButton->setEnabled(!copying);
    m_copyButton->setEnabled(!copying);
    m_progress->setVisible(copying);
    m_progress->setValue(0);
    m_status->setVisible(copying);
    m_status->setText(Str::cardCopying());
    m_closeButton->setText(copying ? Str::cancel() : Str::close());
    if (!copying)
        onSelectionChanged();
}

void CardCopyDialog::reject()
{
    // Escape or closing the window during a copy stops the copy; its end closes the dialog,
    // once the card holds nothing half-made.
    if (isCopying()) {
        m_closeWhenDone = true;
        m_copy->cancel();
        return;
    }
    QDialog::reject();
}
