#pragma once

#include "catalog/store/LibraryStore.h"
#include "tests/support/ManualMainThread.h"
#include "tests/support/TestLibrary.h"

namespace korvo {

/// The store over a library of photos a.jpg, b.jpg…, whose ids count from 1.
class StoreOfPhotos : public TestLibrary {
public:
    explicit StoreOfPhotos(int photos)
    {
        for (int i = 0; i < photos; ++i)
            photo(std::string(1, static_cast<char>('a' + i)) + ".jpg");
        store_ = std::make_unique<LibraryStore>(main_, std::move(catalog));
    }

    LibraryStore& store() { return *store_; }
    const PhotoItem& listed(PhotoID id) const { return *store_->list().find(id); }

private:
    ManualMainThread main_;
    std::unique_ptr<LibraryStore> store_;
};

} // namespace korvo
