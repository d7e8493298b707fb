#include "preprocess/ToneDialog.h"

#include "preprocess/ToneControls.h"
#include "ui/AppBranding.h"
#include "ui/AppStrings.h"
#include "ui/AppTheme.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

ToneDialog::ToneDialog(const ToneSettings &initial, int count, QWidget *parent)
    : QDialog(parent)
{
    setWindowTitle(Str::batchToneTitle());
    AppBranding::applyWindowIcon(this);
    setMinimumWidth(620);
    auto *layout = new QVBoxLayout(this);
    layout->setSpacing(10);
    auto *hint = new QLabel(Str::batchToneHint(count), this);
    hint->setWordWrap(true);
    layout->addWidget(hint);
    m_controls = new ToneControls(this);
    m_controls->setTone(initial);
    layout->addWidget(m_controls);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    auto *cancel = new QPushButton(Str::cancel(), this);
    auto *ok = new QPushButton(Str::confirm(), this);
    ok->setDefault(true);
    ok->setStyleSheet(AppTheme::primaryButtonStyleSheet());
    buttons->addWidget(cancel);
    buttons->addWidget(ok);
    layout->addLayout(buttons);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);
}

std::optional<ToneSettings> ToneDialog::ask(const ToneSettings &initial, int count, QWidget *parent)
{
    ToneDialog dialog(initial, count, parent);
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return dialog.controls()->tone();
}
