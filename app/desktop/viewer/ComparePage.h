#pragma once

#include "app/desktop/viewer/PhotoPage.h"

#include <array>

namespace korvo {

/// Two photos beside each other at one zoom: the left one stays, the right one is the current one, but as
/// long as the left one has its menu.
class ComparePage : public PhotoPage {
public:
    explicit ComparePage(MainWindow& window);

    PhotoPane* active() override { return steps_; }
    std::vector<PhotoPane*> panes() override { return {left_, right_}; }

private:
    void follow(bool isOn) override;
    void showMenu(PhotoPane& pane, QPoint at) override;
    void swapRoles();
    void begin();
    void end();
    void showReference();
    void passOverStaying();
    void listChanged();

    PhotoPane *left_, *right_;
    PhotoPane *stays_ = left_, *steps_ = right_;
    bool wasOn_ = false;
    bool showsReference_ = false; // on the left
    std::optional<PhotoID> beside_; // the current photo as it came in by itself, and was not left since
    Connection storeChanged_;
    Connection drawn_;
    std::array<Connection, 4> followed_; // the views follow each other
};

} // namespace korvo
