#pragma once

#include "catalog/PhotoItem.h"

#include <stop_token>
#include <vector>

namespace korvo {

class Database;

/// All masters by their ids, which takes as long as reading the whole table does: many are read on two
/// threads, the later half on a connection of its own, which may see what was committed since the first
/// began. After a stop request what it returns means nothing. Throws DatabaseError.
std::vector<PhotoItem> allPhotos(Database& database, const std::stop_token& stop = {});

} // namespace korvo
