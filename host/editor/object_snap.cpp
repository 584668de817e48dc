#include "host/editor/object_snap.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/api/entity.h"
#include "host/database/names.h"
#include "host/documents/host.h"
#include "host/editor/coordinates.h"
#include "host/editor/entity_outline.h"
#include "host/editor/entity_pick.h"
#include "host/editor/system_variables.h"

namespace drafthost::editor {

namespace {

constexpr std::size_t kShortestWord = 3;
constexpr double kPickBoxPixels = 3;  // half the side of the pick box, which entity_pick.h gives in units
constexpr int kUsualAperture = 10;
// Of entities that pass through the aperture the nearest are intersected with each other.
constexpr std::size_t kMostIntersected = 64;

struct Word {
    std::wstring_view name;
    void (*use)(SnapModes& modes);
};

template <AcDb::OsnapMode Mode>
void useMode(SnapModes& modes) {
    modes.ofEntities.push_back(Mode);
}
void useNothing(SnapModes&) {}

constexpr Word kWords[] = {
    {L"ENDPOINT", useMode<AcDb::kOsModeEnd>},
    {L"MIDPOINT", useMode<AcDb::kOsModeMid>},
    {L"CENTER", useMode<AcDb::kOsModeCen>},
    {L"CENTRE", useMode<AcDb::kOsModeCen>},
    {L"NODE", useMode<AcDb::kOsModeNode>},
    {L"QUADRANT", useMode<AcDb::kOsModeQuad>},
    {L"INSERTION", useMode<AcDb::kOsModeIns>},
    {L"PERPENDICULAR", useMode<AcDb::kOsModePerp>},
    {L"TANGENT", useMode<AcDb::kOsModeTan>},
    {L"NEAREST", useMode<AcDb::kOsModeNear>},
    {L"INTERSECTION", [](SnapModes& modes) { modes.intersections = true; }},
    {L"APPARENT", [](SnapModes& modes) { modes.apparentIntersections = true; }},
    {L"EXTENSION", useNothing},
    {L"PARALLEL", useNothing},
    {L"NONE", useNothing},
    {L"QUICK", useNothing},
};

std::wstring_view trimmed(std::wstring_view text) {
    while (!text.empty() && (text.front() == L' ' || text.front() == L'_'))
        text.remove_prefix(1);
    while (!text.empty() && text.back() == L' ')
        text.remove_suffix(1);
    return text;
}

const Word* findWord(std::wstring_view given) {
    const std::wstring word = foldCase(trimmed(given));
    if (word.size() < kShortestWord)
        return nullptr;
    const auto* const found =
        std::ranges::find_if(kWords, [&](const Word& known) { return known.name.starts_with(word); });
    return found == std::end(kWords) ? nullptr : found;
}

double aperture(const Document& document) {
    const auto value = getVariable(document, L"APERTURE");
    const int* const pixels = value ? std::get_if<int>(&*value) : nullptr;
    return pickTolerance(*document.database()) * (pixels ? *pixels : kUsualAperture) / kPickBoxPixels;
}

bool isNear(const AcDbEntity& entity, const AcGePoint3d& point, double reach) {
    AcDbExtents box;
    entity.getGeomExtents(box);  // what it could measure counts, also when it failed at some part
    if (!box.isValid())
        return false;
    const AcGePoint3d& low = box.minPoint();
    const AcGePoint3d& high = box.maxPoint();
    return point.x >= low.x - reach && point.x <= high.x + reach && point.y >= low.y - reach &&
           point.y <= high.y + reach;
}

class Snapper {
public:
    Snapper(const Document& document, const AcGePoint3d& point)
        : document_(document), toWorld_(ucsToWorld(*document.database())), point_(toWorld_ * point),
          last_(toWorld_ * const_cast<Document&>(document).prompts().lastPoint()),
          reach_(aperture(document)) {}

    std::optional<AcGePoint3d> run(const SnapModes& modes) {
        for (const AcDbObjectId id : visibleEntities(*document_.database())) {
            const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
            if (entity && isNear(*entity, point_, reach_))
                ask(*entity, modes.ofEntities);
        }
        if (modes.intersections || modes.apparentIntersections)
            intersect(modes);
        if (!std::isfinite(distance_))
            return std::nullopt;
        return toWorld_.inverse() * found_;
    }

private:
    struct Crossing {
        AcDbObjectId entity;
        double distance;
    };

    void ask(AcDbEntity& entity, const std::vector<AcDb::OsnapMode>& modes) {
        const auto distance = distanceTo(outlineOf(entity), point_.convert2d());
        const bool crosses = distance && *distance <= reach_;
        if (crosses)
            crossing_.push_back({entity.objectId(), *distance});
        AcGePoint3dArray points;
        AcDbIntArray ids;
        for (const AcDb::OsnapMode mode : modes)
            entity.getOsnapPoints(mode, 0, point_, last_, AcGeMatrix3d::kIdentity, points, ids);
        for (const AcGePoint3d& point : points)
            consider(point, !crosses);
    }

    void consider(const AcGePoint3d& candidate, bool onlyInBox) {
        const AcGeVector2d apart = candidate.convert2d() - point_.convert2d();
        const double distance = apart.length();
        if (onlyInBox && (std::abs(apart.x) > reach_ || std::abs(apart.y) > reach_))
            return;
        if (distance < distance_) {
            distance_ = distance;
            found_ = candidate;
        }
    }

    void intersect(const SnapModes& modes) {
        std::ranges::stable_sort(crossing_, {}, &Crossing::distance);
        if (crossing_.size() > kMostIntersected)
            crossing_.resize(kMostIntersected);
        for (std::size_t i = 0; i < crossing_.size(); ++i) {
            for (std::size_t j = i + 1; j < crossing_.size(); ++j)
                intersect(crossing_[i].entity, crossing_[j].entity, modes);
        }
    }

    void intersect(AcDbObjectId first, AcDbObjectId second, const SnapModes& modes) {
        const AcDbObjectPointer<AcDbEntity> a(first, AcDb::kForRead), b(second, AcDb::kForRead);
        if (!a || !b)
            return;
        AcGePoint3dArray points;
        if (modes.intersections)
            a->intersectWith(b.object(), AcDb::kOnBothOperands, points);
        if (modes.apparentIntersections)
            a->intersectWith(b.object(), AcDb::kOnBothOperands, AcGePlane(), points);
        for (const AcGePoint3d& point : points)
            consider(point, true);
    }

    const Document& document_;
    AcGeMatrix3d toWorld_;
    AcGePoint3d point_, last_;  // world
    double reach_;
    std::vector<Crossing> crossing_;
    AcGePoint3d found_;
    double distance_ = std::numeric_limits<double>::infinity();
};

}  // namespace

std::optional<SnapModes> snapModes(std::wstring_view words) {
    SnapModes modes;
    for (;;) {
        const std::size_t comma = words.find(L',');
        const Word* const word = findWord(words.substr(0, comma));
        if (!word)
            return std::nullopt;
        word->use(modes);
        if (comma == std::wstring_view::npos)
            return modes;
        words.remove_prefix(comma + 1);
    }
}

std::optional<AcGePoint3d> snappedPoint(const Document& document, const AcGePoint3d& point,
                                        const SnapModes& modes) {
    return Snapper(document, point).run(modes);
}

}  // namespace drafthost::editor
