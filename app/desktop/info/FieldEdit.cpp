#include "app/desktop/info/FieldEdit.h"

#include "app/desktop/photos/PhotoDrag.h"

#include <QKeyEvent>
#include <QMimeData>
#include <QScrollBar>
#include <QTextBlock>

#include <algorithm>
#include <cmath>

namespace korvo {

namespace {

constexpr int mostLines = 8; // beyond them the field scrolls

bool isEnter(const QKeyEvent& event)
{
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

} // namespace

FieldEdit::FieldEdit(Lines lines, QWidget* parent) : QPlainTextEdit(parent), lines_(lines)
{
    setTabChangesFocus(true);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    document()->setDocumentMargin(3);
    connect(this, &QPlainTextEdit::textChanged, this, &FieldEdit::textEdited);
    fitHeight();
}

void FieldEdit::show(const QString& text, const QString& placeholder)
{
    setPlaceholderText(placeholder);
    shown_ = text;
    if (!touched_)
        takeBack();
}

void FieldEdit::takeBack()
{
    touched_ = false;
    if (shown_ == toPlainText())
        return;
    showing_ = true;
    setPlainText(shown_);
    showing_ = false;
}

void FieldEdit::retype(const QString& text)
{
    setPlainText(text);
    touched_ = true;
}

void FieldEdit::textEdited()
{
    touched_ |= !showing_;
    fitHeight();
}

void FieldEdit::commit()
{
    if (!touched_)
        return;
    touched_ = false;
    if (committed)
        touched_ = !committed(toPlainText());
}

void FieldEdit::keyPressEvent(QKeyEvent* event)
{
    const bool breaksLine = lines_ == Lines::several && !enterGoesOn_;
    if (!isEnter(*event) || (breaksLine && !(event->modifiers() & Qt::ControlModifier))
        || (lines_ == Lines::several && event->modifiers() & Qt::ShiftModifier)) {
        QPlainTextEdit::keyPressEvent(event);
        return;
    }
    commit();
    if (enterGoesOn_ && goOn && !touched_)
        goOn();
}

void FieldEdit::focusInEvent(QFocusEvent* event)
{
    QPlainTextEdit::focusInEvent(event);
    if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason)
        selectAll();
}

void FieldEdit::focusOutEvent(QFocusEvent* event)
{
    QPlainTextEdit::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason && event->reason() != Qt::MenuBarFocusReason)
        commit(); // a menu's command decides itself what becomes of the text
}

void FieldEdit::hideEvent(QHideEvent* event)
{
    QPlainTextEdit::hideEvent(event);
    commit();
}

void FieldEdit::resizeEvent(QResizeEvent* event)
{
    QPlainTextEdit::resizeEvent(event);
    fitHeight();
}

void FieldEdit::changeEvent(QEvent* event)
{
    QPlainTextEdit::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        fitHeight();
}

/// Photos and folders have names, but are not meant as text: the window takes them.
bool FieldEdit::canInsertFromMimeData(const QMimeData* source) const
{
    return source->hasText() && !holdsFiles(*source);
}

void FieldEdit::insertFromMimeData(const QMimeData* source)
{
    if (!canInsertFromMimeData(source)) // which pasting does not ask
        return;
    auto text = source->text();
    if (lines_ == Lines::one)
        text = text.simplified();
    insertPlainText(text);
}

/// In points: lines in a script that another font has are higher than the font's own.
double FieldEdit::textHeight() const
{
    double height = 0;
    for (auto block = document()->begin(); block.isValid() && height <= mostHeight(); block = block.next())
        height += blockBoundingRect(block).height();
    return height;
}

double FieldEdit::mostHeight() const
{
    return mostLines * fontMetrics().lineSpacing();
}

QSize FieldEdit::sizeHint() const
{
    const double text = std::clamp<double>(textHeight(), fontMetrics().lineSpacing(), mostHeight());
    const int frame = isVisible() ? height() - viewport()->height() : 2 * frameWidth();
    return {120, static_cast<int>(std::ceil(text + 2 * document()->documentMargin() + frame))};
}

void FieldEdit::fitHeight()
{
    const bool scrolls = textHeight() > mostHeight();
    setVerticalScrollBarPolicy(scrolls ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
    if (const auto height = sizeHint().height(); height != this->height())
        setFixedHeight(height);
    if (!scrolls) // it did as it was still too low
        verticalScrollBar()->setValue(0);
}

} // namespace korvo
