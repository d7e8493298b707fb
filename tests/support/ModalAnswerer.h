#pragma once

#include <QDialog>
#include <QList>
#include <QMessageBox>
#include <QObject>
#include <QPointer>
#include <QScopeGuard>
#include <QString>
#include <QTimer>

#include <functional>

// Answers modal dialogs from a timer so that no test ever hangs on one. While it lives, it
// looks for the active modal widget every few milliseconds; a QMessageBox is recorded
// (title, text, icon) and answered with the given button, any other dialog is handed to the
// optional handler, or rejected. Create it right before the call that opens the dialog.
class ModalAnswerer : public QObject
{
public:
    struct Seen {
        QString title;
        QString text;
        QMessageBox::Icon icon = QMessageBox::NoIcon;
        QStringList buttons; // the texts of the box's buttons
    };

    explicit ModalAnswerer(QMessageBox::StandardButton answer = QMessageBox::Ok,
                           std::function<void(QWidget *)> otherDialogHandler = {});

    bool answered() const { return !m_seen.isEmpty(); }
    const QList<Seen> &seen() const { return m_seen; }
    QString title() const { return m_seen.isEmpty() ? QString() : m_seen.constLast().title; }
    QString text() const { return m_seen.isEmpty() ? QString() : m_seen.constLast().text; }
    QMessageBox::Icon icon() const
    {
        return m_seen.isEmpty() ? QMessageBox::NoIcon : m_seen.constLast().icon;
    }

    QStringList titles() const;

    // Runs for each message box just before it is answered (to change the world the box's
    // answer will meet, say).
    void setBeforeAnswer(std::function<void(const Seen &)> beforeAnswer)
    {
        m_beforeAnswer = std::move(beforeAnswer);
    }

    // Answers a box that has a button of this text with that button instead (its own buttons,
    // say), every other box as before.
    void setButtonText(const QString &text) { m_buttonText = text; }

    // Answers a file dialog (as the other-dialog handler): goes to directory, types names
    // (a name, several quoted names, or nothing for a folder) and accepts. False for any
    // other dialog.
    static bool chooseInFileDialog(QWidget *dialog, const QString &directory, const QString &names);

    // Rejects the dialog as it goes (unless it is closed already): a handler that fails half-way
    // through leaves no dialog open to wait for.
    static auto closingGuard(QDialog *dialog)
    {
        return qScopeGuard([dialog] {
            if (dialog->isVisible())
                dialog->reject();
        });
    }

    // The plain text of a rich-text message box body, for assertions on its words.
    static QString plainText(const QString &richText);

private:
    void poll();

    QMessageBox::StandardButton m_answer;
    QString m_buttonText;
    std::function<void(QWidget *)> m_otherDialogHandler;
    std::function<void(const Seen &)> m_beforeAnswer;
    QTimer m_timer;
    QPointer<QWidget> m_candidate;
    QList<Seen> m_seen;
};
