#include "app/desktop/window/Quitting.h"

#include "app/desktop/Ask.h"
#include "app/desktop/Texts.h"

namespace korvo {

namespace {

QString inQuotes(const Job& job)
{
    return "“" + qt(job.title()) + "”";
}

} // namespace

QString whatStoppingLeaves(const Job& job)
{
    if (job.stopping() == Stopping::drops)
        return "Nothing of it is kept before it has ended.";
    const QString done = "What is done stays";
    if (job.done() == 0)
        return done + ".";
    const QString ofAll = job.total() > 0 ? " of " + number(job.total()) : QString();
    return done + ", about " + number(job.done()) + ofAll + "."; // of those begun a few may be dropped
}

bool isLossWished(QWidget& window)
{
    return ask(
        window, "What you changed last could not be stored.", "Quitting now loses it.", "Quit", "Go Back");
}

bool isCutWished(QWidget& window, const std::string& title)
{
    return ask(window, "“" + qt(title) + "” is still going on.",
        "What is done stays; the other photos stay as they are.\nQuitting ends it here.", "Quit", "Go On");
}

bool isEndWished(QWidget& window, const std::vector<std::shared_ptr<Job>>& jobs)
{
    const bool isOne = jobs.size() == 1;
    const QString title = isOne ? inQuotes(*jobs.front()) + " is" : number(jobs.size()) + " jobs are";
    QStringList lines;
    for (const auto& job : jobs)
        lines << (isOne ? QString() : inQuotes(*job) + ": ") + whatStoppingLeaves(*job);
    lines << (isOne ? "Quitting ends it here." : "Quitting ends them here.");
    return ask(window, title + " still going on.", lines.join('\n'), "Quit", "Go On");
}

} // namespace korvo
