#include "catalog/ReadList.h"

#include "catalog/CatalogErrors.h"
#include "catalog/Database.h"
#include "catalog/LibraryReading.h"

namespace korvo {

ReadList readList(Database& database, const std::optional<LibrarySource>& source, const PhotoList& like,
    const std::stop_token& stop)
{
    ReadList read{like.emptied(), std::nullopt};
    database.exec("BEGIN"); // the photos and their stacks are those of one moment
    read.list.setStacks(stacksIn(database));
    std::vector<PhotoItem> items;
    try {
        items = photosIn(database, source, stop);
    } catch (const SmartAlbumError& error) {
        read.fault = error.what(); // the album stays to be mended in the editor, and lists nothing till then
    } catch (const NotFoundError& error) {
        read.fault = error.what(); // it was deleted while it was shown; undo may bring it back
    }
    if (!stop.stop_requested())
        read.list.assign(std::move(items), listedBy(source));
    return read;
}

} // namespace korvo
