// The page of `tarnfleet page`: one HTML file that needs no other. The program writes pageBeforeData(), the fleet as one
// JSON object in UTF-8, and pageAfterData(). The JSON is inside a <script> element: '<', '>' and '&' must be escaped in
// it as \u003c and so on.
#pragma once

#include <string_view>

namespace fleet {

std::string_view pageBeforeData();
std::string_view pageAfterData();

}  // namespace fleet
