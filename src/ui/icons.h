#pragma once

#include <QIcon>

namespace hollowmere {

/// An icon of the desktop's theme by its standard name; where the theme has none, one of ours, drawn in
/// the palette's text colour so that it is seen on light and dark desktops.
QIcon themeIcon(const char* name);

}  // namespace hollowmere
