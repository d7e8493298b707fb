#pragma once

#include "preprocess/ImagePreprocess.h"

// A preprocessing state with its framing, for tests: fill, focus point, zoom and rotation.
inline PreprocState framedState(FillMode mode, double focusX, double focusY, double zoom, int rotation = 0)
{
    PreprocState state{mode, rotation};
    state.focusX = focusX;
    state.focusY = focusY;
    state.zoom = zoom;
    return state;
}
