#include "DialogSpy.h"

#include <QApplication>
#include <QDialog>
#include <QEvent>
#include <QProgressDialog>

DialogSpy::DialogSpy(std::function<void(QWidget *)> onShown)
    : m_onShown(std::move(onShown))
{
    qApp->installEventFilter(this);
}

DialogSpy::~DialogSpy() { qApp->removeEventFilter(this); }

bool DialogSpy::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Show) {
        if (auto *dialog = qobject_cast<QDialog *>(watched)) {
            m_titles << dialog->windowTitle();
            if (qobject_cast<QProgressDialog *>(dialog))
                ++m_progressShown;
            if (m_onShown)
                m_onShown(dialog);
        }
    }
    return QObject::eventFilter(watched, event);
}
