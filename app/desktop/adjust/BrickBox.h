#pragma once

#include "app/desktop/adjust/SliderRow.h"

#include <QCheckBox>
#include <QToolButton>

#include <vector>

namespace korvo {

/// A group of sliders under its name, which can be switched off, keeping its values, and reset.
class BrickBox : public QWidget {
public:
    BrickBox(Desktop& desktop, AdjustmentBrick brick);

    void show(const PhotoEdits& edits);

private:
    void change(const char* verb, void (*how)(AdjustmentBrick, PhotoEdits&));

    Desktop& desktop_;
    AdjustmentBrick brick_;
    QCheckBox* switch_;
    QToolButton* reset_;
    std::vector<SliderRow*> rows_;
};

} // namespace korvo
