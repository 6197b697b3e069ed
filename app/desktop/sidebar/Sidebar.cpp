#include "app/desktop/sidebar/Sidebar.h"

#include "app/desktop/Ask.h"
#include "app/desktop/Labels.h"
#include "app/desktop/Texts.h"
#include "app/desktop/Theme.h"
#include "app/view/SidebarActions.h"
#include "base/Text.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QTreeWidgetItemIterator>

namespace korvo {

namespace {

using Kind = SidebarNode::Kind;
constexpr std::chrono::milliseconds whileEditing{200}; // between looks whether a name is there

bool isKeyword(const QTreeWidgetItem* item)
{
    return item && keyOf(*item).kind == Kind::keyword;
}

/// Photos leave the library only when it was said how many.
bool isRemovalWished(QWidget& window, const QString& folder, std::int64_t photos)
{
    return ask(window,
        "Remove the folder “" + folder + "” and its " + qt(counted(static_cast<std::size_t>(photos), "photo"))
            + " from the library?",
        "The files stay where they are.", "Remove");
}

} // namespace

SidebarKey keyOf(const QTreeWidgetItem& item)
{
    return {static_cast<Kind>(item.data(0, sidebarRole::kind).toInt()),
        item.data(0, sidebarRole::id).toLongLong()};
}

Sidebar::Sidebar(MainWindow& window) : window_(window), desktop_(window.desktop())
{
    setObjectName("sidebar");
    setAccessibleName("Sources");
    setHeaderHidden(true);
    setColumnCount(2);
    header()->setStretchLastSection(false);
    header()->setSectionResizeMode(0, QHeaderView::Stretch);
    header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    setFrameShape(QFrame::NoFrame);
    setIndentation(14);
    setUniformRowHeights(true);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setDragEnabled(true);
    setAcceptDrops(true);
    setDropIndicatorShown(false); // Qt's shows nothing for photos, nor that a line can be put into another
    setDragDropMode(QAbstractItemView::DragDrop);
    setTextElideMode(Qt::ElideMiddle);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    refillTimer_.setSingleShot(true);
    openTimer_.setSingleShot(true);
    connect(&refillTimer_, &QTimer::timeout, this, [this] { desktop_.attempt([this] { refill(); }); });
    connect(&openTimer_, &QTimer::timeout, this, [this] {
        if (auto* const item = under_ ? itemOf(*under_) : nullptr)
            item->setExpanded(true);
    });
    connect(this, &QTreeWidget::currentItemChanged, this,
        [this](QTreeWidgetItem* item, QTreeWidgetItem* before) { choose(item, before); });
    connect(this, &QTreeWidget::itemChanged, this, [this](QTreeWidgetItem* item) { renamed(item); });
    storeChanged_ = desktop_.store().changed.connect([this](const LibraryChange& change) {
        if (change.tree)
            refillTimer_.start(0);
        if (change.list)
            showSource();
    });
    refill();
}

void Sidebar::refill()
{
    if (state() == EditingState) // a name is being typed
        return refillTimer_.start(whileEditing);
    auto& store = desktop_.store();
    const auto& tree = store.tree(); // which may count, and fail
    const auto nodes = sidebarTree(tree, store.isCounted() ? PhotosCounted::yes : PhotosCounted::notYet);
    filling_ = true;
    const auto chosen = currentItem() ? std::optional(keyOf(*currentItem())) : std::nullopt;
    const auto wereOpen = open();
    sync(*invisibleRootItem(), nodes);
    for (const auto& key : wereOpen) // a line that has moved is closed
        if (auto* const item = itemOf(key))
            item->setExpanded(true);
    auto* const item = chosen ? itemOf(*chosen) : nullptr;
    if (item != currentItem()) // Qt chooses a neighbour for a line that moves or goes
        setCurrentItem(item);
    filling_ = false;
    filter(filter_);
    if (!item && chosen && chosen->kind == Kind::keyword)
        searchKeyword({}); // what was searched for is gone
    showSource();
}

/// Lines that stay keep their items.
void Sidebar::sync(QTreeWidgetItem& parent, const std::vector<SidebarNode>& nodes)
{
    for (std::size_t place = 0; place < nodes.size(); ++place) {
        const auto& node = nodes[place];
        const int at = static_cast<int>(place);
        const auto isNode = [&](const QTreeWidgetItem* item) {
            return keyOf(*item) == SidebarKey{node.kind, node.id};
        };
        int found = at;
        while (found < parent.childCount() && !isNode(parent.child(found)))
            ++found;
        const bool isNew = found == parent.childCount();
        auto* const item = isNew ? new QTreeWidgetItem : parent.child(found);
        if (isNew)
            parent.insertChild(at, item);
        else if (found != at)
            parent.insertChild(at, parent.takeChild(found));
        show(*item, node);
        if (isNew && (node.kind == Kind::heading))
            item->setExpanded(true);
        sync(*item, node.children);
    }
    while (parent.childCount() > static_cast<int>(nodes.size()))
        delete parent.takeChild(parent.childCount() - 1);
}

void Sidebar::show(QTreeWidgetItem& item, const SidebarNode& node)
{
    item.setData(0, sidebarRole::kind, static_cast<int>(node.kind));
    item.setData(0, sidebarRole::id, static_cast<qlonglong>(node.id));
    const QString name = qt(repairedUtf8(node.name));
    item.setText(0, name);
    item.setToolTip(0, plainToolTip(node.hint.empty() ? name : qt(repairedUtf8(node.hint))));
    const QString count = node.count ? number(static_cast<std::size_t>(*node.count)) : QString();
    item.setText(1, count);
    item.setTextAlignment(1, Qt::AlignRight | Qt::AlignVCenter);
    item.setForeground(1, theme::mutedText);
    item.setData(0, Qt::AccessibleTextRole, count.isEmpty() ? name : name + ", " + count);
    auto flags = Qt::ItemIsEnabled | Qt::ItemIsDropEnabled;
    if (node.kind == Kind::heading) {
        QFont bold = font();
        bold.setBold(true);
        item.setFont(0, bold);
        item.setForeground(0, theme::mutedText);
    } else {
        flags |= Qt::ItemIsSelectable;
    }
    if (canBeRenamed(node.kind))
        flags |= Qt::ItemIsEditable;
    if (isOrdered(node.kind) || node.kind == Kind::keyword)
        flags |= Qt::ItemIsDragEnabled;
    if (flags != item.flags()) // else a name that is being typed would be put back
        item.setFlags(flags);
}

void Sidebar::showSource()
{
    if (!desktop_.store().source() && isKeyword(currentItem()))
        return; // its photos are searched for among all
    auto* const item = itemOf(korvo::keyOf(desktop_.store().source())); // none for a photo's versions
    if (item == currentItem())
        return;
    filling_ = true;
    setCurrentItem(item);
    filling_ = false;
    window_.commands().refresh(); // which have heard of the source before its line was the current one
}

QTreeWidgetItem* Sidebar::itemOf(const SidebarKey& key) const
{
    for (QTreeWidgetItemIterator at(invisibleRootItem()); *at; ++at)
        if (keyOf(**at) == key)
            return *at;
    return nullptr;
}

void Sidebar::choose(QTreeWidgetItem* item, QTreeWidgetItem* before)
{
    if (filling_ || !item)
        return;
    const auto key = keyOf(*item);
    if (isKeyword(item) || isKeyword(before)) // the search for one ends when another line is chosen
        searchKeyword(isKeyword(item) ? utf8(item->text(0)) : "");
    if (const auto source = sourceOf(key); source && *source != desktop_.store().source())
        desktop_.attempt([&] { desktop_.store().chooseSource(*source); });
}

/// Or none any more.
void Sidebar::searchKeyword(const std::string& keyword)
{
    const auto before = std::exchange(searched_, keyword);
    if (keyword.empty())
        desktop_.search().end(before);
    else
        desktop_.search().searchAll(keyword);
}

void Sidebar::filter(const QString& text)
{
    if (filter_.isEmpty() && !text.isEmpty())
        openBeforeFilter_ = open();
    const bool ends = !filter_.isEmpty() && text.isEmpty();
    filter_ = text;
    const auto apply = [&](const auto& self, QTreeWidgetItem& item) -> bool {
        bool below = false;
        for (int i = 0; i < item.childCount(); ++i)
            below = self(self, *item.child(i)) || below;
        const bool shown = below || item.text(0).contains(text, Qt::CaseInsensitive);
        item.setHidden(!shown);
        if (below && !text.isEmpty())
            item.setExpanded(true);
        return shown;
    };
    for (int i = 0; i < topLevelItemCount(); ++i)
        apply(apply, *topLevelItem(i));
    if (ends)
        setOpen(openBeforeFilter_);
}

std::set<SidebarKey> Sidebar::open() const
{
    std::set<SidebarKey> keys;
    for (QTreeWidgetItemIterator at(invisibleRootItem()); *at; ++at)
        if ((*at)->isExpanded())
            keys.insert(keyOf(**at));
    return keys;
}

void Sidebar::setOpen(const std::set<SidebarKey>& keys)
{
    for (QTreeWidgetItemIterator at(invisibleRootItem()); *at; ++at)
        (*at)->setExpanded(keys.contains(keyOf(**at)));
}

std::string Sidebar::openLines() const
{
    std::string text;
    for (const auto& [kind, id] : filter_.isEmpty() ? open() : openBeforeFilter_)
        text += lineText({kind, id}) + " ";
    return text;
}

void Sidebar::restoreOpenLines(const std::string& text)
{
    std::set<SidebarKey> keys;
    for (const auto word : split(text, ' '))
        if (const auto key = parseLine(word))
            keys.insert(*key);
    if (!keys.empty())
        setOpen(keys);
}

std::optional<std::int64_t> Sidebar::chosenKeyword() const
{
    return isKeyword(currentItem()) ? std::optional(keyOf(*currentItem()).id) : std::nullopt;
}

/// Here the keys that take photos out mean the line, or nothing.
bool Sidebar::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride
        && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Delete) {
        event->accept();
        return true;
    }
    return QTreeWidget::event(event);
}

void Sidebar::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Delete) {
        const bool isAlone = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
        if (isAlone && currentItem())
            remove(*currentItem());
        return;
    }
    const bool isUp = event->key() == Qt::Key_Up;
    if (!(isUp || event->key() == Qt::Key_Down) || event->modifiers() != Qt::AltModifier || !currentItem())
        return QTreeWidget::keyPressEvent(event);
    desktop_.attempt([&] { stepLine(desktop_.store(), keyOf(*currentItem()), isUp ? -1 : 1); });
}

void Sidebar::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::RightButton) // which asks for a menu and chooses nothing
        QTreeWidget::mousePressEvent(event);
}

bool Sidebar::canRenameChosen() const
{
    return currentItem() && canBeRenamed(keyOf(*currentItem()).kind);
}

void Sidebar::renameChosen()
{
    if (canRenameChosen())
        editItem(currentItem(), 0);
}

void Sidebar::renamed(QTreeWidgetItem* item)
{
    if (filling_)
        return;
    desktop_.attempt([&] {
        renameLine(desktop_.store(), keyOf(*item), utf8(item->text(0)));
        if (isKeyword(item) && item == currentItem()) // what is searched for is called so now
            searchKeyword(utf8(item->text(0)));
    });
    refillTimer_.start(0); // a name that was refused goes back
}

void Sidebar::remove(const QTreeWidgetItem& item)
{
    const auto key = keyOf(item);
    const QString name = item.text(0);
    if (!canBeDeleted(key.kind) || !window_.commands().settle()) // as before every command
        return;
    desktop_.attempt([&] {
        if (key.kind == Kind::folder
            && !isRemovalWished(window_, name, desktop_.store().catalog().photosInFolder(key.id)))
            return;
        const auto source = sourceOf(key);
        const bool shown = source && *source == desktop_.store().source();
        deleteLine(desktop_.store(), key);
        if (shown)
            desktop_.store().chooseSource(std::nullopt);
        desktop_.say(key.kind == Kind::folder
                ? "Removed “" + utf8(name) + "” from the library. Its files stay."
                : "Deleted “" + utf8(name) + "”.",
            Offer::undo);
    });
}

} // namespace korvo
