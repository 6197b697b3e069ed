#pragma once

#include "app/desktop/photos/FileThumbnails.h"
#include "imports/ImportPlan.h"

#include <QListView>

namespace korvo {

/// The candidates of an import with their pictures; a click on the mark, or the space bar, picks and unpicks.
class CandidateList : public QListView {
public:
    /// `pictures` must outlive it. `picked` is told that the user has changed what is picked.
    CandidateList(Pictures& pictures, std::function<void()> picked);
    ~CandidateList() override;

    /// Which file to show for a candidate's; nothing when there is none yet.
    using PictureOf = std::function<std::optional<std::filesystem::path>(const SourceFile&)>;
    /// `listing` must outlive the list's use of it; null shows nothing.
    void show(ImportListing* listing, PictureOf pictureOf = {});
    /// Paints anew after others have picked.
    void refresh() { viewport()->update(); }

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    class Model;
    class Delegate;

    Candidate& candidate(const QModelIndex& index) const;
    void toggle(const QModelIndex& index);

    FileThumbnails thumbnails_;
    std::function<void()> picked_;
    ImportListing* listing_ = nullptr;
    PictureOf pictureOf_;
    Model* model_;
};

} // namespace korvo
