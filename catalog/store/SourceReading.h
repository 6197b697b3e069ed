#pragma once

#include "catalog/store/PhotoList.h"

#include <functional>
#include <stop_token>

namespace korvo {

class Database;
struct LibrarySource;

/// The photos of a source as they were read.
struct ListOfSource {
    PhotoList list;
    std::optional<std::string> fault; ///< why the source cannot be listed; the list is empty then
};

/// Reads the photos of a source into a list that is ready to be shown. How is asked when they are there.
/// Throws Stopped or DatabaseError after a stop request.
ListOfSource readSource(Database& database, const std::optional<LibrarySource>& source,
    const std::function<ListArrangement()>& arrangement, const std::stop_token& stop = {});

/// All masters by their ids, which takes as long as reading the whole table does: many are read on two
/// threads, the later half on a connection of its own, which may see what was committed since the first
/// began. After a stop request what it returns means nothing. Throws DatabaseError.
std::vector<PhotoItem> allPhotos(Database& database, const std::stop_token& stop = {});

} // namespace korvo
