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

    AppTheme::addConfirmButtons(this, layout);
}

std::optional<ToneSettings> ToneDialog::ask(const ToneSettings &initial, int count, QWidget *parent)
{
    ToneDialog dialog(initial, count, parent);
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return dialog.controls()->tone();
}
