#pragma once

// The mitre between two legs of duct: what square elbows and wyes are made of.

#include "solids/shapes/section.h"

#include <optional>

namespace solids {

// In the coordinates of the first leg: x along the flow to the corner, y and z as its frame's, the corner of
// the centre line at the origin. Directions that differ from the axes by rounding only are the axes, so that
// faces that should lie in one plane do.
struct Mitre {
    Section first, last;  // the last as the first leg's frame shows it when swung round the corner
    AcGeVector3d out;     // unit direction of flow behind the corner
    AcGeVector3d normal;  // of the plane of the bend, unit; the bend turns counter-clockwise about it
    AcGeVector3d inward1, inward2;  // unit, at right angles to the legs, towards the inside of the bend

    // Where the edges of both legs meet, on outlines of both sections.
    Outline outline() const;
    // The same of the corners of the rectangles around both sections.
    std::array<AcGePoint3d, 4> corners() const;
    // Outlines of the legs at a distance before the corner and behind it, and rectangles around them.
    Outline before(double distance) const;
    Outline behind(double distance) const;
    std::array<AcGePoint3d, 4> cornersBefore(double distance) const;
    std::array<AcGePoint3d, 4> cornersBehind(double distance) const;
    // How far the mitre reaches back along the first leg and on along the last one, from the corner.
    double firstThroat() const;
    double lastThroat() const;

private:
    AcGePoint3d meet(const AcGePoint2d& first, const AcGePoint2d& last) const;
    AcGePoint3d atDistance(const AcGePoint2d& flat, double distance) const;
};

// Frames that are turned against each other by less than that count as aligned, radians: callers compare them
// with a tolerance of a hundredth. The end of such an elbow is turned as its start is.
inline constexpr double kAlignedTurn = 0.0101;

// Of legs along both frames' x. Null when they are parallel or opposite within a thousandth of a radian, when
// the sections are of different shapes (a flat oval is not round), when one is turned against the other by
// other than quarter turns (round ones may be), and when their outlines do not reach equally far across the
// plane of the bend, within 1e-6 of the largest size.
std::optional<Mitre> mitreBetween(const Section& first, const Frame& firstFrame, const Section& last,
                                  const Frame& lastFrame);

// The last section as the first one's frame shows it when swung by the shortest way to the same direction.
// Null when it is turned by other than quarter turns. The frames must not be opposite.
std::optional<Section> sectionSeenFrom(const Frame& firstFrame, const Section& last, const Frame& lastFrame);

// World coordinates of what is given along a frame, and back.
AcGePoint3d toWorld(const AcGePoint3d& local, const AcGePoint3d& origin, const Frame& frame);
AcGePoint3d toLocal(const AcGePoint3d& point, const AcGePoint3d& origin, const Frame& frame);
// Of a unit direction. Components that are rounding only become zero.
AcGeVector3d directionIn(const Frame& frame, const AcGeVector3d& direction);

}  // namespace solids
