// Intersection of entities.

#include "host/database/intersect_with.h"

#include <algorithm>
#include <memory>
#include <span>

#include "host/api/block_reference.h"
#include "host/api/curves.h"
#include "host/api/text_entities.h"
#include "host/database/block_places.h"
#include "host/database/curve_states.h"
#include "host/database/face_state.h"
#include "host/database/parts_visit.h"
#include "host/database/piece_queries.h"
#include "host/geometry/intersect.h"

namespace drafthost {
namespace {

// Block definitions that are being taken apart, outermost first.
using OpenBlocks = std::vector<AcDbObjectId>;

bool appendPieces(const AcDbEntity* entity, std::vector<CurvePiece>& pieces, OpenBlocks& open);

// Lines, arcs and circles are one piece and need no list.
bool singlePiece(const AcDbEntity* entity, CurvePiece& piece) {
    if (entity->isKindOf(AcDbLine::desc())) {
        piece = pieceOf(readState<LineState>(entity));
    } else if (entity->isKindOf(AcDbArc::desc())) {
        piece = pieceOf(readState<ArcState>(entity));
    } else if (entity->isKindOf(AcDbCircle::desc())) {
        piece = pieceOf(readState<CircleState>(entity));
    } else {
        return false;
    }
    return true;
}

// Segments without length are met through their neighbours, except in a polyline that is all one point.
void appendPolyline(const PolylineState& state, std::vector<CurvePiece>& pieces) {
    if (state.vertices.empty())
        return;
    const PlaneAxes axes = planeAxes(state.normal);
    if (state.length() == 0) {
        pieces.push_back(pieceOf(state, 0, axes));
        return;
    }
    const std::size_t before = pieces.size();
    for (std::size_t i = 0; i < state.segmentCount(); ++i) {
        const CurvePiece piece = pieceOf(state, i, axes);
        if (piece.extent > 0)
            pieces.push_back(piece);
    }
    // The outermost segments that have length are the ones to lengthen.
    pieces[before].extendsBackward = pieces.back().extendsForward = !state.isClosed();
}

// A face is not lengthened.
void appendFace(const FaceState& face, std::vector<CurvePiece>& pieces) {
    for (const FaceEdge& edge : shownEdgesOf(face)) {
        CurvePiece piece = segmentPiece(edge.start, edge.end);
        piece.extendsBackward = piece.extendsForward = false;
        pieces.push_back(piece);
    }
}

// The box in the text's own directions: that of a copy turned into the world's axes.
bool appendTextBox(const AcDbEntity* text, const AcGeMatrix3d& toWorld, std::vector<CurvePiece>& pieces) {
    const std::unique_ptr<AcDbObject> copy(text->clone());
    auto* level = AcDbEntity::cast(copy.get());
    AcDbExtents box;
    if (!level || level->transformBy(toWorld.inverse()) != Acad::eOk)
        return false;
    if (level->getGeomExtents(box) != Acad::eOk || !box.isValid())
        return false;
    const AcGePoint3d low = box.minPoint(), high = box.maxPoint();
    const AcGePoint3d corners[4] = {
        low, {high.x, low.y, low.z}, {high.x, high.y, low.z}, {low.x, high.y, low.z}};
    for (int i = 0; i < 4; ++i) {
        CurvePiece side = segmentPiece(toWorld * corners[i], toWorld * corners[(i + 1) % 4]);
        side.extendsBackward = side.extendsForward = false;
        pieces.push_back(side);
    }
    return true;
}

bool appendText(const AcDbText* text, std::vector<CurvePiece>& pieces) {
    const AcGeMatrix3d turn = AcGeMatrix3d::rotation(text->rotation(), AcGeVector3d::kZAxis);
    return appendTextBox(text, AcGeMatrix3d::planeToWorld(text->normal()) * turn, pieces);
}

bool appendText(const AcDbMText* text, std::vector<CurvePiece>& pieces) {
    const AcGeVector3d z = text->normal().normal(), x = text->direction().normal();
    AcGeMatrix3d toWorld;
    toWorld.setCoordSystem(AcGePoint3d::kOrigin, x, z.crossProduct(x), z);
    return !toWorld.isSingular() && appendTextBox(text, toWorld, pieces);
}

bool appendParts(const AcDbEntity* entity, std::vector<CurvePiece>& pieces, OpenBlocks& open) {
    const std::vector<AcDbObjectId> blocks = blocksShownBy(*entity);
    const bool isOpen = std::ranges::find_first_of(blocks, open) != blocks.end();
    if (isOpen || open.size() >= kDeepestNesting)
        return false;
    open.insert(open.end(), blocks.begin(), blocks.end());
    AcDbEntityArray parts;
    const auto* const reference = AcDbBlockReference::cast(entity);
    const auto status = reference ? appendShownParts(*reference, parts) : entity->explode(parts);
    const bool found = status == Acad::eOk;
    for (AcDbEntity* part : parts) {
        const std::unique_ptr<AcDbEntity> owned(part);
        if (found)
            appendPieces(part, pieces, open);
    }
    open.resize(open.size() - blocks.size());
    return found;
}

bool appendBlock(const AcDbBlockReference* reference, std::vector<CurvePiece>& pieces, OpenBlocks& open) {
    const std::size_t before = pieces.size();
    const bool found = appendParts(reference, pieces, open);
    // A block is not lengthened, whatever it is made of.
    for (std::size_t i = before; i < pieces.size(); ++i)
        pieces[i].extendsBackward = pieces[i].extendsForward = false;
    return found;
}

bool appendPieces(const AcDbEntity* entity, std::vector<CurvePiece>& pieces, OpenBlocks& open) {
    CurvePiece single;
    if (singlePiece(entity, single)) {
        pieces.push_back(single);
        return true;
    }
    if (entity->isKindOf(AcDbPolyline::desc())) {
        appendPolyline(readState<PolylineState>(entity), pieces);
        return true;
    }
    if (entity->isKindOf(AcDbFace::desc())) {
        appendFace(readState<FaceState>(entity), pieces);
        return true;
    }
    if (const auto* text = AcDbText::cast(entity))
        return appendText(text, pieces);
    if (const auto* paragraph = AcDbMText::cast(entity))
        return appendText(paragraph, pieces);
    if (const auto* reference = AcDbBlockReference::cast(entity))
        return appendBlock(reference, pieces, open);
    return appendParts(entity, pieces, open);
}

// The pieces of one operand, without a list for the common single one.
class Operand {
public:
    explicit Operand(const AcDbEntity* entity) {
        if (singlePiece(entity, single_)) {
            pieces_ = {&single_, 1};
            valid_ = true;
        } else {
            valid_ = intersectionCurves(entity, many_);
            pieces_ = many_;
        }
    }
    Operand(const Operand&) = delete;
    Operand& operator=(const Operand&) = delete;
    bool isValid() const { return valid_; }
    std::span<const CurvePiece> pieces() const { return pieces_; }

private:
    CurvePiece single_;
    std::vector<CurvePiece> many_;
    std::span<const CurvePiece> pieces_;
    bool valid_ = false;
};

// Appends the points of one request, each once, in order along the first operand.
class PointCollector {
public:
    explicit PointCollector(AcGePoint3dArray& points) : points_(points), first_(points.length()) {}

    // A touch of two polylines' vertices is found by up to four pairs of segments.
    void add(const PieceHits& hits, double tolerance) {
        for (const PieceHit& hit : hits) {
            const auto isKnown = [&](const AcGePoint3d& point) {
                return point.distanceTo(hit.point) <= sameHitTolerance(tolerance);
            };
            if (std::none_of(points_.begin() + first_, points_.end(), isKnown))
                points_.append(hit.point);
        }
    }

private:
    AcGePoint3dArray& points_;
    int first_;
};

// Hits of one piece of the first operand with all of the second, in order along it.
struct RowHit {
    PieceHit hit;
    double tolerance;
};

template <class Meet>
void meetAll(std::span<const CurvePiece> first, std::span<const CurvePiece> second,
             const std::vector<Box>& boxes, Meet meet, PointCollector& collector) {
    std::vector<RowHit> row;
    for (const CurvePiece& a : first) {
        row.clear();
        const Box box = boxOf(a);
        for (std::size_t i = 0; i < second.size(); ++i) {
            const double tolerance = meetingTolerance(a, second[i]);
            if (!boxes.empty() && box.isApartFrom(boxes[i], tolerance))
                continue;
            for (const PieceHit& hit : meet(a, second[i], tolerance))
                row.push_back({hit, tolerance});
        }
        std::stable_sort(row.begin(), row.end(),
                         [](const RowHit& x, const RowHit& y) { return x.hit.parameter < y.hit.parameter; });
        for (const RowHit& found : row) {
            PieceHits one;
            one.count = 1;
            one.hits[0] = found.hit;
            collector.add(one, found.tolerance);
        }
    }
}

template <class Meet>
void collect(const Operand& first, const Operand& second, bool boundedInSpace, Meet meet,
             AcGePoint3dArray& points) {
    PointCollector collector(points);
    const std::span<const CurvePiece> a = first.pieces(), b = second.pieces();
    if (a.size() == 1 && b.size() == 1) {
        const double tolerance = meetingTolerance(a[0], b[0]);
        collector.add(meet(a[0], b[0], tolerance), tolerance);
        return;
    }
    // Boxes sort most pairs out, unless pieces reach beyond them.
    std::vector<Box> boxes;
    if (boundedInSpace) {
        for (const CurvePiece& piece : b)
            boxes.push_back(boxOf(piece));
    }
    meetAll(a, b, boxes, meet, collector);
}

Extension extensionOf(AcDb::Intersect type) {
    return {type == AcDb::kExtendThis || type == AcDb::kExtendBoth,
            type == AcDb::kExtendArg || type == AcDb::kExtendBoth};
}

bool isKnownType(AcDb::Intersect type) {
    return type >= AcDb::kOnBothOperands && type <= AcDb::kExtendBoth;
}

AcDb::Intersect exchanged(AcDb::Intersect type) {
    if (type == AcDb::kExtendThis)
        return AcDb::kExtendArg;
    return type == AcDb::kExtendArg ? AcDb::kExtendThis : type;
}

// meet(a, b, tolerance) intersects two pieces; askOther asks the other entity's class, which may know more of
// itself than its parts tell. An entity without geometry refuses before it asks, so two such entities do not
// ask each other for ever.
template <class Meet, class AskOther>
Acad::ErrorStatus intersectEntities(const AcDbEntity* entity, const AcDbEntity* other, bool boundedInSpace,
                                    Meet meet, AskOther askOther, AcGePoint3dArray& points) {
    const Operand first(entity);
    if (!first.isValid())
        return Acad::eNotApplicable;
    const Operand second(other);
    if (!second.isValid())
        return askOther();
    collect(first, second, boundedInSpace, meet, points);
    return Acad::eOk;
}

}  // namespace

bool intersectionCurves(const AcDbEntity* entity, std::vector<CurvePiece>& pieces) {
    OpenBlocks open;
    return appendPieces(entity, pieces, open);
}

}  // namespace drafthost

using namespace drafthost;

Acad::ErrorStatus AcDbEntity::intersectWith(const AcDbEntity* other, AcDb::Intersect type,
                                            AcGePoint3dArray& points, std::int64_t thisMarker,
                                            std::int64_t otherMarker) const {
    if (!other)
        return Acad::eNullObjectPointer;
    if (!isKnownType(type))
        return Acad::eInvalidInput;
    return subIntersectWith(other, type, points, thisMarker, otherMarker);
}

Acad::ErrorStatus AcDbEntity::intersectWith(const AcDbEntity* other, AcDb::Intersect type,
                                            const AcGePlane& plane, AcGePoint3dArray& points,
                                            std::int64_t thisMarker, std::int64_t otherMarker) const {
    if (!other)
        return Acad::eNullObjectPointer;
    if (!isKnownType(type) || plane.normal().isZeroLength())
        return Acad::eInvalidInput;
    return subIntersectWith(other, type, plane, points, thisMarker, otherMarker);
}

Acad::ErrorStatus AcDbEntity::subIntersectWith(const AcDbEntity* other, AcDb::Intersect type,
                                               AcGePoint3dArray& points, std::int64_t thisMarker,
                                               std::int64_t otherMarker) const {
    const Extension extension = extensionOf(type);
    const auto meet = [&](const CurvePiece& a, const CurvePiece& b, double tolerance) {
        return intersectPieces(a, b, extension, tolerance);
    };
    const auto askOther = [&] {
        return other->intersectWith(this, exchanged(type), points, otherMarker, thisMarker);
    };
    return intersectEntities(this, other, type == AcDb::kOnBothOperands, meet, askOther, points);
}

Acad::ErrorStatus AcDbEntity::subIntersectWith(const AcDbEntity* other, AcDb::Intersect type,
                                               const AcGePlane& plane, AcGePoint3dArray& points,
                                               std::int64_t thisMarker, std::int64_t otherMarker) const {
    const Extension extension = extensionOf(type);
    const AcGeVector3d direction = plane.normal().normal();
    const auto meet = [&](const CurvePiece& a, const CurvePiece& b, double tolerance) {
        return intersectProjected(a, b, direction, extension, tolerance);
    };
    const auto askOther = [&] {
        return other->intersectWith(this, exchanged(type), plane, points, otherMarker, thisMarker);
    };
    return intersectEntities(this, other, false, meet, askOther, points);
}
