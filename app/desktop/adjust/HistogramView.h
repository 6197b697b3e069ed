#pragma once

#include "edits/HistogramData.h"

#include <QWidget>

namespace korvo {

/// Draws the tones of the photo, each channel in its colour where it is alone and lighter where they meet.
class HistogramView : public QWidget {
public:
    HistogramView();

    void show(const HistogramData& tones);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    HistogramData data_ = emptyHistogram();
};

} // namespace korvo
