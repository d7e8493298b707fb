#pragma once

#include <QApplication>
#include <QColor>
#include <QPalette>

// Makes the application's window colour a grey of the given lightness (0..255): with no
// colour scheme reported, the theme calls lightness below 128 dark.
inline void setWindowLightness(int lightness)
{
    QPalette palette = QApplication::palette();
    palette.setColor(QPalette::Window, QColor(lightness, lightness, lightness));
    QApplication::setPalette(palette);
}
