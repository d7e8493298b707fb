#include "preprocess/CaptionDialog.h"

#include "preprocess/CaptionControls.h"
#include "ui/AppBranding.h"
#include "ui/AppStrings.h"
#include "ui/AppTheme.h"

#include <QLabel>
#include <QVBoxLayout>

CaptionDialog::CaptionDialog(const CaptionSettings &initial, int count, QWidget *parent)
    : QDialog(parent)
{
    setWindowTitle(Str::batchCaptionTitle());
    AppBranding::applyWindowIcon(this);
    setMinimumWidth(620);
    auto *layout = new QVBoxLayout(this);
    layout->setSpacing(10);
    auto *hint = new QLabel(Str::batchCaptionHint(count), this);
    hint->setWordWrap(true);
    layout->addWidget(hint);
    m_controls = new CaptionControls(this);
    m_controls->setCaption(initial);
    layout->addWidget(m_controls);

    AppTheme::addConfirmButtons(this, layout);
}

std::optional<CaptionSettings> CaptionDialog::ask(const CaptionSettings &initial, int count, QWidget *parent)
{
    CaptionDialog dialog(initial, count, parent);
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return dialog.controls()->caption();
}
