#pragma once

#include "processor/ProcessorSelfTest.h"

#include <QAction>
#include <QComboBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QList>
#include <QPlainTextEdit>
#include <QStringList>
#include <QTextBlock>
#include <QWidget>

// Finding the window's widgets the way a user tells them apart: by their text.

// A window that adds pictures without warning about duplicates (tests add the same picture more
// than once on purpose; only the duplicate tests are told).
inline void withoutDuplicateWarnings(QWidget &window)
{
    if (auto *warn = window.findChild<QAction *>(QStringLiteral("warnDuplicates")))
        warn->setChecked(false);
}

template <typename Widget> Widget *withText(QWidget &root, const QString &text)
{
    for (Widget *widget : root.findChildren<Widget *>()) {
        if (widget->text() == text)
            return widget;
    }
    return nullptr;
}

inline QComboBox *comboStartingWith(QWidget &root, const QString &firstItem)
{
    for (QComboBox *combo : root.findChildren<QComboBox *>()) {
        if (combo->count() > 0 && combo->itemText(0) == firstItem)
            return combo;
    }
    return nullptr;
}

inline QGroupBox *section(QWidget &root, const QString &title)
{
    for (QGroupBox *box : root.findChildren<QGroupBox *>()) {
        if (box->title() == title)
            return box;
    }
    return nullptr;
}

inline QLineEdit *withPlaceholder(QWidget &root, const QString &prefix)
{
    for (QLineEdit *edit : root.findChildren<QLineEdit *>()) {
        if (edit->placeholderText().startsWith(prefix))
            return edit;
    }
    return nullptr;
}

// The playlist's save location.
inline QLineEdit *saveLocation(QWidget &root) { return withPlaceholder(root, QStringLiteral("Required")); }

// The hidden fields of the device step: key file, executable, working directory, output,
// LUT and analysis output, in that order.
inline QList<QLineEdit *> processorFields(QWidget &root)
{
    QList<QLineEdit *> fields;
    for (QLineEdit *edit : root.findChildren<QLineEdit *>()) {
        if (edit->placeholderText().isEmpty() && edit->isHidden())
            fields << edit;
    }
    return fields;
}

inline QStringList logLines(QWidget &root)
{
    QStringList lines;
    for (QTextBlock block = root.findChild<QPlainTextEdit *>()->document()->begin(); block.isValid();
         block = block.next())
        lines << block.text();
    return lines;
}

inline QString lastLog(QWidget &root)
{
    return root.findChild<QPlainTextEdit *>()->document()->lastBlock().text();
}

// True while the window's start-up self-test of the processor is under way.
inline bool startupCheckRunning(QWidget &window)
{
    const ProcessorSelfTest *check = window.findChild<ProcessorSelfTest *>();
    return check && check->isRunning();
}
