#include "app/desktop/sidebar/NodeMenu.h"

#include "app/desktop/Texts.h"
#include "base/Text.h"

#include <QMenu>

#include <algorithm>

namespace korvo {

namespace {

using Takes = std::function<bool(const SidebarNode&)>;

bool holdsOne(const SidebarNode& node, const Takes& takes)
{
    return takes(node)
        || std::any_of(node.children.begin(), node.children.end(),
            [&](const SidebarNode& child) { return holdsOne(child, takes); });
}

QString menuText(const SidebarNode& node)
{
    return qt(repairedUtf8(node.name)).replace('&', "&&");
}

} // namespace

void addNodes(QMenu& menu, const std::vector<SidebarNode>& nodes, const Takes& takes,
    const std::function<void(const SidebarNode&)>& chosen)
{
    for (const auto& node : nodes) {
        const SidebarNode line{node.kind, node.id, node.name, std::nullopt};
        const bool isMenu = std::any_of(node.children.begin(), node.children.end(),
            [&](const SidebarNode& child) { return holdsOne(child, takes); });
        QMenu& place = isMenu ? *menu.addMenu(menuText(node)) : menu;
        if (takes(node))
            place.addAction(menuText(node), [line, chosen] { chosen(line); });
        if (isMenu && takes(node))
            place.addSeparator();
        if (isMenu)
            addNodes(place, node.children, takes, chosen);
    }
}

} // namespace korvo
