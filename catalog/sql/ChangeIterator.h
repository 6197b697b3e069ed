#pragma once

#include "catalog/sql/SessionAPI.h"

#include "catalog/sql/Changeset.h"

#include <memory>
#include <string_view>

namespace korvo {

/// Goes through the changes of a changeset. Made in sources that deal with SQLite's sessions only.
class ChangeIterator {
public:
    enum class Operation { insert, update, remove };

    /// The changeset must outlive the iterator. Throws DatabaseError.
    explicit ChangeIterator(const Changeset& changes);

    /// Goes to the next change, the first at the first call; false at the end. Throws DatabaseError.
    bool next();

    std::string_view table() const { return table_; }
    Operation operation() const { return operation_; }
    int columnCount() const { return columns_; }
    bool isKey(int column) const { return key_[column] != 0; }

    /// The column's value before the change, or after it; null where the change has none, which for an update
    /// means that the column kept its value.
    sqlite3_value* before(int column) const;
    sqlite3_value* after(int column) const;
    /// The value of a key column, which no change alters.
    sqlite3_value* key(int column) const
    {
        return operation_ == Operation::insert ? after(column) : before(column);
    }

private:
    struct Finalize {
        void operator()(sqlite3_changeset_iter* iterator) const { sqlite3changeset_finalize(iterator); }
    };

    std::unique_ptr<sqlite3_changeset_iter, Finalize> iterator_;
    std::string_view table_;
    Operation operation_ = Operation::insert;
    int columns_ = 0;
    unsigned char* key_ = nullptr;
};

} // namespace korvo
