#include "preprocess/ImagePreprocess.h"

#include "ui/AppStrings.h"

QString fillModeLabel(FillMode mode) { return Str::fillModeLabel(mode); }

QString fillModeButtonText(FillMode mode) { return Str::fillModeButtonText(mode); }

QString fillModeToolTip(FillMode mode) { return Str::fillModeToolTip(mode); }

QString formatPreprocStateLabel(const PreprocState &state)
{
    return Str::formatPreprocStateLabel(state.fillMode, state.rotationDegrees);
}

FillMode defaultFillMode() { return FillMode::BlurFill; }

QString formatPanelResolutionText(const QSize &size)
{
    if (size.width() > 0 && size.height() > 0)
        return QStringLiteral("%1×%2").arg(size.width()).arg(size.height());
    return Str::panelResolutionUnset();
}
