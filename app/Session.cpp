#include "app/Session.h"

namespace korvo {

Session::Session(MainThread& main, std::unique_ptr<Catalog> catalog, const ExifTool& tool, Defaults& defaults,
    std::chrono::milliseconds patience)
    : store_(main, std::move(catalog), patience), writeBack_(main, store_, tool, defaults),
      backfills_(main, store_)
{
    readWhatIsNew();
}

void Session::photosAdded()
{
    store_.reload();
    readWhatIsNew();
}

void Session::photosAdded(std::string_view verb, AddedRows added, std::uint64_t since)
{
    store_.adopt(verb, std::move(added), since);
    readWhatIsNew();
}

void Session::readWhatIsNew()
{
    backfills_.startExifBackfill();
    backfills_.startLocationBackfill();
}

} // namespace korvo
