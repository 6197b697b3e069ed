#include "app/desktop/Texts.h"
#include "app/desktop/Theme.h"
#include "app/desktop/grid/GridView.h"
#include "app/desktop/photos/Glyphs.h"
#include "app/desktop/photos/Marks.h"
#include "app/desktop/window/MainWindow.h"
#include "app/desktop/window/Parts.h"

#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QSlider>
#include <QToolBar>
#include <QToolButton>

namespace korvo {

namespace {

QIcon icon(const QPainterPath& glyph, const QColor& color, const QSize& size)
{
    QPixmap picture(size * 2);
    picture.setDevicePixelRatio(2);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(glyph, color);
    return picture;
}

/// The toolbar's parts and what they ask for together.
class Toolbar : public QToolBar {
public:
    explicit Toolbar(MainWindow& window);

private:
    void addSearch();
    void addStars();
    void addFlagAndReject();
    void addLabels();
    void addKind();
    void addFilterAndSort();
    void addClear();
    void addSize();
    Search& searching() const { return window_.desktop().search(); }
    const SearchFilter& asked() const { return searching().asked(); }
    void showRejected(bool only);
    void clear();
    bool isAsked() const;
    void arrange();
    void showAsked();
    void showArrangement();
    QToolButton* addButton(const QString& text, const QIcon& icon, const QString& help);

    MainWindow& window_;
    QLineEdit* search_ = nullptr;
    std::vector<QToolButton*> stars_;
    QToolButton* flag_ = nullptr;
    QToolButton* reject_ = nullptr;
    QToolButton* labels_ = nullptr;
    QComboBox* kind_ = nullptr;
    QComboBox* filter_ = nullptr;
    std::optional<GridFilter> beforeRejected_ = ListArrangement().filter; // to come back to
    QComboBox* sort_ = nullptr;
    QTimer typed_; // searching a large library waits for the end of a word
    Connection storeChanged_, searchChanged_, sizeChanged_;
};

Toolbar::Toolbar(MainWindow& window) : QToolBar("Toolbar"), window_(window)
{
    setObjectName("toolbar");
    setMovable(false);
    setContextMenuPolicy(Qt::PreventContextMenu);
    addAction(window_.commands().action(Command::importPhotos));
    addSearch();
    addStars();
    addFlagAndReject();
    addLabels();
    addKind();
    addFilterAndSort();
    addClear();
    addSize();
    showAsked();
    showArrangement();
    searchChanged_ = searching().changed.connect([this] {
        showAsked();
        window_.commands().refresh();
    });
    storeChanged_ = window_.desktop().store().changed.connect([this](const LibraryChange& change) {
        if (change.list)
            showArrangement();
    });
}

void Toolbar::addSearch()
{
    search_ = new QLineEdit;
    search_->setObjectName("search");
    search_->setPlaceholderText("Search");
    search_->setAccessibleName("Search");
    search_->setToolTip("Words in names, texts, keywords, people, cameras and lenses (Ctrl+F)");
    search_->setClearButtonEnabled(true);
    search_->setMinimumWidth(110);
    search_->setMaximumWidth(260);
    addWidget(search_);
    typed_.setSingleShot(true);
    connect(search_, &QLineEdit::textChanged, this, [this](const QString& words) {
        searching().type(utf8(words));
        typed_.start(150);
    });
    connect(&typed_, &QTimer::timeout, this, [this] { searching().ask(searching().asked()); });
    window_.commands().handle(Command::find, [this] {
        search_->setFocus();
        search_->selectAll();
    });
}

QToolButton* Toolbar::addButton(const QString& text, const QIcon& picture, const QString& help)
{
    auto* const button = new QToolButton;
    button->setAutoRaise(true);
    button->setIcon(picture);
    button->setIconSize({16, 16});
    button->setToolTip(help);
    button->setAccessibleName(text);
    button->setFocusPolicy(Qt::TabFocus);
    addWidget(button);
    return button;
}

void Toolbar::addStars()
{
    for (int stars = 1; stars <= highestRating; ++stars) {
        const QString help = "Only " + qt(ratingText(stars)) + (stars < highestRating ? " or more" : "");
        auto* const button = addButton(help, {}, help + "; again: all");
        button->setFixedWidth(20);
        stars_.push_back(button);
        connect(button, &QToolButton::clicked, this, [this, stars] {
            auto filter = asked();
            filter.leastStars = asked().leastStars == stars ? 0 : stars;
            searching().ask(std::move(filter));
        });
    }
}

void Toolbar::addFlagAndReject()
{
    flag_ = addButton("Flagged only", icon(flagGlyph({1, 1, 14, 14}), theme::flag, {16, 16}), "Only flagged");
    reject_ = addButton(
        "Rejected only", icon(crossGlyph({2, 2, 12, 12}), theme::warning, {16, 16}), "Only rejected");
    for (auto* const button : {flag_, reject_})
        button->setCheckable(true);
    connect(flag_, &QToolButton::clicked, this, [this](bool on) {
        auto filter = asked();
        filter.flaggedOnly = on;
        searching().ask(std::move(filter));
    });
    connect(reject_, &QToolButton::clicked, this, [this](bool on) { showRejected(on); });
}

/// The usual filter hides the rejected, so that this takes its place until it is taken back.
void Toolbar::showRejected(bool only)
{
    auto& store = window_.desktop().store();
    if (only)
        beforeRejected_ = store.list().filter();
    store.arrange(store.list().sortKey(), only ? GridFilter::rejected : beforeRejected_);
}

void Toolbar::addLabels()
{
    labels_ = addButton("Labels", {}, "Only photos with these labels");
    labels_->setText("Label");
    labels_->setPopupMode(QToolButton::InstantPopup);
    labels_->setCheckable(true);
    auto* const menu = new QMenu(labels_);
    for (int number = 1; number < static_cast<int>(photoLabelNames.size()); ++number) {
        const auto label = static_cast<PhotoLabel>(number);
        auto* const action = menu->addAction(labelIcon(label), qt(name(label)));
        action->setCheckable(true);
        action->setData(number);
        connect(action, &QAction::triggered, this, [this, label](bool on) {
            auto filter = asked();
            if (on)
                filter.labels.insert(label);
            else
                filter.labels.erase(label);
            searching().ask(std::move(filter));
        });
    }
    labels_->setMenu(menu);
}

void Toolbar::addKind()
{
    kind_ = new QComboBox;
    kind_->setAccessibleName("Kind");
    kind_->addItems({"All Kinds", "Photos", "Videos"});
    connect(kind_, &QComboBox::activated, this, [this](int index) {
        auto filter = asked();
        filter.kind = static_cast<SearchFilter::Kind>(index);
        searching().ask(std::move(filter));
    });
    addWidget(kind_);
}

void Toolbar::addFilterAndSort()
{
    filter_ = new QComboBox;
    filter_->setAccessibleName("Filter");
    filter_->setToolTip("Which photos are shown");
    filter_->addItem("All", -1);
    for (const auto& [filter, name] : casesOf<GridFilter>)
        filter_->addItem(qt(titleOf(filter)), static_cast<int>(filter));
    sort_ = new QComboBox;
    sort_->setAccessibleName("Order");
    sort_->setToolTip("The order of the photos");
    sort_->addItem("As in the Source", -1);
    for (const auto& [key, name] : casesOf<SortKey>)
        sort_->addItem(qt(titleOf(key)), static_cast<int>(key));
    for (auto* const box : {filter_, sort_}) {
        box->setSizeAdjustPolicy(QComboBox::AdjustToContents);
        connect(box, &QComboBox::activated, this, [this] { arrange(); });
        addWidget(box);
    }
}

void Toolbar::addClear()
{
    auto& commands = window_.commands();
    commands.handle(
        Command::clearFilters, [this] { clear(); }, [this] { return isAsked(); });
    auto* const action = commands.action(Command::clearFilters);
    auto* const button = addButton("Clear", {}, "No search, and the usual filter alone");
    button->setText("Clear");
    const auto follow = [action, button] { button->setEnabled(action->isEnabled()); };
    connect(action, &QAction::changed, button, follow);
    connect(button, &QToolButton::clicked, action, &QAction::trigger);
    follow();
}

/// Whether anything but the usual filter hides photos.
bool Toolbar::isAsked() const
{
    return asked() != SearchFilter() || window_.desktop().store().list().filter() != ListArrangement().filter;
}

void Toolbar::clear()
{
    auto& store = window_.desktop().store();
    store.arrange(store.list().sortKey(), ListArrangement().filter);
    searching().ask({});
}

void Toolbar::arrange()
{
    const int filter = filter_->currentData().toInt();
    const int key = sort_->currentData().toInt();
    window_.desktop().store().arrange(key < 0 ? std::nullopt : std::optional(static_cast<SortKey>(key)),
        filter < 0 ? std::nullopt : std::optional(static_cast<GridFilter>(filter)));
}

void Toolbar::showArrangement()
{
    const auto& list = window_.desktop().store().list();
    const auto number = [](const auto& value) { return value ? static_cast<int>(*value) : -1; };
    filter_->setCurrentIndex(filter_->findData(number(list.filter())));
    sort_->setCurrentIndex(sort_->findData(number(list.sortKey())));
    reject_->setChecked(list.filter() == GridFilter::rejected);
}

void Toolbar::addSize()
{
    auto* const grid = &window_.grid();
    auto* const size = new QSlider(Qt::Horizontal);
    size->setAccessibleName("Thumbnail size");
    size->setToolTip("Size of the thumbnails (Ctrl and the wheel)");
    size->setRange(GridView::smallest, GridView::largest);
    size->setValue(grid->thumbnailSize());
    size->setMaximumWidth(120);
    connect(size, &QSlider::valueChanged, grid, [grid](int value) { grid->setThumbnailSize(value); });
    sizeChanged_ = grid->thumbnailSizeChanged.connect([size](int value) { size->setValue(value); });
    auto* const space = new QWidget;
    space->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    addWidget(space);
    addWidget(size);
}

void Toolbar::showAsked()
{
    if (const auto words = qt(asked().words); words != search_->text())
        search_->setText(words);
    typed_.stop(); // they are asked for
    for (std::size_t i = 0; i < stars_.size(); ++i)
        stars_[i]->setIcon(icon(starGlyph({0, 0, 16, 16}),
            static_cast<int>(i) < asked().leastStars ? theme::star : QColor(0x70, 0x70, 0x70), {16, 16}));
    flag_->setChecked(asked().flaggedOnly);
    for (auto* const action : labels_->menu()->actions())
        action->setChecked(asked().labels.contains(static_cast<PhotoLabel>(action->data().toInt())));
    labels_->setChecked(!asked().labels.empty());
    kind_->setCurrentIndex(static_cast<int>(asked().kind));
}

} // namespace

void addToolbar(MainWindow& window)
{
    window.addToolBar(new Toolbar(window));
}

} // namespace korvo
