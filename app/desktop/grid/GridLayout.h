#pragma once

#include <QRect>

#include <algorithm>
#include <cstddef>
#include <optional>

namespace korvo {

/// Where the cells of a grid lie: rows of equal cells, as many in a row as fit, centred. Positions are in
/// device-independent pixels from the top of the first row.
struct GridLayout {
    int width = 1; ///< of the place there is
    QSize cell{1, 1};
    std::size_t count = 0;

    int columns() const { return std::max(1, width / cell.width()); }
    int rows() const { return static_cast<int>((count + perRow() - 1) / perRow()); }
    int height() const { return rows() * cell.height(); }

    QRect rect(std::size_t index) const
    {
        const int row = static_cast<int>(index / perRow());
        const int column = static_cast<int>(index % perRow());
        return {margin() + column * cell.width(), row * cell.height(), cell.width(), cell.height()};
    }

    std::optional<std::size_t> indexAt(QPoint point) const
    {
        const int x = point.x() - margin();
        if (x < 0 || point.y() < 0 || x >= columns() * cell.width())
            return std::nullopt;
        const auto index = static_cast<std::size_t>(point.y() / cell.height()) * perRow()
            + static_cast<std::size_t>(x / cell.width());
        return index < count ? std::optional(index) : std::nullopt;
    }

    /// The cells that lie in part between two heights: from the first to one behind the last.
    std::pair<std::size_t, std::size_t> between(int top, int bottom) const
    {
        const auto row = [&](int y) { return static_cast<std::size_t>(std::max(0, y) / cell.height()); };
        const auto first = std::min(count, row(top) * perRow());
        return {first, std::max(first, std::min(count, (row(bottom) + 1) * perRow()))};
    }

private:
    std::size_t perRow() const { return static_cast<std::size_t>(columns()); }
    int margin() const { return std::max(0, (width - columns() * cell.width()) / 2); }
};

} // namespace korvo
