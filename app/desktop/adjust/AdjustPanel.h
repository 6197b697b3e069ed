#pragma once

#include "app/desktop/adjust/BrickBox.h"
#include "app/desktop/adjust/HistogramView.h"
#include "app/desktop/viewer/PhotoFeed.h"
#include "app/desktop/window/MainWindow.h"

class QPushButton;

namespace korvo {

/// The Adjust tab: the histogram, Auto and Reset, and the bricks. It shows the current photo's edits; what is
/// changed is changed for all photos that commands act on.
class AdjustPanel : public QWidget {
public:
    explicit AdjustPanel(MainWindow& window);
    ~AdjustPanel() override;

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void refresh();
    void refreshHistogram();
    void keepDraft();

    Desktop& desktop_;
    PhotoFeed feed_; // a small picture for the histogram, the same in all modes
    HistogramView* histogram_;
    QLabel* hint_;
    QWidget* controls_;
    std::vector<BrickBox*> bricks_;
    std::optional<PhotoID> photo_;
    Connection storeChanged_, browserChanged_, draftChanged_, feedChanged_;
};

} // namespace korvo
