#pragma once

#include "catalog/PhotoItem.h"
#include "catalog/sql/Statement.h"

#include <memory>
#include <vector>

namespace korvo {

/// Turns the rows of a statement over whole `photos` rows into items. Texts that repeat from row to row are
/// shared between the items.
class PhotoRows {
public:
    /// The statement must outlive the reader. Throws DatabaseError when one of the columns is not in the
    /// result.
    explicit PhotoRows(const Statement& statement);
    ~PhotoRows();

    /// The statement's current row.
    PhotoItem item();

private:
    class SharedTexts;

    const Statement& statement_;
    std::vector<int> columns_;
    std::unique_ptr<SharedTexts> texts_;
};

} // namespace korvo
