#include "app/desktop/sheets/SourceList.h"

#include "app/desktop/Labels.h"
#include "app/desktop/Texts.h"
#include "imports/ImportWindow.h"

#include <QResizeEvent>
#include <QStyle>

namespace korvo {

namespace {

constexpr int betweenCameraLooks = 5000; // milliseconds
constexpr int sourceRole = Qt::UserRole;

/// Tells a source from all others.
std::string keyOf(const ImportSource& source)
{
    std::string key
        = std::to_string(static_cast<int>(source.kind)) + source.volume.url.native() + source.port;
    for (const auto& path : source.chosen)
        key += "\n" + path.native();
    return key;
}

QStyle::StandardPixmap iconOf(const ImportSource& source)
{
    if (source.kind == ImportSource::Kind::volume)
        return source.volume.isCard ? QStyle::SP_DriveFDIcon : QStyle::SP_DriveHDIcon;
    return source.kind == ImportSource::Kind::camera ? QStyle::SP_ComputerIcon : QStyle::SP_DirIcon;
}

} // namespace

SourceList::SourceList(Desktop& desktop, Handlers handlers)
    : desktop_(desktop), handlers_(std::move(handlers))
{
    setHeaderHidden(true);
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setIndentation(10);
    setFrameShape(NoFrame);
    setTextElideMode(Qt::ElideMiddle);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAccessibleName(QObject::tr("Places to import from"));
    cameraTimer_.setInterval(betweenCameraLooks);
    connect(&cameraTimer_, &QTimer::timeout, this, [this] { lookForCameras(); });
    connect(this, &QTreeWidget::itemClicked, this, [this](QTreeWidgetItem* item) { choose(item); });
    connect(this, &QTreeWidget::itemActivated, this, [this](QTreeWidgetItem* item) { choose(item); });
    watchVolumes();
    fill();
}

SourceList::~SourceList()
{
    desktop_.leftTasks().take(std::move(cameraTask_));
}

void SourceList::watchVolumes()
{
    try {
        watcher_ = &desktop_.volumes();
        volumesChanged_ = watcher_->changed.connect([this] { fill(); });
    } catch (const std::exception& error) {
        volumeFault_ = error.what(); // stands in the section
    }
}

void SourceList::showEvent(QShowEvent* event)
{
    QTreeWidget::showEvent(event);
    if (watcher_)
        watcher_->refresh();
    lookForCameras();
}

void SourceList::hideEvent(QHideEvent* event)
{
    QTreeWidget::hideEvent(event);
    cameraTimer_.stop();
}

/// The hints break their lines anew.
void SourceList::resizeEvent(QResizeEvent* event)
{
    QTreeWidget::resizeEvent(event);
    if (event->size().width() != event->oldSize().width())
        fill();
}

void SourceList::lookForCameras()
{
    if (isLooking_)
        return;
    isLooking_ = true;
    cameraTimer_.stop(); // until this look is over: it may take long
    cameraTask_ = runInBackground(desktop_.mainThread(), [this](const Task::Context& context) {
        std::vector<ConnectedCamera> cameras;
        std::string fault;
        try {
            cameras = LinuxCameras().connected();
        } catch (const std::exception& error) {
            fault = error.what();
        }
        context.deliver([this, cameras, fault] { camerasFound(cameras, fault); });
    });
}

void SourceList::camerasFound(std::vector<ConnectedCamera> cameras, std::string fault)
{
    isLooking_ = false;
    if (isVisible())
        cameraTimer_.start();
    const bool same = fault == cameraFault_
        && std::equal(cameras.begin(), cameras.end(), cameras_.begin(), cameras_.end(),
            [](const auto& a, const auto& b) { return a.port == b.port && a.name == b.name; });
    if (same)
        return;
    cameras_ = std::move(cameras);
    cameraFault_ = std::move(fault);
    fill();
}

std::vector<ImportSource> SourceList::volumeSources() const
{
    std::vector<ImportSource> sources;
    if (watcher_)
        for (const auto& volume : watcher_->volumes())
            sources.push_back({.kind = ImportSource::Kind::volume, .volume = volume});
    return sources;
}

std::vector<ImportSource> SourceList::cameraSources() const
{
    std::vector<ImportSource> sources;
    for (const auto& camera : cameras_)
        sources.push_back({.kind = ImportSource::Kind::camera, .port = camera.port});
    return sources;
}

void SourceList::fill()
{
    clear();
    listed_.clear();
    const auto fault = watcher_ ? watcher_->fault().value_or("") : volumeFault_;
    fillSection(0, volumeSources(), fault);
    fillSection(1, cameraSources(), cameraFault_);
    fillSection(2, added_, {});
    expandAll();
    const auto isCurrent = [this](const ImportSource& source) { return keyOf(source) == current_; };
    if (current_ && std::none_of(listed_.begin(), listed_.end(), isCurrent)) {
        current_.reset();
        handlers_.gone();
    }
}

void SourceList::fillSection(
    std::size_t section, const std::vector<ImportSource>& sources, const std::string& fault)
{
    const auto& [title, emptyText] = importWindow::sections[section];
    auto* const heading = new QTreeWidgetItem(this, {qt(title)});
    heading->setFlags(Qt::ItemIsEnabled);
    auto bold = font();
    bold.setBold(true);
    heading->setFont(0, bold);
    heading->setSizeHint(0, {0, fontMetrics().height() + 14});
    if (sources.empty()) {
        auto* const hint = new QTreeWidgetItem(heading);
        hint->setFlags(Qt::NoItemFlags);
        auto* const text = dimLabel(fault.empty() ? qt(emptyText) : qt(fault));
        const int width = viewport()->width() - 2 * indentation();
        hint->setSizeHint(0, {width, text->heightForWidth(width) + 4});
        setItemWidget(hint, 0, text);
    }
    for (std::size_t i = 0; i < sources.size(); ++i) {
        const auto& source = sources[i];
        const auto name = source.kind == ImportSource::Kind::camera ? cameras_[i].name : nameOf(source);
        auto* const item = new QTreeWidgetItem(heading, {qt(name)});
        item->setIcon(0, style()->standardIcon(iconOf(source)));
        item->setData(0, sourceRole, static_cast<int>(listed_.size()));
        item->setToolTip(0,
            plainToolTip(
                qt(source.chosen.empty() ? source.volume.url.native() : source.chosen.front().native())));
        listed_.push_back(source);
        if (keyOf(source) == current_)
            setCurrentItem(item);
    }
}

void SourceList::choose(QTreeWidgetItem* item)
{
    const auto number = item->data(0, sourceRole);
    if (!number.isValid())
        return;
    const auto source = listed_[static_cast<std::size_t>(number.toInt())];
    if (keyOf(source) == current_)
        return;
    current_ = keyOf(source);
    handlers_.chosen(source);
}

void SourceList::add(const std::vector<std::filesystem::path>& paths)
{
    const auto source = sourceOf(paths, watcher_ ? watcher_->volumes() : std::vector<Volume>());
    std::erase_if(added_, [&](const ImportSource& other) { return keyOf(other) == keyOf(source); });
    added_.push_back(source);
    current_ = keyOf(source);
    fill();
    handlers_.chosen(source);
}

} // namespace korvo
