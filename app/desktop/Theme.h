#pragma once

#include "catalog/PhotoLabel.h"

#include <QColor>

class QApplication;

namespace korvo {

/// The window's colours: neutral greys, so that they do not tint the photos. Each text reaches a contrast
/// of 4.5 to 1 on each of the backgrounds it stands on.
namespace theme {

inline constexpr QColor window{0x26, 0x26, 0x26};
inline constexpr QColor centre{0x1b, 0x1b, 0x1b}; // behind photos
inline constexpr QColor cell{0x2c, 0x2c, 0x2c};
inline constexpr QColor selectedCell{0x50, 0x50, 0x50};
inline constexpr QColor field{0x1b, 0x1b, 0x1b};
inline constexpr QColor line{0x3c, 0x3c, 0x3c};
inline constexpr QColor edge{0x8a, 0x8a, 0x8a}; // of what can be switched
inline constexpr QColor text{0xe6, 0xe6, 0xe6};
inline constexpr QColor mutedText{0xb4, 0xb4, 0xb4};
inline constexpr QColor accent{0x4f, 0xa3, 0xf7}; // focus and selection
inline constexpr QColor accentFill{0x1f, 0x5a, 0x99}; // behind text
inline constexpr QColor star{0xf2, 0xc1, 0x4e};
inline constexpr QColor flag{0xff, 0xff, 0xff};
inline constexpr QColor warning{0xff, 0x8a, 0x7a}; // also what is rejected
inline constexpr QColor plate{0, 0, 0, 190}; // behind what is written on photos

} // namespace theme

/// The fill of a label, on which black reads well.
QColor labelColor(PhotoLabel label);

/// Makes the program dark, with fonts as the system has them.
void applyTheme(QApplication& application);

} // namespace korvo
