#include "imports/ImportBatch.h"

#include "base/UserError.h"
#include "catalog/KeywordList.h"
#include "platform/FileSync.h"

namespace korvo {

namespace fs = std::filesystem;

namespace {

/// What a kill may cost at most: so much is copied again. More would make the steps between files dearer.
constexpr std::size_t mostShots = 32;
constexpr std::uint64_t mostBytes = 256 << 20;

MetadataChange plannedChange(const ImportPlan& plan, const PhotoMetadata& own)
{
    const auto unlessEmpty = [](const std::string& text) {
        return text.empty() ? std::nullopt : std::optional(SharedText(text));
    };
    MetadataChange change{.creator = unlessEmpty(plan.creator), .copyright = unlessEmpty(plan.copyright)};
    const KeywordEdit planned{.added = splitKeywords(plan.keywords), .removed = {}};
    if (!planned.empty())
        change.keywords = SharedText(planned.appliedTo(own.keywords.view()));
    return change;
}

std::int64_t noted(AddedRow row, std::vector<std::int64_t>& added)
{
    if (row.isNew)
        added.push_back(row.id);
    return row.id;
}

} // namespace

ImportBatch::ImportBatch(Catalog& catalog, const ImportPlan& plan, const ImportFolder& folder,
    std::size_t shots, const Clock& clock, ImportResult& result)
    : catalog_(catalog), memory_(catalog), plan_(plan), folder_(folder), clock_(clock), result_(result),
      names_(catalog, folder.path(), plan.namingPattern, shots)
{ }

void ImportBatch::add(ImportedShot shot)
{
    for (ImportedFile& file : shot.files) {
        if (!file.failure.empty())
            result_.failures.push_back({file.file->file.path, file.failure});
        bytes_ += file.copy ? file.copy->size : 0;
    }
    shots_.push_back(std::move(shot));
    if (shots_.size() >= mostShots || bytes_ >= mostBytes)
        flush();
}

void ImportBatch::flush()
{
    try {
        keep();
    } catch (const std::exception& error) {
        for (ImportedShot& shot : shots_)
            for (ImportedFile& file : shot.files)
                if (file.copy || !file.path.empty())
                    fail(file, "could not be kept: " + textForUser(error));
        shots_.clear();
        throw;
    }
    shots_.clear();
    bytes_ = 0;
}

void ImportBatch::keep()
{
    if (folder_) {
        folder_.requireThere();
        for (ImportedShot& shot : shots_)
            name(shot);
        announce();
        for (ImportedShot& shot : shots_)
            move(shot);
        syncFolder(folder_.path());
        folder_.requireThere();
    }
    store();
}

void ImportBatch::name(ImportedShot& shot)
{
    std::vector<ImportedFile*> files;
    NamingFacts facts{shot.shot->name, {}, clock_.now()};
    if (const auto modified = shot.shot->files.front().file.modified)
        facts.fileDate = unixTime(*modified);
    for (ImportedFile& file : shot.files) {
        if (!file.copy)
            continue;
        if (facts.title.empty())
            facts.title = file.photo.metadata.title.string();
        files.push_back(&file);
    }
    if (files.empty())
        return;
    try {
        const auto names = names_.claim(facts, *shot.shot, files);
        for (std::size_t i = 0; i < files.size(); ++i) {
            files[i]->path = names[i].path;
            if (names[i].isThere)
                files[i]->copy.reset();
        }
    } catch (const std::system_error& error) {
        for (ImportedFile* const file : files) {
            fail(*file, std::string("could not be given a name: ") + error.what());
            file->copy.reset();
        }
    }
}

void ImportBatch::announce()
{
    Transaction transaction(catalog_.database());
    for (const ImportedShot& shot : shots_)
        for (const ImportedFile& file : shot.files)
            if (!file.path.empty())
                memory_.announce(duplicateKey(file.file->file), file.path.native());
    transaction.commit();
}

void ImportBatch::move(ImportedShot& shot)
{
    for (ImportedFile& file : shot.files) {
        if (!file.copy)
            continue;
        try {
            if (!file.copy->part.moveTo(file.path))
                notMoved(file, file.path.string() + " has come into being meanwhile; import it again");
        } catch (const std::system_error& error) {
            notMoved(file, "could not be moved to " + file.path.string() + ": " + error.code().message());
        }
        file.copy.reset();
    }
}

void ImportBatch::notMoved(ImportedFile& file, const std::string& reason)
{
    memory_.forgetAnnounced(file.path.native());
    fail(file, reason);
}

void ImportBatch::fail(ImportedFile& file, const std::string& reason)
{
    result_.failures.push_back({file.file->file.path, reason});
    file.path.clear();
}

void ImportBatch::store()
{
    added_ = {};
    known_ = 0;
    Transaction transaction(catalog_.database());
    for (ImportedShot& shot : shots_)
        for (ImportedFile& file : shot.files) {
            if (file.path.empty())
                continue;
            if (folder_)
                memory_.forgetAnnounced(file.path.native());
            if (!file.file->isSidecar)
                storePhoto(file);
        }
    transaction.commit();
    result_.add(added_);
    result_.known += known_;
}

void ImportBatch::storePhoto(ImportedFile& file)
{
    NewPhoto& photo = file.photo;
    photo.path = file.path.native();
    photo.addedAt = clock_.now();
    try {
        photo.fileDate = modificationTime(file.path);
        photo.fileSize = static_cast<std::int64_t>(fs::file_size(file.path));
    } catch (const fs::filesystem_error& error) { // it has gone
        return fail(file, error.code().message());
    }
    photo.folderID = folderOf(file);
    const auto [id, isNew] = catalog_.addPhoto(photo);
    if (!isNew && folder_)
        return fail(file, file.path.string() + " has become another photo's meanwhile; import it again");
    memory_.forgetLeft(file.file->key);
    if (!isNew) {
        ++known_;
        return;
    }
    added_.photos.push_back(id);
    const std::vector<PhotoID> ids = {id};
    catalog_.changeMetadata(ids, plannedChange(plan_, photo.metadata), WriteBack::pending);
    if (const auto into = project(file, photo.fileDate.value()))
        catalog_.assignToProject(ids, into);
    memory_.remember(duplicateKey(file.file->file), id);
}

std::optional<std::int64_t> ImportBatch::project(const ImportedFile& file, UnixTime fileDate)
{
    if (plan_.byDay)
        return projectNamed(localDay(file.photo.camera.captureDate.value_or(fileDate)));
    return plan_.newProject.empty() ? plan_.project : std::optional(projectNamed(plan_.newProject));
}

std::int64_t ImportBatch::projectNamed(const std::string& name)
{
    const auto [entry, isNew] = projects_.try_emplace(name, 0);
    if (isNew)
        entry->second = noted(catalog_.projectAtRoot(name), added_.projects);
    return entry->second;
}

std::optional<std::int64_t> ImportBatch::folderOf(const ImportedFile& file)
{
    const auto& added = folder_ ? folder_.path() : file.file->file.chosen;
    if (added.empty())
        return catalog_.folderContaining(file.path.native());
    const auto [entry, isNew] = folders_.try_emplace(added.native(), 0);
    if (isNew) {
        // Copies need no folder of their own in the sidebar when one that is there shows them.
        const auto around = folder_ ? catalog_.folderContaining(file.path.native()) : std::nullopt;
        entry->second
            = around ? *around : noted(catalog_.addFolder(added.native(), clock_.now()), added_.folders);
    }
    return entry->second;
}

} // namespace korvo
