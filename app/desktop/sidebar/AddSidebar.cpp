#include "app/desktop/Parts.h"
#include "app/desktop/Texts.h"
#include "app/desktop/sheets/Sheets.h"
#include "app/desktop/sidebar/Sidebar.h"

#include <QLineEdit>
#include <QVBoxLayout>

namespace korvo {

void addSidebar(MainWindow& window)
{
    auto* const place = new QWidget;
    place->setMinimumWidth(170);
    auto* const layout = new QVBoxLayout(place);
    layout->setContentsMargins(6, 6, 6, 0);
    auto* const filter = new QLineEdit;
    filter->setPlaceholderText("Filter");
    filter->setAccessibleName("Filter of the sources");
    filter->setClearButtonEnabled(true);
    auto* const sidebar = new Sidebar(window);
    sidebar->keywordChosen = [&window](const std::string& keyword) { window.search(keyword); };
    QObject::connect(
        filter, &QLineEdit::textChanged, sidebar, [sidebar](const QString& text) { sidebar->filter(text); });
    layout->addWidget(filter);
    layout->addWidget(sidebar);
    window.setSidebar(place);
    auto& store = window.desktop().store();
    const auto isSmartAlbum
        = [&store] { return store.source() && store.source()->kind == LibrarySource::Kind::smartAlbum; };
    window.commands().handle(
        Command::editSmartAlbum, [&window, &store] { showSmartAlbumSheet(window, store.source()->id); },
        isSmartAlbum);
    window.commands().handle(
        Command::rename, [sidebar] { sidebar->renameChosen(); },
        [sidebar] { return sidebar->canRenameChosen(); });
}

} // namespace korvo
