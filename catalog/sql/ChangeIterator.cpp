#include "catalog/sql/ChangeIterator.h"

namespace korvo {

namespace {

void check(int code)
{
    if (code != SQLITE_OK)
        throw DatabaseError::step(sqlite3_errstr(code), "read changes");
}

} // namespace

ChangeIterator::ChangeIterator(const Changeset& changes)
{
    // The function takes a mutable pointer to what it only reads.
    auto* const bytes = const_cast<std::uint8_t*>(changes.bytes().data());
    sqlite3_changeset_iter* started = nullptr;
    check(sqlite3changeset_start(&started, static_cast<int>(changes.bytes().size()), bytes));
    iterator_.reset(started);
}

bool ChangeIterator::next()
{
    const int code = sqlite3changeset_next(iterator_.get());
    if (code == SQLITE_DONE)
        return false;
    if (code != SQLITE_ROW)
        check(code);
    const char* table = nullptr;
    int operation = 0;
    check(sqlite3changeset_op(iterator_.get(), &table, &columns_, &operation, nullptr));
    check(sqlite3changeset_pk(iterator_.get(), &key_, nullptr));
    table_ = table;
    operation_ = operation == SQLITE_INSERT ? Operation::insert
        : operation == SQLITE_UPDATE        ? Operation::update
                                            : Operation::remove;
    return true;
}

sqlite3_value* ChangeIterator::before(int column) const
{
    sqlite3_value* value = nullptr;
    if (operation_ != Operation::insert)
        check(sqlite3changeset_old(iterator_.get(), column, &value));
    return value;
}

sqlite3_value* ChangeIterator::after(int column) const
{
    sqlite3_value* value = nullptr;
    if (operation_ != Operation::remove)
        check(sqlite3changeset_new(iterator_.get(), column, &value));
    return value;
}

} // namespace korvo
