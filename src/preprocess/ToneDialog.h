#pragma once

#include "preprocess/ImagePreprocess.h"

#include <QDialog>

#include <optional>

class ToneControls;

// The batch bar's tone dialog: the tone to give the checked pictures, starting from a given
// one. Only their tone changes; fill, rotation and framing stay.
class ToneDialog : public QDialog
{
    Q_OBJECT

public:
    ToneDialog(const ToneSettings &initial, int count, QWidget *parent = nullptr);

    // Runs the dialog modally: the chosen tone on OK, nothing on Cancel.
    static std::optional<ToneSettings> ask(const ToneSettings &initial, int count, QWidget *parent);

    ToneControls *controls() const { return m_controls; }

private:
    ToneControls *m_controls = nullptr;
};
