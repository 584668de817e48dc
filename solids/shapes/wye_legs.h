#pragma once

// What a wye is put together from.

#include "solids/shapes/mitre.h"
#include "solids/shapes/sweep.h"

#include <array>
#include <optional>
#include <vector>

namespace solids {

// The main's frame in its own coordinates.
inline constexpr Frame kMainFrame{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};

// A branch in the coordinates of the main: x along its flow, y and z as its frame's, the main's far end at
// the origin.
struct WyeLeg {
    Section section;  // as the main's frame shows it when swung to the branch
    Frame frame;      // that frame; unless mitred it may be turned, by up to an eighth when not round
    // One of the two, about the corner; none when the branch goes straight on.
    std::optional<Mitre> mitre;
    std::optional<ArcSweep> sweep;
    AcGePoint3d corner;  // on the branch's centre line, on the main's unless it goes straight on
    // Of a bend: from the corner to the branch's centre line, where that passes the main's. A mitred leg
    // shifts behind its mitre, a sweep on its way.
    AcGeVector3d shift;
    double length = 0;  // from the corner to the given end of the branch

    bool turns() const { return mitre || sweep; }
    AcGePoint3d at(double distance) const { return corner + shift + frame.x * distance; }
    // How far the bend reaches back along the main, from its far end. Without one, to the corner.
    double throat() const;
    // How far it reaches on along the branch, from the corner.
    double branchThroat() const;
    // Of the bend: the mitre's, or the sweep's; where a leg goes straight on, the one with its own section.
    std::vector<Outline> outlines() const;
};

struct WyeLegs {
    std::array<WyeLeg, 2> branches;
    double junction = 0;  // distance along the main
    double largest = 0;   // of all sizes
    double smallest = 0;

    double rounding() const { return 1e-9 * largest; }          // of lengths
    double meetingTolerance() const { return 1e-6 * largest; }  // between lines that meet
};

// Of far ends or the wye's own. Null when they make no wye, however long they are (see planWye).
std::optional<WyeLegs> wyeLegsOf(const DuctEnd& main, const DuctEnd& branch1, const DuctEnd& branch2);

// Distance along a branch, from its corner, at which it comes clear of the other one: behind the point where
// the walls that face each other meet, as seen in the plane of both directions, and behind the other's bend.
// Branches at an obtuse angle part at the bends. Null when they run side by side.
std::optional<double> crotchDistance(const WyeLeg& leg, const WyeLeg& other);

// The outline, its origin moved to a point.
Outline moved(Outline outline, const AcGePoint3d& by);

}  // namespace solids
