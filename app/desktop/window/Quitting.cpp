#include "app/desktop/window/Quitting.h"

#include "app/desktop/Texts.h"

#include <QLocale>
#include <QMessageBox>
#include <QPushButton>

namespace korvo {

namespace {

bool isQuitChosen(QWidget& window, const QString& title, const QString& text, const QString& goOn)
{
    QMessageBox question(QMessageBox::Warning, "Korvo", title, QMessageBox::NoButton, &window);
    question.setTextFormat(Qt::PlainText);
    question.setInformativeText(text);
    const auto* const quit = question.addButton("Quit", QMessageBox::DestructiveRole);
    question.setDefaultButton(question.addButton(goOn, QMessageBox::RejectRole));
    question.exec();
    return question.clickedButton() == quit;
}

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
    return isQuitChosen(
        window, "What you changed last could not be stored.", "Quitting now loses it.", "Go Back");
}

bool isEndWished(QWidget& window, const std::vector<std::shared_ptr<Job>>& jobs)
{
    const bool isOne = jobs.size() == 1;
    const QString title = isOne ? inQuotes(*jobs.front()) + " is" : number(jobs.size()) + " jobs are";
    QStringList lines;
    for (const auto& job : jobs)
        lines << (isOne ? QString() : inQuotes(*job) + ": ") + whatStoppingLeaves(*job);
    lines << (isOne ? "Quitting ends it here." : "Quitting ends them here.");
    return isQuitChosen(window, title + " still going on.", lines.join('\n'), "Go On");
}

} // namespace korvo
