#pragma once

#include "preprocess/ImagePreprocess.h"

#include <QWidget>

#include <array>

class QLabel;
class QPushButton;

// One checkable button per fill mode, rotate-left and rotate-right buttons and, optionally,
// the current rotation. A fill click changes the panel's own mode at once and reports it
// (clicking the mode already chosen reports nothing); rotate clicks only report, and the
// owner answers with setState. setState never emits.
class PreprocControlPanel : public QWidget
{
    Q_OBJECT

public:
    enum class LayoutStyle { Stacked = 0, SingleRow = 1 };

    explicit PreprocControlPanel(LayoutStyle style = LayoutStyle::Stacked, bool allowDirect = true,
                                 bool showRotationHint = true, QWidget *parent = nullptr);

    void setState(const PreprocState &state);
    PreprocState state() const { return m_state; }
    void applyLanguage();

    static QString buttonStyleSheet();
    static QString actionButtonStyleSheet();

    QPushButton *fillButton(FillMode mode) const;
    QPushButton *rotateLeftButton() const { return m_rotateLeft; }
    QPushButton *rotateRightButton() const { return m_rotateRight; }
    QLabel *rotationLabel() const { return m_rotationLabel; }

Q_SIGNALS:
    void fillModeSelected(FillMode mode);
    void rotateLeftRequested();
    void rotateRightRequested();

private:
    void buildUi(LayoutStyle style);
    void syncFillChecks();
    void updateRotationHint();
    void onFillButtonClicked(FillMode mode);

    bool m_allowDirect;
    bool m_showRotationHint;
    LayoutStyle m_layoutStyle;
    PreprocState m_state;
    QLabel *m_fillCaption = nullptr;
    QLabel *m_rotateCaption = nullptr;
    QLabel *m_rotationLabel = nullptr;
    std::array<QPushButton *, 5> m_fillButtons{}; // by FillMode value; Direct null unless allowed
    QPushButton *m_rotateLeft = nullptr;
    QPushButton *m_rotateRight = nullptr;
};
