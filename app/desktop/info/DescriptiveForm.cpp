#include "app/desktop/info/DescriptiveForm.h"

#include "app/desktop/Labels.h"
#include "app/desktop/Texts.h"
#include "app/desktop/info/KeywordField.h"
#include "base/Text.h"
#include "catalog/KeywordList.h"
#include "catalog/store/LibraryActions.h"

#include <QLabel>
#include <QPointer>
#include <QVBoxLayout>

#include <algorithm>

namespace korvo {

namespace {

constexpr std::size_t altTextField = 5;

bool hasSeveralLines(std::size_t place)
{
    const auto value = metadataFields()[place].value;
    return value == &PhotoMetadata::caption || value == &PhotoMetadata::altText;
}

void tellLost(Desktop& desktop, const QString& text)
{
    desktop.fail(std::runtime_error("This was typed and could not be kept: " + utf8(text)));
}

} // namespace

DescriptiveForm::DescriptiveForm(Desktop& desktop, QWidget* parent)
    : QWidget(parent), desktop_(desktop), altHint_(dimLabel({}))
{
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    for (std::size_t place = 0; place < fields_.size(); ++place)
        add(place);
    layout->addWidget(altHint_);
    fields_[altTextField]->goOn = [this] { nextWithoutAltText(); };
    stepEnded_ = desktop.store().stepEnded.connect([this](StepOutcome outcome) { stepEnded(outcome); });
}

void DescriptiveForm::add(std::size_t place)
{
    const auto title = qt(metadataFields()[place].title);
    const auto lines = hasSeveralLines(place) ? FieldEdit::Lines::several : FieldEdit::Lines::one;
    auto* const field
        = place == keywordsField ? new KeywordField(desktop_, this) : new FieldEdit(lines, this);
    auto* const label = dimLabel(title);
    label->setBuddy(field);
    field->setAccessibleName(title);
    field->committed = [this, place](const QString& text) { return changeField(place, text); };
    fields_[place] = field;
    if (place > 0)
        static_cast<QVBoxLayout*>(layout())->addSpacing(6);
    layout()->addWidget(label);
    layout()->addWidget(field);
}

void DescriptiveForm::setPhotos(std::vector<PhotoID> photos)
{
    if (photos == photos_)
        return;
    for (auto* const field : fields_) {
        field->commit();
        if (field->isTouched())
            tellLost(desktop_, field->text());
        field->reset();
    }
    photos_ = std::move(photos);
    isRead_ = false;
    setEnabled(!photos_.empty());
}

bool DescriptiveForm::isTouched() const
{
    return std::ranges::any_of(fields_, [](const FieldEdit* field) { return field->isTouched(); });
}

bool DescriptiveForm::commit()
{
    for (auto* const field : fields_) {
        field->commit();
        if (field->isTouched()) // the others would fail and wait the same way
            return false;
    }
    return true;
}

void DescriptiveForm::takeBack()
{
    for (auto* const field : fields_)
        if (field->isTouched())
            field->takeBack();
    if (isRead_) // what is typed next is typed over this
        show(common_);
}

void DescriptiveForm::waitForTexts()
{
    if (isRead_)
        return;
    for (auto* const field : fields_) {
        field->show({}, {});
        field->setReadOnly(true);
    }
}

void DescriptiveForm::show(const CommonMetadata& common)
{
    isRead_ = true;
    common_ = common;
    for (std::size_t place = 0; place < fields_.size(); ++place) {
        fields_[place]->setReadOnly(false);
        const auto text = shownText(common, place);
        const bool mixed = place == keywordsField ? common.keywordsDiffer() : !text && !photos_.empty();
        fields_[place]->show(text ? qt(*text) : QString(), mixed ? qt(mixedText) : QString());
        fields_[place]->setToolTip(mixed && place == keywordsField ? qt(mixedKeywordsText) : QString());
    }
    if (!fields_[keywordsField]->isTouched()) // else the user edits those of before
        keywords_ = shownText(common, keywordsField).value_or(SharedText());
}

std::optional<SharedText> DescriptiveForm::shownText(const CommonMetadata& common, std::size_t place) const
{
    const auto isThis = [&](const Typed& typed) { return isOfField(typed, place, photos_); };
    if (const auto last = std::find_if(waiting_.rbegin(), waiting_.rend(), isThis); last != waiting_.rend())
        return SharedText(utf8(last->text));
    if (storing_ && isThis(*storing_))
        return SharedText(utf8(storing_->text));
    return common.text(place);
}

void DescriptiveForm::workOffAltTexts(std::optional<std::size_t> left)
{
    fields_[altTextField]->setEnterGoesOn(left.has_value());
    altHint_->setVisible(left.has_value());
    if (left)
        altHint_->setText(
            qt("Enter writes it and goes to the next photo; " + counted(*left, "photo") + " left"));
}

bool DescriptiveForm::isOfField(const Typed& change, std::size_t place, const std::vector<PhotoID>& photos)
{
    return change.place == place && change.photos == photos;
}

bool DescriptiveForm::changeField(std::size_t place, const QString& text)
{
    const bool isKept = keepOrWait({photos_, place, text, keywords_});
    if (isKept && place == keywordsField) // what is typed next is a difference to these
        keywords_ = SharedText(tidyKeywordText(utf8(text)));
    return isKept;
}

bool DescriptiveForm::keepOrWait(const Typed& change)
{
    if (desktop_.store().isFree() && waiting_.empty())
        return keep(change);
    // The user goes on to other photos, and the text waits for its turn.
    waiting_.push_back(change);
    desktop_.store().whenFree([form = QPointer(this)] {
        if (form)
            form->keepWaiting();
    });
    return true;
}

void DescriptiveForm::keepWaiting()
{
    const auto change = waiting_.front();
    waiting_.pop_front();
    if (!keep(change))
        giveBack(change);
}

bool DescriptiveForm::keep(const Typed& change)
{
    bool kept = false;
    desktop_.attempt([&] {
        storeTyped(change);
        kept = true;
        if (desktop_.store().longStep())
            storing_ = change;
    });
    return kept;
}

/// Keywords as a difference, unless they are stored as they were when it was typed over them: a step, or
/// another process, may have given the photo others since.
void DescriptiveForm::storeTyped(const Typed& change)
{
    auto& store = desktop_.store();
    const auto text = utf8(change.text);
    if (change.place != keywordsField)
        return setMetadataField(store, change.photos, change.place, text);
    const auto only = change.photos.size() == 1 ? store.catalog().photo(change.photos.front()) : std::nullopt;
    if (only && only->metadata.keywords == change.keywords)
        setMetadataField(store, change.photos, change.place, tidyKeywordText(text));
    else
        editKeywords(store, change.photos, keywordEdit(change.keywords, text));
}

void DescriptiveForm::giveBack(const Typed& change)
{
    const auto later = std::ranges::find_if(
        waiting_, [&](const Typed& typed) { return isOfField(typed, change.place, change.photos); });
    if (later != waiting_.end()) { // it was typed over this one, and is stored with it
        later->keywords = change.keywords;
        return;
    }
    const bool isShown = change.photos == photos_;
    if (isShown && isRead_ && !fields_[change.place]->isTouched()) {
        show(common_); // what it takes the place of
        fields_[change.place]->retype(change.text);
    } else {
        tellLost(desktop_, change.text);
    }
    if (isShown && change.place == keywordsField)
        keywords_ = change.keywords; // over which it, or what is being typed by now, was typed
}

void DescriptiveForm::stepEnded(StepOutcome outcome)
{
    const auto change = std::exchange(storing_, {});
    if (change && outcome != StepOutcome::done)
        giveBack(*change);
}

/// The photos that were given a text leave the list, and the store has selected the next by then. One that
/// was passed over stays.
void DescriptiveForm::nextWithoutAltText()
{
    auto& browser = desktop_.browser();
    const auto targets = browser.targets();
    if (targets == photos_)
        browser.step(1);
    fields_[altTextField]->setFocus();
}

} // namespace korvo
