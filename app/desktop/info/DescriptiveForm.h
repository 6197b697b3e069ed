#pragma once

#include "app/desktop/Desktop.h"
#include "app/desktop/info/FieldEdit.h"

#include <QWidget>

#include <array>
#include <deque>
#include <vector>

class QLabel;

namespace korvo {

/// The six descriptive fields of one or many photos. What the user changes in a field becomes one step of
/// undo when the field is left.
class DescriptiveForm : public QWidget {
public:
    /// `desktop` must outlive it.
    explicit DescriptiveForm(Desktop& desktop, QWidget* parent = nullptr);

    /// The photos whose fields are shown. An unfinished text goes to those shown before.
    void setPhotos(std::vector<PhotoID> photos);
    const std::vector<PhotoID>& photos() const { return photos_; }
    void show(const CommonMetadata& common);
    /// Shows nothing and takes nothing until show(): those of the photos before would go to all of these.
    void waitForTexts();
    /// In a list of photos without ALT text, Enter goes on to the next. `left` is how many there are.
    void workOffAltTexts(std::optional<std::size_t> left);

    /// Whether a text was typed that is not stored, wherever the focus is.
    bool isTouched() const;
    /// Stores what was typed; false when that failed.
    bool commit();
    void takeBack();

    FieldEdit& field(std::size_t place) { return *fields_[place]; }

private:
    void add(std::size_t place);
    struct Typed {
        std::vector<PhotoID> photos;
        std::size_t place;
        QString text;
        SharedText keywords; // over which they were typed
    };

    bool changeField(std::size_t place, const QString& text);
    bool keepOrWait(const Typed& change);
    bool keep(const Typed& change);
    void keepWaiting(); ///< the first that waits
    void storeTyped(const Typed& change);
    static bool isOfField(const Typed& change, std::size_t place, const std::vector<PhotoID>& photos);
    /// What was typed for these photos and is about to be stored, else what is.
    std::optional<SharedText> shownText(const CommonMetadata& common, std::size_t place) const;
    /// Shows again what could not be stored, or tells of it.
    void giveBack(const Typed& change);
    void stepEnded(StepOutcome outcome);
    void nextWithoutAltText();

    Desktop& desktop_;
    std::vector<PhotoID> photos_;
    bool isRead_ = true; // the fields show those photos' texts
    std::array<FieldEdit*, 6> fields_{};
    CommonMetadata common_; // as it is stored
    SharedText keywords_; // those in common, as shown
    QLabel* altHint_;
    std::deque<Typed> waiting_; // for the end of a step
    std::optional<Typed> storing_; // by a step that has not ended
    Connection stepEnded_;
};

} // namespace korvo
