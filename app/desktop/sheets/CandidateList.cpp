#include "app/desktop/sheets/CandidateList.h"

#include "app/desktop/Labels.h"
#include "app/desktop/Texts.h"
#include "app/desktop/Theme.h"
#include "imports/ImportWindow.h"

#include <QAbstractListModel>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyledItemDelegate>

namespace korvo {

namespace {

constexpr int side = 148; // of a thumbnail
constexpr int margin = 8;
constexpr int markSize = 20;

QRect thumbnailPlace(const QRect& cell)
{
    return {cell.left() + margin, cell.top() + margin, side, side};
}

/// The place of the mark, with a little around it to hit.
QRect markPlace(const QRect& cell)
{
    return QRect(thumbnailPlace(cell).topLeft(), QSize(markSize, markSize)).translated(4, 4);
}

void paintMark(QPainter& painter, const QRect& place, bool picked, const QPalette& palette)
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Qt::white, 1.5));
    painter.setBrush(picked ? palette.color(QPalette::Highlight) : QColor(0, 0, 0, 140));
    painter.drawRoundedRect(QRectF(place).adjusted(1, 1, -1, -1), 4, 4);
    if (!picked)
        return;
    painter.setPen(QPen(palette.color(QPalette::HighlightedText), 2));
    const auto at = [&](double x, double y) {
        return QPointF(place.x() + x * place.width(), place.y() + y * place.height());
    };
    const QPointF tick[] = {at(.27, .52), at(.44, .7), at(.75, .32)};
    painter.drawPolyline(tick, 3);
}

void paintBadge(QPainter& painter, const QRect& thumbnail, const QString& text)
{
    const auto width = painter.fontMetrics().horizontalAdvance(text) + 10;
    const auto height = painter.fontMetrics().height() + 2;
    const QRect place(thumbnail.right() - width - 3, thumbnail.bottom() - height - 3, width, height);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme::plate);
    painter.drawRoundedRect(place, 4, 4);
    painter.setPen(Qt::white);
    painter.drawText(place, Qt::AlignCenter, text);
}

} // namespace

class CandidateList::Model : public QAbstractListModel {
public:
    explicit Model(CandidateList& view) : QAbstractListModel(&view), view_(view) { }

    int rowCount(const QModelIndex& parent) const override
    {
        return parent.isValid() || !view_.listing_ ? 0 : static_cast<int>(view_.listing_->candidates.size());
    }

    QVariant data(const QModelIndex& index, int role) const override
    {
        const auto& candidate = view_.candidate(index);
        if (role == Qt::ToolTipRole || role == Qt::AccessibleTextRole) {
            const QString text = qt(summary(candidate)) + "\n" + qt(rowText(candidate));
            return role == Qt::ToolTipRole ? plainToolTip(text) : text;
        }
        if (role == Qt::CheckStateRole)
            return candidate.picked ? Qt::Checked : Qt::Unchecked;
        return {};
    }

    void change(ImportListing* listing)
    {
        beginResetModel();
        view_.listing_ = listing;
        endResetModel();
    }

private:
    CandidateList& view_;
};

class CandidateList::Delegate : public QStyledItemDelegate {
public:
    explicit Delegate(CandidateList& view) : QStyledItemDelegate(&view), view_(view) { }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const override
    {
        return {side + 2 * margin, side + 2 * margin + 2 * option.fontMetrics.height() + 4};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        painter->save();
        const auto& candidate = view_.candidate(index);
        const auto place = thumbnailPlace(option.rect);
        if (option.state & QStyle::State_Selected)
            painter->fillRect(option.rect.adjusted(2, 2, -2, -2), theme::selectedCell);
        if (!candidate.picked)
            painter->setOpacity(0.45);
        paintPicture(*painter, place, candidate, option.palette);
        painter->setOpacity(1);
        paintMark(*painter, markPlace(option.rect), candidate.picked, option.palette);
        if (candidate.isDuplicate)
            paintBadge(*painter, place, qt(importWindow::inLibrary));
        paintTexts(*painter, option, candidate);
        if (option.state & QStyle::State_HasFocus) {
            painter->setPen(option.palette.color(QPalette::Highlight));
            painter->setBrush(Qt::NoBrush);
            painter->drawRect(option.rect.adjusted(2, 2, -3, -3));
        }
        painter->restore();
    }

private:
    void paintPicture(
        QPainter& painter, const QRect& place, const Candidate& candidate, const QPalette& palette) const
    {
        const auto file = view_.pictureOf_(candidate.file);
        const auto picture = file ? view_.thumbnails_.picture(*file, view_.devicePixelRatioF()) : QPixmap();
        if (!picture.isNull()) {
            paintThumbnail(painter, place, picture);
            return;
        }
        painter.fillRect(place, palette.color(QPalette::AlternateBase));
        painter.setPen(palette.color(QPalette::PlaceholderText));
        if (!file || view_.thumbnails_.isBroken(*file))
            painter.drawText(
                place, Qt::AlignCenter, qt(candidate.file.path.extension().native()).mid(1).toUpper());
    }

    static void paintTexts(QPainter& painter, const QStyleOptionViewItem& option, const Candidate& candidate)
    {
        const auto place = thumbnailPlace(option.rect);
        QRect line(place.left(), place.bottom() + 4, place.width(), option.fontMetrics.height());
        painter.setPen(option.palette.color(QPalette::Text));
        painter.drawText(line, Qt::AlignCenter,
            option.fontMetrics.elidedText(
                qt(candidate.file.path.filename().native()), Qt::ElideMiddle, line.width()));
        line.translate(0, line.height());
        if (!(option.state & QStyle::State_Selected)) // on whose ground it could not be read
            painter.setPen(option.palette.color(QPalette::PlaceholderText));
        painter.drawText(line, Qt::AlignCenter, qt(rowText(candidate)));
    }

    CandidateList& view_;
};

CandidateList::CandidateList(Pictures& pictures, std::function<void()> picked)
    : thumbnails_(pictures, side, [this] { viewport()->update(); }), picked_(std::move(picked)),
      model_(new Model(*this))
{
    setModel(model_);
    setItemDelegate(new Delegate(*this));
    setFlow(LeftToRight);
    setWrapping(true);
    setResizeMode(Adjust);
    setUniformItemSizes(true);
    setSelectionMode(ExtendedSelection);
    setVerticalScrollMode(ScrollPerPixel);
    setFrameShape(NoFrame);
    setAccessibleName(QObject::tr("Photos and videos to import"));
}

CandidateList::~CandidateList() = default;

void CandidateList::show(ImportListing* listing, PictureOf pictureOf)
{
    thumbnails_.clear();
    pictureOf_ = std::move(pictureOf);
    model_->change(listing);
}

Candidate& CandidateList::candidate(const QModelIndex& index) const
{
    return listing_->candidates[static_cast<std::size_t>(index.row())];
}

/// All selected ones follow the one that was meant.
void CandidateList::toggle(const QModelIndex& index)
{
    const bool wanted = !candidate(index).picked;
    candidate(index).picked = wanted;
    if (selectionModel()->isSelected(index))
        for (const auto& other : selectionModel()->selectedIndexes())
            candidate(other).picked = wanted;
    refresh();
    picked_();
}

void CandidateList::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Space && currentIndex().isValid())
        toggle(currentIndex());
    else
        QListView::keyPressEvent(event);
}

void CandidateList::mousePressEvent(QMouseEvent* event)
{
    const auto index = indexAt(event->position().toPoint());
    if (event->button() == Qt::LeftButton && index.isValid()
        && markPlace(visualRect(index)).adjusted(-4, -4, 4, 4).contains(event->position().toPoint()))
        toggle(index);
    else
        QListView::mousePressEvent(event);
}

} // namespace korvo
