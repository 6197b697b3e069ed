#pragma once

#include "catalog/Catalog.h"
#include "catalog/store/Background.h"

namespace korvo {

/// Makes what runs through the connection end with a DatabaseError once a stop is requested, also in the
/// middle of a long statement. The token must outlive the connection.
inline void endWith(Database& database, const std::stop_token& stop)
{
    constexpr int steps = 10'000; // of SQLite's machine, a fraction of a millisecond
    sqlite3_progress_handler(
        database.handle(), steps,
        [](void* token) { return int(static_cast<const std::stop_token*>(token)->stop_requested()); },
        const_cast<std::stop_token*>(&stop));
}

/// Something that is read from the library in the background, on a connection of its own. What is committed
/// after its making may be missing there.
template <typename Result>
class BackgroundReading : public Background<Result> {
public:
    using Read = std::function<Result(Database&, const std::stop_token&)>;

    /// As Background; `catalog` must outlive this too.
    BackgroundReading(MainThread& main, const Catalog& catalog, Read read, std::function<void()> ended)
        : Background<Result>(
            main,
            [&catalog, read = std::move(read)](const std::stop_token& stop) {
                auto database = catalog.lookingConnection();
                endWith(database, stop);
                return read(database, stop);
            },
            std::move(ended))
    { }
};

} // namespace korvo
