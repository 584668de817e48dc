#include "host/geometry/intersect.h"

#include "host/geometry/angles.h"
#include "host/geometry/tolerance.h"

namespace drafthost {
namespace {

// A line or a whole circle, with what the formulas need.
struct Support {
    const CurvePiece& piece;
    bool extended;
    AcGePoint3d center;   // arcs
    AcGeVector3d normal;  // arcs

    // A point has no direction to be lengthened in.
    Support(const CurvePiece& p, bool extend) : piece(p), extended(extend && p.extent > 0) {
        if (!p.isArc())
            return;
        center = p.center();
        normal = p.normal();
    }
    bool isUnbounded() const { return extended && (piece.extendsBackward || piece.extendsForward); }

    double distanceTo(const AcGePoint3d& point) const {
        const AcGeVector3d w = point - piece.start;
        if (!piece.isArc())
            return (w - piece.xAxis * w.dotProduct(piece.xAxis)).length();
        const double height = w.dotProduct(normal), beyond = beyondCircle(point);
        return std::sqrt(height * height + beyond * beyond);
    }
    // Arcs: distance from the circle within its plane, negative inside; in terms of the arc's start, which
    // keeps the digits that a far centre would take.
    double beyondCircle(const AcGePoint3d& point) const {
        const AcGeVector3d w = point - piece.start;
        const double x = w.dotProduct(piece.xAxis), y = w.dotProduct(piece.yAxis), r = piece.radius;
        const double fromCenter = std::sqrt((x + r) * (x + r) + y * y);
        return fromCenter + r > 0 ? (x * x + y * y + 2 * r * x) / (fromCenter + r) : 0;
    }
    AcGeVector3d outward(const AcGePoint3d& point) const {
        const AcGeVector3d w = point - piece.start;
        const AcGeVector3d fromCenter = piece.xAxis * (w.dotProduct(piece.xAxis) + piece.radius) +
                                        piece.yAxis * w.dotProduct(piece.yAxis);
        return fromCenter.normal();
    }
    // Parameter of the point, when it lies on the piece (with its lengthening).
    bool parameterOn(const AcGePoint3d& point, double tolerance, double& parameter) const {
        if (!(distanceTo(point) <= tolerance))
            return false;
        const AcGeVector3d w = point - piece.start;
        parameter = piece.isArc() ? normalizeAngle(std::atan2(w.dotProduct(piece.yAxis),
                                                              w.dotProduct(piece.xAxis) + piece.radius))
                                  : w.dotProduct(piece.xAxis);
        return settleParameter(piece, parameter, extended, tolerance);
    }
};

// Collects the hits of one pair.
class Meeting {
public:
    Meeting(const CurvePiece& first, const CurvePiece& second, Extension extension, double tolerance)
        : a_(first, extension.first), b_(second, extension.second), tolerance_(tolerance) {}

    PieceHits find() {
        if (a_.piece.isArc()) {
            b_.piece.isArc() ? arcArc() : lineCircle(b_, a_);
        } else {
            b_.piece.isArc() ? lineCircle(a_, b_) : lineLine();
        }
        addTouchingEnds();
        return hits_;
    }

private:
    // A point where the supporting lines and circles meet becomes a hit when it is within both pieces.
    bool addCandidate(const AcGePoint3d& point) {
        double onFirst, onSecond;
        if (!a_.parameterOn(point, 2 * tolerance_, onFirst) ||
            !b_.parameterOn(point, 2 * tolerance_, onSecond)) {
            return false;
        }
        const AcGePoint3d settled = pointAt(a_.piece, onFirst);
        for (const PieceHit& hit : hits_) {
            if (hit.point.distanceTo(settled) <= sameHitTolerance(tolerance_))
                return true;
        }
        hits_.add({settled, onFirst});
        return true;
    }

    // Ends that lie on the other piece. They are found here when rounding has moved the computed crossing
    // just beyond an end, which for a near-tangent pair can be far along the curve, and when the pieces run
    // along each other.
    void addTouchingEnds() {
        addTouchingEnds(a_, b_);
        addTouchingEnds(b_, a_);
    }
    void addTouchingEnds(const Support& from, const Support& onto) {
        if (from.piece.isFullTurn() || (from.piece.isArc() && from.isUnbounded()))
            return;
        if (!(from.extended && from.piece.extendsBackward))
            addTouchingEnd(from.piece.start, onto);
        if (from.piece.extent > 0 && !(from.extended && from.piece.extendsForward)) {
            addTouchingEnd(pointAt(from.piece, from.piece.extent), onto);
        }
    }
    void addTouchingEnd(const AcGePoint3d& end, const Support& onto) {
        double parameter;
        if (!onto.parameterOn(end, tolerance_, parameter))
            return;
        if (!a_.parameterOn(end, 2 * tolerance_, parameter) || isKnown(end, parameter))
            return;
        hits_.add({pointAt(a_.piece, parameter), parameter});
    }
    // The same point as a hit, or on the stretch about a hit over which the pieces cannot be told apart.
    bool isKnown(const AcGePoint3d& end, double parameter) const {
        for (const PieceHit& hit : hits_) {
            if (hit.point.distanceTo(end) <= sameHitTolerance(tolerance_))
                return true;
            if (runsAlong_)
                continue;
            if (b_.distanceTo(pointAt(a_.piece, (hit.parameter + parameter) / 2)) <= tolerance_)
                return true;
        }
        return false;
    }

    void lineLine() {
        const CurvePiece &a = a_.piece, &b = b_.piece;
        const AcGeVector3d across = a.xAxis.crossProduct(b.xAxis);
        const double sine = across.length();
        // Lines whose directions differ by less than this stay within the tolerance over the whole of both.
        const bool unbounded = a_.isUnbounded() || b_.isUnbounded();
        runsAlong_ = sine <= 1e-12 || (!unbounded && sine * std::max(a.extent, b.extent) <= tolerance_ / 2);
        if (runsAlong_)
            return;
        const AcGeVector3d w = b.start - a.start;
        if (std::abs(w.dotProduct(across)) > tolerance_ * sine)
            return;
        addCandidate(pointAt(a, w.crossProduct(b.xAxis).dotProduct(across) / (sine * sine)));
    }

    void lineCircle(const Support& line, const Support& circle) {
        const AcGeVector3d u = line.piece.xAxis;
        if (u.lengthSqrd() == 0)
            return;  // a point: the touching ends tell
        const double rise = u.dotProduct(circle.normal);
        const double height = (line.piece.start - circle.center).dotProduct(circle.normal);
        const double reach = line.isUnbounded() ? circle.piece.radius * 2
                                                : std::min(line.piece.extent, circle.piece.radius * 2);
        if (std::abs(rise) * reach > tolerance_ / 2) {
            addCandidate(line.piece.start - u * (height / rise));
            return;
        }
        // The line runs in the plane or beside it. Distances from its start to the circle solve s^2 + 2 half
        // s + rest = 0, anchored at the arc's start so that a flat arc's far centre does not enter.
        const AcGeVector3d w = line.piece.start - circle.piece.start;
        const double r = circle.piece.radius;
        const double half = w.dotProduct(u) + r * u.dotProduct(circle.piece.xAxis);
        const double rest = w.lengthSqrd() + 2 * r * w.dotProduct(circle.piece.xAxis);
        const double chordSquared = half * half - rest;
        const double footDistance = std::sqrt(std::max(0.0, r * r - chordSquared));
        const double depth = chordSquared / (r + footDistance);  // of the chord's middle within the circle
        if (!(depth >= -tolerance_))
            return;
        if (depth <= touchTolerance(r)) {
            addCandidate(onCircle(circle, line.piece.start - u * half));
            return;
        }
        const double root = std::sqrt(chordSquared);
        const double outer = half > 0 ? -half - root : -half + root;
        const double inner = rest / outer;
        addCandidate(line.piece.start + u * outer);
        addCandidate(line.piece.start + u * inner);
    }

    // Curves that overlap no deeper than this touch: coordinates do not say more.
    double touchTolerance(double radius) const {
        return AcGeContext::gTol.equalPoint +
               1e-15 * (largestCoordinate(a_.piece.start) + largestCoordinate(b_.piece.start) + radius);
    }

    static AcGePoint3d onCircle(const Support& circle, const AcGePoint3d& near) {
        AcGeVector3d w = near - circle.center;
        w = w - circle.normal * w.dotProduct(circle.normal);
        const double distance = w.length();
        return distance > 0 ? circle.center + w * (circle.piece.radius / distance) : near;
    }

    void arcArc() {
        const double largest = std::max(a_.piece.radius, b_.piece.radius);
        const AcGeVector3d across = a_.normal.crossProduct(b_.normal);
        const double sine = across.length();
        if (sine * largest <= tolerance_ / 2) {
            coplanarCircles();
            return;
        }
        const AcGeVector3d along = across / sine;
        if (!addChordEnds(a_, b_, along))
            addChordEnds(b_, a_, along);
    }

    // Where the circle pierces the other one's plane, along the line both planes share.
    bool addChordEnds(const Support& circle, const Support& other, const AcGeVector3d& along) {
        const AcGeVector3d inPlane = along.crossProduct(circle.normal);
        const double foot =
            (other.center - circle.center).dotProduct(other.normal) / inPlane.dotProduct(other.normal);
        const double r = circle.piece.radius;
        const double depth = r - std::abs(foot);
        if (depth < -tolerance_)
            return false;
        const AcGePoint3d middle = circle.center + inPlane * foot;
        if (depth <= touchTolerance(r))
            return addCandidate(onCircle(circle, middle));
        const double half = std::sqrt(depth * (r + std::abs(foot)));
        const bool before = addCandidate(middle - along * half);
        return addCandidate(middle + along * half) || before;
    }

    void coplanarCircles() {
        const double r1 = a_.piece.radius, r2 = b_.piece.radius;
        AcGeVector3d w = b_.center - a_.center;
        const double height = w.dotProduct(a_.normal);
        if (std::abs(height) > tolerance_)
            return;
        w = w - a_.normal * height;
        const double d = w.length();
        runsAlong_ = d + std::abs(r1 - r2) <= tolerance_;
        if (runsAlong_ || d == 0)
            return;
        const AcGeVector3d toward = w / d;
        // How deep the circles overlap, from outside and from inside.
        const double outerDepth = r1 + r2 - d, innerDepth = d - std::abs(r1 - r2);
        if (!(outerDepth >= -tolerance_) || !(innerDepth >= -tolerance_))
            return;
        const double touching = touchTolerance(r1 + r2);
        if (outerDepth <= touching || innerDepth <= touching) {
            const bool nearSide = outerDepth <= innerDepth || r1 >= r2;
            addCandidate(a_.center + toward * (nearSide ? r1 : -r1));
            return;
        }
        // From the smaller circle's centre, where the lengths are short.
        const bool firstIsSmaller = r1 <= r2;
        const double r = std::min(r1, r2);
        const double foot = (d + (firstIsSmaller ? r1 - r2 : r2 - r1) * (r1 + r2) / d) / 2;
        const double half = std::sqrt(std::max(0.0, (r - foot) * (r + foot)));
        const AcGeVector3d aside = a_.normal.crossProduct(toward) * half;
        const AcGePoint3d middle = firstIsSmaller ? a_.center + toward * foot : b_.center - toward * foot;
        addCandidate(refined(middle + aside));
        addCandidate(refined(middle - aside));
    }

    // A step of Newton's method toward both circles: the centre of a flat arc is too far away to compute
    // crossings from.
    AcGePoint3d refined(AcGePoint3d point) const {
        constexpr double kFlat = 1e3;
        if (std::max(a_.piece.radius / a_.piece.size(), b_.piece.radius / b_.piece.size()) < kFlat)
            return point;
        for (int step = 0; step < 3; ++step) {
            const AcGeVector3d first = a_.outward(point), second = b_.outward(point);
            const AcGeVector3d alongSecond = second.crossProduct(a_.normal),
                               alongFirst = first.crossProduct(a_.normal);
            const double sine = first.dotProduct(alongSecond);
            if (std::abs(sine) < 1e-6)
                return point;
            point += (alongFirst * b_.beyondCircle(point) - alongSecond * a_.beyondCircle(point)) / sine;
        }
        return point;
    }

    Support a_, b_;
    double tolerance_;
    bool runsAlong_ = false;
    PieceHits hits_;
};

}  // namespace

void PieceHits::add(const PieceHit& hit) {
    if (count == kCapacity)
        return;
    int place = count++;
    for (; place > 0 && hits[place - 1].parameter > hit.parameter; --place)
        hits[place] = hits[place - 1];
    hits[place] = hit;
}

double meetingTolerance(const CurvePiece& first, const CurvePiece& second) {
    // The size that counts is the smaller one's: a short line may end within a huge arc's tolerance of
    // nothing.
    return meetingTolerance(std::min(first.size() > 0 ? first.size() : second.size(),
                                     second.size() > 0 ? second.size() : first.size()),
                            std::max(first.magnitude(), second.magnitude()));
}

PieceHits intersectPieces(const CurvePiece& first, const CurvePiece& second, Extension extension,
                          double tolerance) {
    return Meeting(first, second, extension, tolerance).find();
}

}  // namespace drafthost
