#pragma once

#include "app/desktop/photos/FileThumbnails.h"
#include "imports/ImportPlan.h"

#include <QListView>

namespace korvo {

/// The candidates of an import with their pictures; a click on the mark, or the space bar, picks and unpicks.
class CandidateList : public QListView {
public:
    /// `pictures` must outlive it.
    explicit CandidateList(Pictures& pictures);
    ~CandidateList() override;

    enum class ShowPictures { no, yes };
    /// `listing` must outlive the list's use of it; null shows nothing.
    void show(ImportListing* listing, ShowPictures pictures);
    /// Paints anew after others have picked.
    void refresh() { viewport()->update(); }

    std::function<void()> picked; ///< the user has changed what is picked

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    class Model;
    class Delegate;

    Candidate& candidate(const QModelIndex& index) const;
    void toggle(const QModelIndex& index);

    FileThumbnails thumbnails_;
    ImportListing* listing_ = nullptr;
    ShowPictures showsPictures_ = ShowPictures::no;
    Model* model_;
};

} // namespace korvo
