#pragma once

#include "catalog/PhotoItem.h"

#include <QWidget>

class QListWidget;
class QListWidgetItem;
class QPushButton;

namespace korvo {

class MainWindow;

/// The versions of the photo that is looked at, to be opened, renamed and removed. Hidden for a photo
/// without.
class VersionList : public QWidget {
public:
    explicit VersionList(MainWindow& window);

    /// Shows the versions of the photo's master; `chosen` is the master itself or one of them.
    void setVersions(PhotoID chosen, const std::vector<PhotoItem>& versions);
    /// Another photo is looked at: chooses it where it is listed, else nothing is listed till its versions
    /// are known.
    void follow(PhotoID chosen);
    bool holds(PhotoID id) const;

private:
    void clear();
    void addRow(PhotoID id, const QString& name);
    void showButtons();
    std::optional<PhotoID> chosenVersion() const;

    MainWindow& window_;
    QListWidget* rows_;
    QPushButton* rename_;
    QPushButton* remove_;
};

} // namespace korvo
