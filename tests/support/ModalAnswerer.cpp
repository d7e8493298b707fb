#include "ModalAnswerer.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QFileDialog>
#include <QLineEdit>
#include <QTextDocument>

ModalAnswerer::ModalAnswerer(QMessageBox::StandardButton answer,
                             std::function<void(QWidget *)> otherDialogHandler)
    : m_answer(answer)
    , m_otherDialogHandler(std::move(otherDialogHandler))
{
    m_timer.setInterval(10);
    connect(&m_timer, &QTimer::timeout, this, &ModalAnswerer::poll);
    m_timer.start();
}

bool ModalAnswerer::chooseInFileDialog(QWidget *dialog, const QString &directory, const QString &names)
{
    auto *chooser = qobject_cast<QFileDialog *>(dialog);
    if (!chooser)
        return false;
    chooser->setDirectory(directory);
    // Typed into the name field, as a user would: selectFile() leaves a focused field alone.
    if (auto *field = chooser->findChild<QLineEdit *>(QStringLiteral("fileNameEdit")))
        field->setText(names);
    static_cast<QDialog *>(chooser)->accept(); // QFileDialog::accept is protected
    return true;
}

QStringList ModalAnswerer::titles() const
{
    QStringList titles;
    for (const Seen &seen : m_seen)
        titles << seen.title;
    return titles;
}

QString ModalAnswerer::plainText(const QString &richText)
{
    QTextDocument document;
    document.setHtml(richText);
    return document.toPlainText();
}

void ModalAnswerer::poll()
{
    QWidget *modal = QApplication::activeModalWidget();
    if (!modal || !modal->isVisible()) {
        m_candidate = nullptr;
        return;
    }
    // Answer on the second sighting only: the first may come while the dialog is still being
    // shown, before its exec() loop runs, and closing it then would leave that loop waiting.
    if (modal != m_candidate) {
        m_candidate = modal;
        return;
    }
    m_candidate = nullptr;
    if (auto *box = qobject_cast<QMessageBox *>(modal)) {
        QStringList buttons;
        for (QAbstractButton *button : box->buttons())
            buttons << button->text();
        m_seen.append({box->windowTitle(), box->text(), box->icon(), buttons});
        if (m_beforeAnswer)
            m_beforeAnswer(m_seen.constLast());
        for (QAbstractButton *button : box->buttons()) {
            if (!m_buttonText.isEmpty() && button->text() == m_buttonText) {
                button->click();
                return;
            }
        }
        if (QAbstractButton *button = box->button(m_answer))
            button->click();
        else
            box->done(m_answer);
        return;
    }
    if (m_otherDialogHandler) {
        m_otherDialogHandler(modal);
        return;
    }
    if (auto *dialog = qobject_cast<QDialog *>(modal))
        dialog->reject();
}
