#include "app/Session.h"

#include "platform/FileDefaults.h"
#include "tests/support/FakeProcessLauncher.h"
#include "tests/support/ManualMainThread.h"
#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

namespace korvo {

TEST(Session, readsWhatIsUnreadFromTheStartOnAndAgainWhenPhotosAreAdded)
{
    TestLibrary library;
    ManualMainThread main;
    FileDefaults defaults(library.folder / "config");
    FakeProcessLauncher launcher;
    const ExifTool tool(launcher, {});
    const auto add = [&](Catalog& catalog, const std::string& name) {
        NewPhoto photo{.path
            = library.folder.write(name, readFile(std::string(KORVO_TEST_DATA) + "/metadata/camera.jpg"))};
        return catalog.addPhotos(std::span(&photo, 1)).front().id;
    };
    const auto first = add(*library.catalog, "a.jpg");
    Session session(main, std::move(library.catalog), tool, defaults);
    const auto isRead = [&](PhotoID id) {
        const auto* const photo = session.store().list().find(id);
        return photo && !photo->camera.empty() && photo->latitude;
    };
    EXPECT_FALSE(isRead(first)) << "opening does not wait for files";
    EXPECT_TRUE(main.runUntil([&] {
        return isRead(first) && !session.backfills().exifBackfillRunning()
            && !session.backfills().locationBackfillRunning();
    }));
    const auto second = add(session.store().catalog(), "b.jpg");
    session.photosAdded();
    EXPECT_TRUE(main.runUntil([&] { return isRead(second); }));
}

} // namespace korvo
