// Pictures of address spaces.
#ifndef MARLUNE_TOOLS_DRAWING_H
#define MARLUNE_TOOLS_DRAWING_H

#include <iosfwd>
#include <string>
#include <vector>

#include "tools/layout.h"

namespace marlune::tool {

/// Draws the address spaces as SVG: a row with a bar, to scale, for each section and each gap.
void DrawSvg(std::ostream& out, const std::string& title, const std::vector<CSpace>& spaces);

} // namespace marlune::tool

#endif
