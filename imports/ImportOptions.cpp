#include "imports/ImportOptions.h"

#include "platform/AppFolders.h"

namespace korvo {

namespace {

void setProject(ImportPlan& plan, const ImportOptions& options)
{
    using Project = ImportOptions::Project;
    plan.byDay = options.project == Project::byDay;
    if (options.project == Project::made)
        plan.newProject = options.newProject;
    if (options.project == Project::chosen)
        plan.project = options.chosenProject;
}

} // namespace

std::filesystem::path defaultDestination()
{
    return picturesFolder() / importWindow::destinationName;
}

ImportPlan planOf(const ImportListing& listing, const ImportSource& source, const ImportOptions& options)
{
    auto plan = planFor(listing);
    if (options.files == ImportOptions::Files::copy || mustCopy(source))
        plan.copyTo = options.destination ? *options.destination : defaultDestination();
    if (source.kind == ImportSource::Kind::volume && source.volume.isCard)
        plan.card = source.volume.url;
    plan.namingPattern = options.pattern;
    setProject(plan, options);
    plan.creator = options.creator;
    plan.copyright = options.copyright;
    plan.keywords = options.keywords;
    plan.eject = options.eject;
    return plan;
}

} // namespace korvo
