#pragma once

#include "catalog/store/PhotoList.h"

#include <functional>
#include <stop_token>

namespace korvo {

class Database;
struct LibrarySource;

/// The photos of a source as they were read.
struct ReadList {
    PhotoList list;
    std::optional<std::string> fault; ///< why the source cannot be listed; the list is empty then
};

/// Reads the photos of a source into a list that is ready to be shown. How is asked when they are there.
/// Throws Stopped or DatabaseError after a stop request.
ReadList readList(Database& database, const std::optional<LibrarySource>& source,
    const std::function<ListArrangement()>& arrangement, const std::stop_token& stop = {});

} // namespace korvo
