#include "catalog/store/ReadList.h"

#include "catalog/CatalogErrors.h"
#include "catalog/LibraryReading.h"
#include "catalog/SourceQuery.h"
#include "catalog/Stacks.h"
#include "catalog/sql/Database.h"
#include "catalog/store/AllPhotos.h"

namespace korvo {

ReadList readList(Database& database, const std::optional<LibrarySource>& source,
    const std::function<ListArrangement()>& arrangement, const std::stop_token& stop)
{
    ReadList read;
    database.exec("BEGIN"); // the photos and their stacks are those of one moment
    read.list.setStacks(stacksIn(database));
    std::vector<PhotoItem> items;
    try {
        items = source ? photosIn(database, source, stop) : allPhotos(database, stop);
    } catch (const SmartAlbumError& error) {
        read.fault = error.what(); // the album stays to be mended in the editor, and lists nothing till then
    } catch (const NotFoundError& error) {
        read.fault = error.what(); // it was deleted while it was shown; undo may bring it back
    }
    database.exec("COMMIT"); // the log is not held back while they are put in order
    read.list.wish(arrangement());
    read.list.assign(std::move(items), listedBy(source), stop);
    return read;
}

} // namespace korvo
