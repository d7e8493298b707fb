#pragma once

#include <QObject>
#include <QStringList>

#include <functional>

class QWidget;

// Watches the whole application for dialogs being shown (progress dialogs included, which no
// modal-box answerer sees when they close on their own) and records their window titles. An
// optional reaction runs the moment one is shown, e.g. to cancel it.
class DialogSpy : public QObject
{
public:
    explicit DialogSpy(std::function<void(QWidget *)> onShown = {});
    ~DialogSpy() override;

    const QStringList &shownTitles() const { return m_titles; }
    int progressDialogsShown() const { return m_progressShown; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    std::function<void(QWidget *)> m_onShown;
    QStringList m_titles;
    int m_progressShown = 0;
};
