#pragma once

#include "preprocess/ImagePreprocess.h"

#include <QDialog>

#include <optional>

class CaptionControls;

// The batch bar's caption dialog: the caption to give the checked pictures, starting from a
// given one. Each picture writes its own date taken or file name; nothing else changes.
class CaptionDialog : public QDialog
{
    Q_OBJECT

public:
    CaptionDialog(const CaptionSettings &initial, int count, QWidget *parent = nullptr);

    // Runs the dialog modally: the chosen caption on OK, nothing on Cancel.
    static std::optional<CaptionSettings> ask(const CaptionSettings &initial, int count, QWidget *parent);

    CaptionControls *controls() const { return m_controls; }

private:
    CaptionControls *m_controls = nullptr;
};
