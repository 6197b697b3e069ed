#pragma once

#include "app/desktop/sheets/CandidateList.h"

class QLabel;
class QPushButton;
class QStackedWidget;

namespace korvo {

/// What can be imported from a place: the candidates, or a text in their stead, and what picks all or none.
class CandidatePane : public QWidget {
public:
    /// `pictures` must outlive it. `duplicates` says whether they are picked with all others, `picked` is
    /// told that what is picked may be other.
    CandidatePane(Pictures& pictures, std::function<Duplicates()> duplicates, std::function<void()> picked);

    /// `listing` must outlive the pane's use of it.
    void show(ImportListing& listing, CandidateList::PictureOf pictureOf);
    void clear();
    /// In their stead, if there is something to say.
    void say(std::optional<std::string_view> text);
    /// Shows anew how many there are and are picked.
    void refresh();
    void pickAll();

private:
    void pickNone();

    std::function<Duplicates()> duplicates_;
    std::function<void()> picked_;
    ImportListing* listing_ = nullptr;
    QLabel *count_, *message_;
    QPushButton *all_, *none_;
    QStackedWidget* pages_;
    CandidateList* list_;
};

} // namespace korvo
