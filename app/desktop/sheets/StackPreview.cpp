#include "app/desktop/sheets/StackPreview.h"

#include "app/desktop/Texts.h"
#include "base/Text.h"

#include <QAbstractListModel>
#include <QPainter>
#include <QStyledItemDelegate>

namespace korvo {

namespace {

constexpr int side = 72; // of a thumbnail
constexpr int gap = 6;

} // namespace

class StackPreview::Model : public QAbstractListModel {
public:
    explicit Model(StackPreview& view) : QAbstractListModel(&view), view_(view) { }

    int rowCount(const QModelIndex& parent) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(view_.plan_.groups().size());
    }

    QVariant data(const QModelIndex& index, int role) const override
    {
        if (role != Qt::AccessibleTextRole)
            return {};
        return qt(counted(view_.plan_.groups()[static_cast<std::size_t>(index.row())].count, "photo"));
    }

    void change(AutoStackPlan plan)
    {
        beginResetModel();
        view_.plan_ = std::move(plan);
        endResetModel();
    }

private:
    StackPreview& view_;
};

class StackPreview::Delegate : public QStyledItemDelegate {
public:
    explicit Delegate(StackPreview& view) : QStyledItemDelegate(&view), view_(view) { }

    QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const override
    {
        return {side * 3, side + 2 * gap};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        const auto& group = view_.plan_.groups()[static_cast<std::size_t>(index.row())];
        const auto photos = view_.plan_.photos(group);
        QRect place(option.rect.left() + gap, option.rect.top() + gap, side, side);
        const auto room = static_cast<std::size_t>(std::max(1, (option.rect.width() - gap) / (side + gap)));
        const auto shown = photos.size() <= room ? photos.size() : room - 1;
        for (const auto id : photos.first(shown)) {
            paintPhoto(*painter, place, id, id == group.pick, option.palette);
            place.translate(side + gap, 0);
        }
        if (shown < photos.size()) {
            painter->setPen(option.palette.color(QPalette::Text));
            painter->drawText(place, Qt::AlignCenter, QString("+%1").arg(photos.size() - shown));
        }
    }

private:
    void paintPhoto(
        QPainter& painter, const QRect& place, PhotoID id, bool isPick, const QPalette& palette) const
    {
        painter.fillRect(place, palette.color(QPalette::AlternateBase));
        const PhotoItem* const item = view_.desktop_.store().list().find(id);
        if (!item)
            return;
        paintThumbnail(painter, place,
            view_.thumbnails_.picture(item->path(), view_.devicePixelRatioF(), item->editsJSON));
        if (!isPick)
            return;
        painter.setPen(QPen(palette.color(QPalette::Highlight), 2));
        painter.drawRect(place.adjusted(1, 1, -1, -1));
    }

    StackPreview& view_;
};

StackPreview::StackPreview(Desktop& desktop)
    : desktop_(desktop), plan_(std::span<const AutoStackShot>(), 0),
      thumbnails_(desktop.pictures(), side, [this] { viewport()->update(); }), model_(new Model(*this))
{
    setModel(model_);
    setItemDelegate(new Delegate(*this));
    setUniformItemSizes(true);
    setSelectionMode(NoSelection);
    setVerticalScrollMode(ScrollPerPixel);
    setAccessibleName(QObject::tr("Stacks"));
}

StackPreview::~StackPreview() = default;

void StackPreview::show(AutoStackPlan plan)
{
    model_->change(std::move(plan));
}

} // namespace korvo
