#pragma once

#include "catalog/sql/Database.h"

#include <string>
#include <string_view>

namespace korvo {

/// The statement that makes `photos` in its first form.
std::string firstPhotosTable();

/// Adds a column to a table; nothing happens when it exists. `definition` begins with the column's name.
void addColumn(Database& database, std::string_view table, std::string_view definition);

/// Builds `photos` anew without the UNIQUE constraint of its first form, so that versions can share their
/// master's file, keeping every row and every column the table holds. Runs inside a transaction with foreign
/// keys off.
void rebuildPhotos(Database& database);

/// Whether `photos` still refers to the temporary name that an earlier program's rebuild gave it.
bool photosIsHalfRebuilt(Database& database);

} // namespace korvo
