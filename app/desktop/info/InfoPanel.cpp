#include "app/desktop/info/InfoPanel.h"

#include "app/desktop/Labels.h"
#include "app/desktop/Texts.h"
#include "app/desktop/window/MainWindow.h"
#include "app/pictures/Previews.h"
#include "base/Text.h"
#include "catalog/Versions.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace korvo {

namespace {

constexpr int longestSlice = 5; // milliseconds
constexpr int narrowest = 270; // for both buttons beside each other

QLabel* factLabel(QVBoxLayout& layout, const char* name)
{
    auto* const label = plainLabel();
    label->setObjectName(name);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setFocusPolicy(Qt::NoFocus);
    layout.addWidget(label);
    return label;
}

void setOrHide(QLabel& label, const QString& text)
{
    label.setText(text);
    label.setVisible(!text.isEmpty());
}

/// A path may break behind each of its separators.
QString breakable(const QString& path)
{
    return QString(path).replace('/', QStringLiteral("/\u200b"));
}

} // namespace

InfoPanel::InfoPanel(MainWindow& window)
    : window_(window), desktop_(window.desktop()), form_(new DescriptiveForm(desktop_)),
      versions_(new VersionList(window))
{
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    setMinimumWidth(narrowest);
    auto* const content = new QWidget;
    auto* const layout = new QVBoxLayout(content);
    layout->setContentsMargins(12, 12, 12, 12);
    title_ = factLabel(*layout, "title");
    auto bold = title_->font();
    bold.setBold(true);
    title_->setFont(bold);
    writeBackRow_ = makeWriteBackRow(window);
    layout->addWidget(writeBackRow_);
    failure_ = warning(factLabel(*layout, "failure"));
    status_ = factLabel(*layout, "status");
    layout->addWidget(versions_);
    layout->addSpacing(6);
    layout->addWidget(form_);
    layout->addSpacing(12);
    camera_ = factLabel(*layout, "camera");
    exposure_ = factLabel(*layout, "exposure");
    date_ = factLabel(*layout, "date");
    position_ = factLabel(*layout, "position");
    file_ = factLabel(*layout, "file");
    path_ = factLabel(*layout, "path");
    dimmed(status_);
    dimmed(path_);
    layout->addStretch(1);
    setWidget(content);

    for (auto* const timer : {&loading_, &slices_}) {
        timer->setSingleShot(true);
        timer->setInterval(0);
    }
    connect(&loading_, &QTimer::timeout, this, [this] { load(); });
    connect(&slices_, &QTimer::timeout, this, [this] { readSlice(); });
    storeChanged_
        = desktop_.store().changed.connect([this](const LibraryChange& change) { libraryChanged(change); });
    browserChanged_ = desktop_.browser().changed.connect([this] { loadSoon(); });
    writeBackChanged_ = desktop_.session().writeBack().changed.connect([this] { showWriteBack(); });
    load();
}

InfoPanel::~InfoPanel() = default;

QWidget* InfoPanel::makeWriteBackRow(MainWindow& window)
{
    auto* const row = new QWidget;
    auto* const layout = new QVBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    unwritten_ = factLabel(*layout, "unwritten");
    auto* const buttons = new QHBoxLayout;
    const auto add = [&](const char* text, std::function<void()> act) {
        auto* const button = new QPushButton(QString::fromUtf8(text));
        connect(button, &QPushButton::clicked, this, std::move(act));
        buttons->addWidget(button);
        return button;
    };
    auto& writeBack = desktop_.session().writeBack();
    save_ = add("Save Now", [&window] { window.commands().run(Command::saveMetadata); });
    save_->setToolTip("Writes what waits, of these and of all other photos, into their files");
    revert_ = add("Revert…", [&window] { window.commands().run(Command::revertMetadata); });
    stop_ = add("Stop", [&writeBack] { writeBack.stopSaving(); });
    buttons->addStretch(1);
    layout->addLayout(buttons);
    return row;
}

void InfoPanel::libraryChanged(const LibraryChange& change)
{
    const auto& shown = form_->photos();
    const bool concerns = change.list || change.selection || (shown.size() > 1 && !change.photos.empty())
        || (shown.size() == 1
            && (change.tree || std::any_of(change.photos.begin(), change.photos.end(), [&](PhotoID id) {
                   return id == shown.front() || versions_->holds(id);
               })));
    if (concerns)
        loadSoon();
}

void InfoPanel::load()
{
    form_->setPhotos(desktop_.browser().targets());
    reading_ = {};
    readSlice();
    look();
}

void InfoPanel::readSlice()
{
    QElapsedTimer time;
    time.start();
    const auto& ids = form_->photos();
    auto& [common, next, waiting] = reading_;
    while (next < ids.size()) {
        if (const PhotoItem* const item = desktop_.store().list().find(ids[next++])) {
            common.add(item->metadata);
            waiting += item->dirty ? 1 : 0;
        }
        if (next % 256 == 0 && time.elapsed() >= longestSlice) {
            slices_.start();
            return form_->waitForTexts();
        }
    }
    showRead();
}

void InfoPanel::showRead()
{
    form_->show(reading_.common);
    const auto& source = desktop_.store().source();
    const bool worksOff = source && source->kind == LibrarySource::Kind::noAltText;
    form_->workOffAltTexts(worksOff ? std::optional(desktop_.store().list().shown().size()) : std::nullopt);
    setOrHide(*unwritten_, qt(unwrittenText(reading_.waiting, form_->photos().size())));
    const auto* const item = onlyPhoto();
    const auto* const failure = item ? desktop_.session().writeBack().failureOf(item->id) : nullptr;
    setOrHide(*failure_, failure ? "⚠ " + qt(*failure) : QString());
    showFacts();
    showWriteBack();
}

const PhotoItem* InfoPanel::onlyPhoto() const
{
    const auto& ids = form_->photos();
    return ids.size() == 1 ? desktop_.store().list().find(ids.front()) : nullptr;
}

void InfoPanel::showFacts()
{
    const auto count = form_->photos().size();
    const PhotoItem* const item = onlyPhoto();
    if (item && item->versionOf)
        title_->setText(qt(item->filename) + " · " + qt(item->versionName));
    else
        title_->setText(item ? qt(item->filename)
                : count == 0 ? QObject::tr("No photo is selected")
                             : qt(counted(count, "photo")));
    form_->setVisible(count > 0);
    setOrHide(*camera_, item ? qt(cameraLine(*item)) : QString());
    setOrHide(*exposure_, item ? qt(exposureLine(*item)) : QString());
    setOrHide(*date_, item ? qt(dateText(*item)) : QString());
    setOrHide(*position_, item ? qt(positionText(*item)) : QString());
    setOrHide(*path_, item ? breakable(qt(item->path().native())) : QString());
    if (!item)
        file_->hide();
}

InfoPanel::Looked InfoPanel::lookAt(Catalog& catalog, const Wanted& wanted)
{
    Looked looked;
    try {
        looked.versions = versionsOf(catalog, wanted.photo);
        const auto record = catalog.fileRecord(catalog.masterOf(wanted.photo));
        looked.hasBackup = record && !record->backup.empty();
    } catch (const DatabaseError&) { // they are looked for again with the next change
    }
    return looked;
}

/// One look at a time: a slow disk must not hold up the next photos.
void InfoPanel::look()
{
    const PhotoItem* const item = onlyPhoto();
    const Wanted wanted = item ? Wanted{item->id, item->path()} : Wanted();
    if (wanted.file != wanted_.file)
        file_->clear();
    if (wanted.photo != wanted_.photo)
        versions_->follow(wanted.photo);
    wanted_ = wanted;
    lookAgain_ = isLooking_;
    if (!isLooking_ && wanted_.photo != 0)
        lookInBackground();
}

void InfoPanel::lookInBackground()
{
    isLooking_ = true;
    auto& catalog = desktop_.store().catalog();
    lookTask_ = runInBackground(
        desktop_.mainThread(), [this, &catalog, wanted = wanted_](const Task::Context& context) {
            context.deliver([this, wanted, looked = lookAt(catalog, wanted)] {
                if (wanted == wanted_)
                    show(looked);
            });
            context.deliver([this, wanted, facts = fileFacts(wanted.file)] { // a disk may take its time
                isLooking_ = false;
                if (wanted == wanted_)
                    showFile(facts);
                if (lookAgain_)
                    look();
            });
        });
}

void InfoPanel::show(const Looked& looked)
{
    versions_->setVersions(wanted_.photo, looked.versions);
    hasBackup_ = looked.hasBackup;
    showWriteBack();
}

void InfoPanel::showFile(const FileFacts& facts)
{
    const bool isReadable = !facts.isMissing && facts.fault.empty();
    const auto text = facts.isMissing ? missingFileText("it") : fileLine(facts);
    setOrHide(*file_, qt((isReadable ? "" : "⚠ ") + text));
    file_->setPalette({});
    if (!isReadable)
        warning(file_);
}

void InfoPanel::showWriteBack()
{
    const auto& writeBack = desktop_.session().writeBack();
    const bool waits = reading_.waiting > 0 && !writeBack.isSaving();
    const bool reverts = (reading_.waiting > 0 || (hasBackup_ && onlyPhoto())) && !writeBack.isSaving();
    window_.setShown(*save_, waits);
    window_.setShown(*revert_, reverts);
    window_.setShown(*stop_, writeBack.isSaving());
    window_.setShown(*writeBackRow_, reverts || writeBack.isSaving());
    setOrHide(*status_, qt(writeBack.statusMessage()));
}

} // namespace korvo
