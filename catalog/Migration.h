#pragma once

#include "catalog/sql/Database.h"

namespace korvo {

/// The schema version this program writes; a catalog of a later one is refused.
inline constexpr std::int64_t currentSchemaVersion = 14;

/// Throws DatabaseError (open) when the catalog was written by a later version of the program.
void refuseNewerSchema(Database& database);

/// Brings a catalog of any earlier version, a new file included, to the current schema, one committed step
/// after the other, and repairs what an interrupted rebuild of `photos` left. Throws DatabaseError; the
/// version is then that of the last step that was completed.
void migrate(Database& database);

} // namespace korvo
