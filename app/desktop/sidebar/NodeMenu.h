#pragma once

#include "app/view/SidebarTree.h"

#include <functional>

class QMenu;

namespace korvo {

/// Fills a menu with lines of the sidebar: those that hold others become menus of their own, whose first
/// entry is the line itself. `chosen` is told which one was, of those that `takes` lets choose; lines that
/// cannot be chosen and hold none that can be are left out.
void addNodes(QMenu& menu, const std::vector<SidebarNode>& nodes,
    const std::function<bool(const SidebarNode&)>& takes,
    const std::function<void(const SidebarNode&)>& chosen);

} // namespace korvo
