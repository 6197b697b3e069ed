#include "app/desktop/info/KeywordField.h"

#include "app/desktop/Texts.h"
#include "catalog/store/KeywordCompletion.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QKeyEvent>
#include <QStringListModel>

#include <algorithm>

namespace korvo {

namespace {

constexpr std::size_t mostSuggestions = 12;

bool belongsToPopup(int key)
{
    return key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Escape || key == Qt::Key_Tab
        || key == Qt::Key_Backtab;
}

} // namespace

KeywordField::KeywordField(Desktop& desktop, QWidget* parent)
    : FieldEdit(Lines::one, parent), desktop_(desktop), model_(new QStringListModel(this)),
      completer_(new QCompleter(model_, this))
{
    completer_->setWidget(this);
    completer_->popup()->setObjectName("completion");
    for (QObject* const either : std::initializer_list<QObject*>{this, completer_->popup()})
        either->installEventFilter(this);
    completer_->setCompletionMode(QCompleter::UnfilteredPopupCompletion);
    connect(completer_, qOverload<const QString&>(&QCompleter::activated), this, &KeywordField::take);
}

void KeywordField::focusInEvent(QFocusEvent* event)
{
    FieldEdit::focusInEvent(event);
    if (event->reason() != Qt::PopupFocusReason)
        readKnown();
}

void KeywordField::readKnown()
{
    if (isReading_)
        return;
    isReading_ = true;
    reader_ = runInBackground(
        desktop_.mainThread(), [this, &catalog = desktop_.store().catalog()](const Task::Context& context) {
            std::vector<std::string> keywords;
            try {
                keywords = libraryKeywords(catalog);
            } catch (const std::exception&) {
                // Typing goes on without suggestions; the catalog's faults are told by whatever needs it.
            }
            context.deliver([this, keywords] {
                known_ = keywords;
                isReading_ = false;
            });
        });
}

/// While the popup is open, its keys are no commands: Esc would leave the field beneath it, which then never
/// heard of that.
bool KeywordField::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride && completer_->popup()->isVisible()
        && belongsToPopup(static_cast<QKeyEvent*>(event)->key())) {
        event->accept();
        return true;
    }
    return FieldEdit::eventFilter(watched, event);
}

void KeywordField::keyPressEvent(QKeyEvent* event)
{
    if (completer_->popup()->isVisible() && belongsToPopup(event->key())) {
        event->ignore(); // the popup takes it
        return;
    }
    const auto before = text();
    FieldEdit::keyPressEvent(event);
    if (text() != before)
        suggest();
}

void KeywordField::suggest()
{
    QStringList list;
    for (const auto& keyword : suggestions(known_, utf8(text()), cursor(), mostSuggestions))
        list << qt(keyword);
    if (list.empty()) {
        completer_->popup()->hide();
        return;
    }
    model_->setStringList(list);
    completer_->complete(rect());
}

void KeywordField::take(const QString& keyword)
{
    const auto [list, place] = completed(utf8(text()), cursor(), utf8(keyword));
    auto edit = textCursor();
    edit.select(QTextCursor::Document);
    edit.insertText(qt(list));
    edit.setPosition(static_cast<int>(qt(std::string_view(list).substr(0, place)).size()));
    setTextCursor(edit);
}

std::size_t KeywordField::cursor() const
{
    return utf8(text().left(textCursor().position())).size();
}

} // namespace korvo
