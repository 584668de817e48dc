#pragma once

// How long transitions are, and how the section of one run fits that of another.

#include "module/ducts/run_points.h"

namespace tessary {

// The slope of every transition's sides, degrees.
inline constexpr double transitionSlope = 15.0;

// Length over which the first section becomes the second one when half of the larger difference of their
// sizes is gained at the slope. Where the shape changes, it is at least half of the first section's larger
// size. 0 for sections that agree.
double transitionLength(const SectionSize& size1, bool isRectangular1, const SectionSize& size2,
                        bool isRectangular2, double slopeDegrees);

// Turns the second run's frame so that the section carries on from the first run round the bend between them.
// A round first run has no section to carry on: its own frame is laid into the plane of the bend. Where the
// second section stands a quarter turn off, its width and height are exchanged. Only a second frame that
// carries on already is kept; one that points the other way across is replaced too, since what is drawn
// behind the fitting follows the frame.
void alignSecondFrame(TripleFrame& frame1, TripleFrame& frame2, const SectionSize& size1,
                      bool isPlainRectangular1, SectionSize& size2);

// The arc cosine of a product of unit vectors, which rounding may take beyond 1.
double angleOfCosine(double cosine);

}  // namespace tessary
