#include "app/view/Survey.h"

#include <algorithm>

namespace korvo {

namespace {

constexpr int spacing = 4;

/// The size that a photo of 3 by 2 has in a cell.
double photoIn(int columns, int rows, SurveyRoom room)
{
    return std::min(room.width / columns / 3.0, room.height / rows / 2.0);
}

int bestColumns(int count, SurveyRoom room)
{
    int best = 1;
    const auto rowsOf = [count](int columns) { return (count + columns - 1) / columns; };
    for (int columns = 2; columns <= count; ++columns)
        if (photoIn(columns, rowsOf(columns), room) > photoIn(best, rowsOf(best), room))
            best = columns;
    return best;
}

} // namespace

std::vector<PhotoID> surveyed(const LibraryStore& store)
{
    std::vector<std::pair<std::size_t, PhotoID>> places;
    for (const PhotoID id : store.selection())
        if (const auto place = store.list().shownPosition(id))
            places.emplace_back(*place, id);
    std::ranges::sort(places);
    std::vector<PhotoID> photos;
    for (const auto& [place, id] : places)
        if (photos.size() < mostSurveyed)
            photos.push_back(id);
    return photos;
}

std::vector<SurveyCell> surveyCells(std::size_t count, SurveyRoom room)
{
    const int total = static_cast<int>(count);
    const int columns = bestColumns(total, room), rows = std::max(1, (total + columns - 1) / columns);
    const int width = (room.width - spacing * (columns - 1)) / columns;
    const int height = (room.height - spacing * (rows - 1)) / rows;
    std::vector<SurveyCell> cells;
    for (int i = 0; i < total; ++i) {
        const int row = i / columns, inRow = std::min(columns, total - row * columns);
        const int used = inRow * width + (inRow - 1) * spacing;
        cells.push_back({(room.width - used) / 2 + i % columns * (width + spacing), row * (height + spacing),
            width, height});
    }
    return cells;
}

} // namespace korvo
