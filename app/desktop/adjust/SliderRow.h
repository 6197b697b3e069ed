#pragma once

#include "app/view/EditDraft.h"
#include "base/MainThread.h"
#include "edits/PanelSliders.h"

#include <QDoubleSpinBox>
#include <QLabel>
#include <QSlider>
#include <QWidget>

namespace korvo {

class Desktop;

/// One slider of the panel with its name and its number. Moving it is shown at once, and letting go of it is
/// one step of undo; a double click brings it back to neutral.
class SliderRow : public QWidget {
public:
    /// Both must outlive it.
    SliderRow(Desktop& desktop, const PanelSlider& slider);

    void show(const PhotoEdits& edits);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void moved(int step);
    void typed(double value);
    void reset();
    int stepOf(double value) const;
    double valueOf(int step) const;
    std::string title() const;

    Desktop& desktop_;
    const PanelSlider& slider_;
    QLabel* name_;
    QSlider* bar_;
    QDoubleSpinBox* field_;
    MainThread::Timer letGo_; // after keys and the wheel, which have no release
};

} // namespace korvo
