#pragma once

#include <QDialog>

class CardCopy;
class QLabel;
class QListWidget;
class QProgressBar;
class QPushButton;

// Copies a package onto a TF card: lists the volumes a card can be (Volumes), each with its
// name, file system and free space against the package's size, refuses one that is too
// small, warns when one is not FAT32 or exFAT, asks before replacing a vl_play already on the
// card, then copies and verifies (CardCopy) with progress and Cancel, and reports the result.
// Closing it during a copy cancels the copy first.
class CardCopyDialog : public QDialog
{
    Q_OBJECT

public:
    explicit CardCopyDialog(const QString &packageDir, QWidget *parent = nullptr);
    ~CardCopyDialog() override;

    QListWidget *volumeList() const { return m_volumes; }
    QPushButton *copyButton() const { return m_copyButton; }
    QLabel *warningLabel() const { return m_warning; }
    bool isCopying() const;

    void refreshVolumes();

public Q_SLOTS:
    void reject() override;

private:
    void onSelectionChanged();
    void onCopy();
    void onProgress(qint64 done, qint64 total, bool verifying);
    void setCopying(bool copying);

    QString m_packageDir;
    qint64 m_packageBytes = 0;
    int m_packageFiles = 0;
    CardCopy *m_copy = nullptr;
    QLabel *m_intro = nullptr;
    QListWidget *m_volumes = nullptr;
    QLabel *m_warning = nullptr;
    QLabel *m_status = nullptr;
    QProgressBar *m_progress = nullptr;
    QPushButton *m_refreshButton = nullptr;
    QPushButton *m_copyButton = nullptr;
    QPushButton *m_closeButton = nullptr;
    bool m_closeWhenDone = false;
};
