// Readings, changes and findings as a person reads them in a terminal.
#pragma once

#include "tools/kest_inspect/Changes.h"
#include "tools/kest_inspect/Finding.h"

#include <string>
#include <vector>

namespace KestInspect {

/// Lines, each with its line feed. No control character of another process gets into them.
std::string asText(const Reading& reading);

/// A line for each finding, and one that counts them.
std::string asText(const std::vector<Finding>& findings);

/// One line without a line feed.
std::string asText(const Change& change);

} // namespace KestInspect
