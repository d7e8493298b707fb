#include "preprocess/PreprocControlPanel.h"

#include "ui/AppStrings.h"
#include "ui/AppTheme.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
constexpr int kButtonHeight = 22;
constexpr int kButtonMinWidth = 52;
constexpr int kStackedCaptionWidth = 52;
const std::array<FillMode, 5> kModes = {FillMode::Direct, FillMode::BlurFill, FillMode::WhiteFill,
                                        FillMode::BlackFill, FillMode::CenterCrop};
} // namespace

PreprocControlPanel::PreprocControlPanel(LayoutStyle style, bool allowDirect, bool showRotationHint,
                                         QWidget *parent)
    : QWidget(parent)
    , m_allowDirect(allowDirect)
    , m_showRotationHint(showRotationHint)
    , m_layoutStyle(style)
    , m_state{defaultFillMode(), 0}
{
    buildUi(style);
}

QString PreprocControlPanel::buttonStyleSheet() { return AppTheme::fillModeButtonStyleSheet(); }

QString PreprocControlPanel::actionButtonStyleSheet() { return AppTheme::actionButtonStyleSheet(); }

QPushButton *PreprocControlPanel::fillButton(FillMode mode) const
{
    const int index = static_cast<int>(mode);
    return index >= 0 && index < int(m_fillButtons.size()) ? m_fillButtons[size_t(index)] : nullptr;
}

void PreprocControlPanel::buildUi(LayoutStyle style)
{
    // Styled by the application's sheet (AppTheme::rowControlsStyleRules), by object name.
    const auto makeCaption = [this] {
        auto *label = new QLabel(this);
        label->setObjectName(QStringLiteral("tarnPanelCaption"));
        return label;
    };
    const auto makeButton = [this](bool checkable) {
        auto *button = new QPushButton(this);
        button->setFixedHeight(kButtonHeight);
        button->setMinimumWidth(kButtonMinWidth);
        button->setCheckable(checkable);
        button->setObjectName(checkable ? QStringLiteral("tarnFillModeBtn")
                                        : QStringLiteral("tarnActionBtn"));
        return button;
    };

    m_fillCaption = makeCaption();
    m_rotateCaption = makeCaption();
    if (m_showRotationHint)
        m_rotationLabel = makeCaption();
    for (FillMode mode : kModes) {
        if (mode == FillMode::Direct && !m_allowDirect)
            continue;
        QPushButton *button = makeButton(true);
        m_fillButtons[size_t(mode)] = button;
        connect(button, &QPushButton::clicked, this, [this, mode] { onFillButtonClicked(mode); });
    }
    m_rotateLeft = makeButton(false);
    m_rotateRight = makeButton(false);
    connect(m_rotateLeft, &QPushButton::clicked, this, &PreprocControlPanel::rotateLeftRequested);
    connect(m_rotateRight, &QPushButton::clicked, this, &PreprocControlPanel::rotateRightRequested);

    const auto addFillButtons = [this](QHBoxLayout *row) {
        for (QPushButton *button : m_fillButtons) {
            if (button)
                row->addWidget(button);
        }
    };
    const auto addRotateWidgets = [this](QHBoxLayout *row) {
        row->addWidget(m_rotateLeft);
        row->addWidget(m_rotateRight);
        if (m_rotationLabel)
            row->addWidget(m_rotationLabel);
        row->addStretch(1);
    };

    if (style == LayoutStyle::SingleRow) {
        auto *row = new QHBoxLayout(this);
        row->setContentsMargins(0, 0, 0, 0);
        row->setSpacing(8);
        row->addWidget(m_fillCaption);
        addFillButtons(row);
        row->addSpacing(8);
        row->addWidget(m_rotateCaption);
        addRotateWidgets(row);
    } else {
        auto *column = new QVBoxLayout(this);
        column->setContentsMargins(0, 0, 0, 0);
        column->setSpacing(3);
        auto *fillRow = new QHBoxLayout;
        auto *rotateRow = new QHBoxLayout;
        for (QHBoxLayout *row : {fillRow, rotateRow}) {
            row->setContentsMargins(0, 0, 0, 0);
            row->setSpacing(3);
            column->addLayout(row);
        }
        m_fillCaption->setFixedWidth(kStackedCaptionWidth);
        m_rotateCaption->setFixedWidth(kStackedCaptionWidth);
        fillRow->addWidget(m_fillCaption);
        addFillButtons(fillRow);
        fillRow->addStretch(1);
        rotateRow->addWidget(m_rotateCaption);
        addRotateWidgets(rotateRow);
    }

    applyLanguage();
    syncFillChecks();
    updateRotationHint();
}

void PreprocControlPanel::setState(const PreprocState &state)
{
    m_state = state;
    if (!m_allowDirect && m_state.fillMode == FillMode::Direct)
        m_state.fillMode = FillMode::BlurFill;
    syncFillChecks();
    updateRotationHint();
}

void PreprocControlPanel::syncFillChecks()
{
    for (FillMode mode : kModes) {
        if (QPushButton *button = fillButton(mode))
            button->setChecked(mode == m_state.fillMode);
    }
}

void PreprocControlPanel::updateRotationHint()
{
    if (m_rotationLabel)
        m_rotationLabel->setText(Str::rotationCurrent(m_state.rotationDegrees));
}

void PreprocControlPanel::applyLanguage()
{
    const bool singleRow = m_layoutStyle == LayoutStyle::SingleRow;
    m_fillCaption->setText(singleRow ? Str::fillCropCaptionInline() : Str::fillCropCaption());
    m_rotateCaption->setText(singleRow ? Str::rotateCaptionInline() : Str::rotateCaption());
    for (FillMode mode : kModes) {
        if (QPushButton *button = fillButton(mode)) {
            button->setText(fillModeButtonText(mode));
            button->setToolTip(fillModeToolTip(mode));
        }
    }
    m_rotateLeft->setText(Str::rotateLeft());
    m_rotateLeft->setToolTip(Str::rotateLeftTip());
    m_rotateRight->setText(Str::rotateRight());
    m_rotateRight->setToolTip(Str::rotateRightTip());
    updateRotationHint();
}

void PreprocControlPanel::onFillButtonClicked(FillMode mode)
{
    if (mode == m_state.fillMode) {
        syncFillChecks(); // a click on the checked button would uncheck it: check it again
        return;
    }
    m_state.fillMode = mode;
    syncFillChecks();
    Q_EMIT fillModeSelected(mode);
}
