#pragma once

// Where two pieces of curves meet. Works on fixed arrays; nothing is allocated.
//
// Pieces meet where they come within the tolerance of each other; in space only where they really do, not
// where one passes over the other. Points lie exactly on the first piece. A touch gives one point. Pieces
// that run along each other (collinear segments, arcs of one circle) give the end points of what they share:
// of segments two points, of arcs up to four; an end that is lengthened is no end point, so two infinite
// lines that coincide give none.

#include <array>

#include "host/geometry/curve_piece.h"

namespace drafthost {

struct PieceHit {
    AcGePoint3d point;
    double parameter = 0;  // on the first piece
};

// In the order of the first piece's parameter.
struct PieceHits {
    static constexpr int kCapacity = 8;
    int count = 0;
    std::array<PieceHit, kCapacity> hits;  // those from count on are not meaningful

    void add(const PieceHit& hit);
    const PieceHit* begin() const { return hits.data(); }
    const PieceHit* end() const { return hits.data() + count; }
};

// Which pieces are taken as lengthened at the ends that may be.
struct Extension {
    bool first = false;
    bool second = false;
};

double meetingTolerance(const CurvePiece& first, const CurvePiece& second);
// Points nearer together than this are one.
inline double sameHitTolerance(double tolerance) {
    return 10 * tolerance;
}

PieceHits intersectPieces(const CurvePiece& first, const CurvePiece& second, Extension extension,
                          double tolerance);

// The same for what is seen along the unit direction; points lie on the first piece. Where the first piece is
// seen as one point, that point is the one at the second piece's height, or the nearest to it.
PieceHits intersectProjected(const CurvePiece& first, const CurvePiece& second, const AcGeVector3d& direction,
                             Extension extension, double tolerance);

}  // namespace drafthost
