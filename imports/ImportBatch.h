#pragma once

#include "imports/ImportFolder.h"
#include "imports/ImportNames.h"
#include "imports/ImportOutcome.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace korvo {

/// Takes shots, copied and verified, gives them their names and stores them in the catalog, several at a
/// time.
class ImportBatch {
public:
    /// All must outlive this.
    ImportBatch(Catalog& catalog, const ImportPlan& plan, const ImportFolder& folder, std::size_t shots,
        const Clock& clock, ImportResult& result);

    /// Takes a shot; keeps what has come so far when that has become much. Throws as flush().
    void add(ImportedShot shot);
    /// Keeps what has come so far. When that fails its files are listed as failures, and it throws
    /// DatabaseError, NotFoundError or std::system_error; what has its name already is found by the next
    /// import.
    void flush();

private:
    void keep();
    void name(ImportedShot& shot);
    void announce();
    void move(ImportedShot& shot);
    void store();
    void storePhoto(ImportedFile& file);
    std::optional<std::int64_t> project(const ImportedFile& file, UnixTime fileDate);
    std::int64_t projectNamed(const std::string& name);
    std::optional<std::int64_t> folderOf(const ImportedFile& file);
    void notMoved(ImportedFile& file, const std::string& reason);
    void fail(ImportedFile& file, const std::string& reason);

    Catalog& catalog_;
    ImportMemory memory_;
    const ImportPlan& plan_;
    const ImportFolder& folder_;
    const Clock& clock_;
    ImportResult& result_;
    AddedRows added_; // what is being stored; the result's once that is committed
    std::size_t known_ = 0; // likewise
    ImportNames names_;
    std::vector<ImportedShot> shots_;
    std::uint64_t bytes_ = 0;
    std::map<std::string, std::int64_t> projects_;
    std::map<std::string, std::int64_t> folders_;
};

} // namespace korvo
