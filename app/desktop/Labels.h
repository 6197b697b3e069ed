#pragma once

#include "app/desktop/Theme.h"

#include <QLabel>
#include <QPainter>
#include <QPalette>
#include <QStyle>
#include <QTextDocument>

namespace korvo {

/// A label that shows its text letter by letter. Qt would take names of files and cameras that look like HTML
/// for HTML, and open whatever files they name.
inline QLabel* plainLabel(const QString& text = {})
{
    auto* const label = new QLabel;
    label->setTextFormat(Qt::PlainText);
    label->setText(text);
    return label;
}

/// The same for tooltips, which have no format of their own.
inline QString plainToolTip(const QString& text)
{
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text) : text;
}

/// One line that gives way where there is too little room: it is cut short, and its tooltip says it whole.
class ElidedLabel : public QLabel {
public:
    ElidedLabel() { setTextFormat(Qt::PlainText); }

    void say(const QString& text)
    {
        setText(text.simplified());
        setToolTip(plainToolTip(text));
    }
    QSize minimumSizeHint() const override
    {
        return {fontMetrics().averageCharWidth(), QLabel::minimumSizeHint().height()};
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        const auto line = fontMetrics().elidedText(text(), Qt::ElideRight, contentsRect().width());
        QPainter painter(this);
        style()->drawItemText(&painter, contentsRect(), Qt::AlignVCenter | Qt::AlignLeft, palette(),
            isEnabled(), line, foregroundRole());
    }
};

/// A line of quiet explanation, or the name of a field.
inline QLabel* dimmed(QLabel* label)
{
    label->setForegroundRole(QPalette::PlaceholderText);
    label->setWordWrap(true);
    return label;
}

inline QLabel* dimLabel(const QString& text)
{
    return dimmed(plainLabel(text));
}

/// The heading of a group.
inline QLabel* headingLabel(const QString& text)
{
    auto* const label = plainLabel(text);
    auto font = label->font();
    font.setBold(true);
    label->setFont(font);
    return label;
}

/// A line that says what is wrong.
inline QLabel* warning(QLabel* label)
{
    auto palette = label->palette();
    palette.setColor(QPalette::WindowText, theme::warning);
    label->setPalette(palette);
    label->setWordWrap(true);
    return label;
}

} // namespace korvo
