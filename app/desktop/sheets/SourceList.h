#pragma once

#include "app/desktop/Desktop.h"
#include "imports/ImportSource.h"
#include "platform/linux/LinuxCameras.h"

#include <QTimer>
#include <QTreeWidget>

namespace korvo {

/// The places that photos can be imported from, in the three sections, kept current while it is shown.
class SourceList : public QTreeWidget {
public:
    /// What follows when one is chosen, and when what was chosen is no longer there.
    struct Handlers {
        std::function<void(const ImportSource&)> chosen;
        std::function<void()> gone;
    };
    /// `desktop` must outlive it.
    SourceList(Desktop& desktop, Handlers handlers);
    ~SourceList() override;

    /// Adds files and folders, and chooses them.
    void add(const std::vector<std::filesystem::path>& paths);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void watchVolumes();
    void lookForCameras();
    void camerasFound(std::vector<ConnectedCamera> cameras, std::string fault);
    void fill();
    void fillSection(std::size_t section, const std::vector<ImportSource>& sources, const std::string& fault);
    void choose(QTreeWidgetItem* item);
    std::vector<ImportSource> volumeSources() const;
    std::vector<ImportSource> cameraSources() const;

    Desktop& desktop_;
    Handlers handlers_;
    VolumeWatcher* watcher_ = nullptr; // none when the system cannot be watched
    std::string volumeFault_;
    std::vector<ConnectedCamera> cameras_;
    std::string cameraFault_;
    bool isLooking_ = false; // for cameras
    std::vector<ImportSource> added_;
    std::vector<ImportSource> listed_; // by the items' numbers
    std::optional<std::string> current_; // what is chosen, by name and place
    QTimer cameraTimer_;
    Connection volumesChanged_;
    Task cameraTask_;
};

} // namespace korvo
