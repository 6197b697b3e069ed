#pragma once

#include "metadata/MetadataWriteBack.h"
#include "platform/FileDefaults.h"
#include "tests/metadata/FakeExifTool.h"
#include "tests/support/ManualMainThread.h"
#include "tests/support/StoreActions.h"
#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

#include <optional>

namespace korvo {

/// An open library of photos "1.jpg", "2.jpg" ... that nobody has described yet.
struct OpenLibrary : TestLibrary {
    explicit OpenLibrary(int count, const std::string& where = "photos", const ExifTool* tool = nullptr)
    {
        for (int i = 1; i <= count; ++i) {
            const auto path = folder.write(where + "/" + std::to_string(i) + ".jpg", "x");
            NewPhoto photo{.path = path, .fileDate = modificationTime(path), .fileSize = 1};
            ids.push_back(catalog->addPhotos(std::span(&photo, 1)).front().id);
        }
        store.emplace(main, std::move(catalog));
        writeBack.emplace(main, *store, tool ? *tool : exiftool.tool, defaults);
        connection = writeBack->changed.connect([this] {
            if (writeBack->statusMessage() != (said.empty() ? "" : said.back()))
                said.push_back(writeBack->statusMessage());
        });
    }

    void title(PhotoID id, const char* title) { setMetadata(*store, only(id), {.title = title}); }
    bool isDirty(PhotoID id) { return store->list().find(id)->dirty; }
    bool finish()
    {
        return main.runUntil([this] { return !writeBack->isSaving(); });
    }
    std::size_t calls() const { return exiftool.launcher.commands().size(); }

    FakeExifTool exiftool;
    FileDefaults defaults{folder / "config"};
    ManualMainThread main;
    std::vector<PhotoID> ids;
    std::optional<LibraryStore> store;
    std::optional<MetadataWriteBack> writeBack;
    std::vector<std::string> said;
    Connection connection;
};

} // namespace korvo
