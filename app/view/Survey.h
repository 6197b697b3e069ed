#pragma once

#include "catalog/store/LibraryStore.h"

namespace korvo {

/// The most photos that are surveyed at once.
inline constexpr std::size_t mostSurveyed = 60;

/// The selected photos in the order of the grid, as many as can be looked at.
std::vector<PhotoID> surveyed(const LibraryStore& store);

/// A photo's place, in pixels.
struct SurveyCell {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
};

struct SurveyRoom {
    int width = 0;
    int height = 0;
};

/// Where so many photos have their places in the room, row by row, each as large as can be for photos of the
/// usual shape; the last row may have fewer and is in the middle.
std::vector<SurveyCell> surveyCells(std::size_t count, SurveyRoom room);

} // namespace korvo
