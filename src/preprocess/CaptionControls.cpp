#include "preprocess/CaptionControls.h"

#include "preprocess/Caption.h"
#include "ui/AppStrings.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>

namespace {
constexpr int kMaxTextLength = 120;
} // namespace

CaptionControls::CaptionControls(QWidget *parent)
    : QWidget(parent)
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(new QLabel(Str::captionLabel(), this));
    m_kind = new QComboBox(this);
    for (CaptionKind kind : Caption::kinds())
        m_kind->addItem(Str::captionKindName(kind), int(kind));
    m_kind->setToolTip(Str::captionTip());
    layout->addWidget(m_kind);
    m_text = new QLineEdit(this);
    m_text->setPlaceholderText(Str::captionTextPlaceholder());
    m_text->setMaxLength(kMaxTextLength);
    layout->addWidget(m_text, 1);
    m_corner = new QComboBox(this);
    for (CaptionCorner corner : {CaptionCorner::BottomLeft, CaptionCorner::BottomRight})
        m_corner->addItem(Str::captionCornerName(corner), int(corner));
    layout->addWidget(m_corner);
    m_style = new QComboBox(this);
    for (CaptionStyle style : {CaptionStyle::Band, CaptionStyle::Outline})
        m_style->addItem(Str::captionStyleName(style), int(style));
    layout->addWidget(m_style);
    setCaption(CaptionSettings());

    const auto changed = [this] {
        showKind();
        Q_EMIT captionChanged(caption());
    };
    for (QComboBox *box : {m_kind, m_corner, m_style})
        connect(box, &QComboBox::currentIndexChanged, this, changed);
    connect(m_text, &QLineEdit::textEdited, this, changed);
}

CaptionSettings CaptionControls::caption() const
{
    CaptionSettings caption;
    caption.kind = CaptionKind(m_kind->currentData().toInt());
    caption.corner = CaptionCorner(m_corner->currentData().toInt());
    caption.style = CaptionStyle(m_style->currentData().toInt());
    caption.custom = m_text->text();
    return caption;
}

void CaptionControls::setCaption(const CaptionSettings &caption)
{
    const QSignalBlocker kind(m_kind), corner(m_corner), style(m_style);
    m_kind->setCurrentIndex(qMax(0, m_kind->findData(int(caption.kind))));
    m_corner->setCurrentIndex(qMax(0, m_corner->findData(int(caption.corner))));
    m_style->setCurrentIndex(qMax(0, m_style->findData(int(caption.style))));
    m_text->setText(caption.custom);
    showKind();
}

void CaptionControls::showKind()
{
    const bool any = CaptionKind(m_kind->currentData().toInt()) != CaptionKind::None;
    m_text->setEnabled(CaptionKind(m_kind->currentData().toInt()) == CaptionKind::Custom);
    m_corner->setEnabled(any);
    m_style->setEnabled(any);
}
