#pragma once

// Cuts lines and arcs into the dashes of a linetype.

#include <span>
#include <vector>

#include "host/graphics/display_list.h"

namespace drafthost::graphics {

// Where along a curve of this length the pattern draws: pairs of start and end distance, equal for a dot. The
// pattern (positive dash, negative gap, zero dot; drawing units) is centred so that both ends of the curve
// lie on a dash, as drafting standards want it. A curve too short for one repetition is drawn whole, and so
// is one that would need more dashes than a reader can tell apart.
std::vector<std::pair<double, double>> dashSpans(double length, std::span<const double> pattern);

// The pieces of the shape that the pattern draws. An empty pattern gives the shape itself.
void appendDashes(const Polyline2d& line, std::span<const double> pattern, std::vector<Polyline2d>& out);
void appendDashes(const Arc2d& arc, std::span<const double> pattern, std::vector<Arc2d>& out);

}  // namespace drafthost::graphics
