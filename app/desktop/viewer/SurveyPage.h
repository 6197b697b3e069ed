#pragma once

#include "app/desktop/viewer/PhotoPage.h"

namespace korvo {

/// The selected photos beside each other, as large as they can be.
class SurveyPage : public PhotoPage {
public:
    explicit SurveyPage(MainWindow& window);

    PhotoPane* active() override;
    std::vector<PhotoPane*> panes() override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    struct Place {
        std::unique_ptr<PhotoPane> pane;
        Connection clicked;
    };
    void follow(bool isOn) override;
    void step(std::ptrdiff_t places) override;
    void arrange();
    void addPane();

    std::vector<Place> places_;
    Connection storeChanged_;
};

} // namespace korvo
