#pragma once

#include "app/desktop/Desktop.h"
#include "app/desktop/photos/FileThumbnails.h"
#include "catalog/AutoStack.h"

#include <QListView>

namespace korvo {

/// The stacks that a plan would make: a row each, the pick marked.
class StackPreview : public QListView {
public:
    /// `desktop` must outlive it.
    explicit StackPreview(Desktop& desktop);
    ~StackPreview() override;

    void show(AutoStackPlan plan);
    const AutoStackPlan& plan() const { return plan_; }

private:
    class Model;
    class Delegate;

    Desktop& desktop_;
    AutoStackPlan plan_;
    FileThumbnails thumbnails_;
    Model* model_;
};

} // namespace korvo
