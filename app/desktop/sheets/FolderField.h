#pragma once

#include <QLineEdit>

namespace korvo {

/// A field for a folder with a button that chooses one.
class FolderField : public QWidget {
public:
    /// `title` is that of the dialog.
    explicit FolderField(const QString& title, const QString& folder = {});

    QLineEdit& edit() { return *edit_; }

private:
    QLineEdit* edit_;
};

} // namespace korvo
