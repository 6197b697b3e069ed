#pragma once

#include "app/desktop/Desktop.h"
#include "app/desktop/info/FieldEdit.h"

class QCompleter;
class QStringListModel;

namespace korvo {

/// The field for keywords. It suggests those of the library while one is typed.
class KeywordField : public FieldEdit {
public:
    /// `desktop` must outlive it.
    explicit KeywordField(Desktop& desktop, QWidget* parent = nullptr);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;

private:
    void readKnown();
    void suggest();
    void take(const QString& keyword);
    std::size_t cursor() const;

    Desktop& desktop_;
    QStringListModel* model_;
    QCompleter* completer_;
    std::vector<std::string> known_;
    bool isReading_ = false;
    Task reader_; // last, so that it ends first
};

} // namespace korvo
