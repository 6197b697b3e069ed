#pragma once

#include <QPlainTextEdit>

#include <functional>

namespace korvo {

/// A text field that grows with what is in it. The user's text is handed over at once when the field is left:
/// by Enter (in fields of several lines with Ctrl), Esc, Tab or a click elsewhere.
class FieldEdit : public QPlainTextEdit {
public:
    enum class Lines { one, several };

    explicit FieldEdit(Lines lines, QWidget* parent = nullptr);

    /// What is to be shown. An unfinished text of the user's stays.
    void show(const QString& text, const QString& placeholder);
    /// Drops an unfinished text.
    void reset() { touched_ = false; }
    /// The same, and shows again what was there before.
    void takeBack();
    /// Shows a text of the user's again that could not be kept after all.
    void retype(const QString& text);
    QString text() const { return toPlainText(); }
    /// Whether the user has changed the text since it was shown.
    bool isTouched() const { return touched_; }
    /// Hands the text over if the user has changed it.
    void commit();
    /// Enter is handed over as well, without a touched text. For lists that are worked off.
    void setEnterGoesOn(bool goesOn) { enterGoesOn_ = goesOn; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

    std::function<bool(const QString& text)>
        committed; ///< takes the user's text; false when it could not be kept
    std::function<void()> goOn; ///< after Enter, when the text was handed over

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool canInsertFromMimeData(const QMimeData* source) const override;
    void insertFromMimeData(const QMimeData* source) override;

private:
    void textEdited();
    double textHeight() const;
    double mostHeight() const;
    void fitHeight();

    Lines lines_;
    QString shown_; // what the user's text takes the place of
    bool touched_ = false;
    bool showing_ = false;
    bool enterGoesOn_ = false;
};

} // namespace korvo
