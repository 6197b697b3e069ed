#pragma once

#include "catalog/store/LibraryStore.h"

#include <map>
#include <set>
#include <string>

namespace korvo {

/// The photos that lie in the folder are those up to this one.
inline constexpr PhotoID lastInFolder = 5;

struct ModelPhoto {
    int rating = 0;
    bool flagged = false;
    int label = 0;
    std::string title, caption, altText, creator, copyright;
    std::string keywords;
    double exposure = 0;
    std::int64_t project = 0; // 0: none
    bool operator==(const ModelPhoto&) const = default;
};

struct ModelProject {
    std::string name;
    std::int64_t parent = 0;
    bool operator==(const ModelProject&) const = default;
};

/// A library that is plain enough to be right: maps of what each photo, album and project holds.
struct Model {
    std::map<PhotoID, ModelPhoto> photos;
    std::map<std::int64_t, std::set<PhotoID>> albums;
    std::map<std::int64_t, ModelProject> projects;
    std::map<std::int64_t, int> smartAlbums; // the least rating of each
    bool hasFolder = true; // which holds the first photos
    bool operator==(const Model&) const = default;

    bool liesIn(std::int64_t project, std::int64_t outer) const;
    bool lists(const LibrarySource& source, PhotoID id) const;
    std::set<PhotoID> in(const std::optional<LibrarySource>& source) const;
    void remove(PhotoID id);
};

ModelPhoto modelOf(const PhotoItem& item);
/// What a reader without a history finds.
Model modelOf(Catalog& catalog);

} // namespace korvo
