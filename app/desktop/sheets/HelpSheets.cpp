#include "app/desktop/Labels.h"
#include "app/desktop/sheets/Sheet.h"
#include "app/desktop/sheets/Sheets.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGuiApplication>
#include <QScrollArea>

namespace korvo {

namespace {

constexpr int columns = 3;

struct MenuTitle {
    CommandMenu menu;
    const char* title;
};
constexpr MenuTitle menus[]
    = {{CommandMenu::photo, "Photo"}, {CommandMenu::view, "View"}, {CommandMenu::edit, "Edit"},
        {CommandMenu::file, "File"}, {CommandMenu::none, "In the Centre"}, {CommandMenu::help, "Help"}};

/// "Ctrl+Shift+Z or Ctrl+Y", as the system writes them.
QString keysOf(const CommandInfo& info)
{
    QStringList keys;
    for (const auto& key : QString(info.keys).split(' ', Qt::SkipEmptyParts))
        keys << QKeySequence(key).toString(QKeySequence::NativeText);
    return keys.join(QObject::tr(" or "));
}

/// Commands with other keys in some places stand once, under the text of their menu.
QString textOf(const CommandInfo& info)
{
    const auto group = info.submenu ? QString::fromUtf8(info.submenu) + ": " : QString();
    if (info.text)
        return group + QString::fromUtf8(info.text).remove(QStringLiteral("…"));
    for (const auto& other : commandTable())
        if (other.id == info.id && other.text)
            return textOf(other);
    return {};
}

QWidget* keyRow(const CommandInfo& info)
{
    auto* const row = new QWidget;
    auto* const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* const keys = dimLabel(keysOf(info));
    keys->setAlignment(Qt::AlignRight | Qt::AlignTop);
    auto* const text = plainLabel(textOf(info));
    text->setWordWrap(true);
    layout->addWidget(text, 3);
    layout->addWidget(keys, 2);
    return row;
}

std::vector<QWidget*> rowsOf(const MenuTitle& menu)
{
    std::vector<QWidget*> rows;
    for (const auto& info : commandTable())
        if (info.id != Command::count && info.menu == menu.menu && *info.keys)
            rows.push_back(keyRow(info));
    if (rows.empty())
        return rows;
    auto* const heading = headingLabel(QString::fromUtf8(menu.title));
    heading->setContentsMargins(0, menu.menu == CommandMenu::photo ? 0 : 10, 0, 2);
    rows.insert(rows.begin(), heading);
    return rows;
}

/// The list of keys, made from the table of commands.
class KeysSheet : public QDialog {
public:
    explicit KeysSheet(MainWindow& window) : QDialog(&window)
    {
        setWindowTitle(tr("Keys"));
        auto* const area = new QScrollArea;
        area->setWidget(makeColumns());
        area->setWidgetResizable(true);
        area->setFrameShape(QFrame::NoFrame);
        auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Close);
        connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
        auto* const layout = new QVBoxLayout(this);
        layout->addWidget(area, 1);
        layout->addWidget(
            dimLabel(tr("With Shift, or Caps Lock on, a key that marks photos goes on to the next one.")));
        layout->addWidget(buttons);
        resize(1040, 680);
    }

private:
    static QWidget* makeColumns()
    {
        std::vector<QWidget*> all;
        for (const auto& menu : menus) {
            const auto rows = rowsOf(menu);
            all.insert(all.end(), rows.begin(), rows.end());
        }
        auto* const content = new QWidget;
        auto* const layout = new QHBoxLayout(content);
        layout->setSpacing(32);
        const auto perColumn = (all.size() + columns - 1) / columns;
        for (std::size_t first = 0; first < all.size(); first += perColumn) {
            auto* const column = new QVBoxLayout;
            column->setSpacing(3);
            for (auto i = first; i < std::min(first + perColumn, all.size()); ++i)
                column->addWidget(all[i]);
            column->addStretch(1);
            layout->addLayout(column, 1);
        }
        return content;
    }
};

constexpr auto aboutText
    = "<h2>Korvo %1</h2><p>Photo library and non-destructive editor. Originals stay "
      "where they are, and edits never touch them."
      "</p><p>The sources are under the MIT license; this program, with FFmpeg as Debian "
      "builds it, under the GNU "
      "General Public License 3.</p><p>Built with Qt %2, SQLite, libjpeg-turbo, libpng, "
      "libwebp, libtiff, libheif, "
      "LibRaw, FFmpeg, Little CMS, exiftool and others.</p>";

class AboutSheet : public QDialog {
public:
    explicit AboutSheet(MainWindow& window) : QDialog(&window)
    {
        setWindowTitle(tr("About Korvo"));
        auto* const text
            = new QLabel(QString::fromUtf8(aboutText).arg(QString(KORVO_VERSION), QString(qVersion())));
        text->setWordWrap(true);
        text->setTextInteractionFlags(Qt::TextSelectableByMouse);
        auto* const icon = new QLabel;
        icon->setPixmap(QGuiApplication::windowIcon().pixmap(96, 96));
        icon->setAlignment(Qt::AlignTop);
        auto* const row = new QHBoxLayout;
        row->addWidget(icon);
        row->addWidget(text, 1);
        auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Close);
        connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
        auto* const layout = new QVBoxLayout(this);
        layout->setContentsMargins(18, 18, 18, 12);
        layout->addLayout(row, 1);
        layout->addWidget(buttons);
        resize(460, 280);
    }
};

} // namespace

QWidget* showKeys(MainWindow& window)
{
    return showOne<KeysSheet>(window);
}

QWidget* showAbout(MainWindow& window)
{
    return showOne<AboutSheet>(window);
}

} // namespace korvo
