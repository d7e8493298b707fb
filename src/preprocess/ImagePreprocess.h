#pragma once

#include <QSize>
#include <QString>
#include <QtGlobal>

// How a rotated picture is fitted to the frame. The numeric values are the switch order of
// the whole program and must be kept.
enum class FillMode : qint32 {
    Direct = 0,
    BlurFill = 1,
    WhiteFill = 2,
    BlackFill = 3,
    CenterCrop = 4,
};

// A picture's preprocessing: fill mode, then clockwise rotation in degrees (multiples of 90).
struct PreprocState {
    FillMode fillMode;
    qint32 rotationDegrees;
};

QString fillModeLabel(FillMode mode);
QString fillModeButtonText(FillMode mode);
QString fillModeToolTip(FillMode mode);
QString formatPreprocStateLabel(const PreprocState &state);
FillMode defaultFillMode();

// "W×H" of a panel size, or the catalogue's "not set" text for an invalid size.
QString formatPanelResolutionText(const QSize &size);
