#include "host/graphics/solid_export.h"

#include <algorithm>
#include <cmath>
#include <cwctype>
#include <filesystem>

#include "host/database/unknown_objects.h"
#include "host/exchange/file_replace.h"
#include "host/graphics/resolving_draw.h"

namespace drafthost::graphics {

namespace {

using exchange::ShownSolid;

std::wstring handleText(AcDbHandle handle) {
    wchar_t digits[24];
    swprintf(digits, 24, L"%llX", static_cast<unsigned long long>(handle.value()));
    return digits;
}

std::wstring layerName(AcDbObjectId layer) {
    const AcDbObjectPointer<AcDbLayerTableRecord> record(layer, AcDb::kForRead);
    return record ? record->name() : L"";
}

// What a solid is called whose class says nothing about it.
std::wstring kindByClass(const AcDbEntity& entity) {
    if (const auto* const proxy = AcDbUnknownEntity::cast(&entity))
        return proxy->dxfName();
    const ACHAR* const name = entity.isA()->dxfName();
    return name ? name : entity.isA()->name();
}

class SolidCollector final : public ResolvingDraw {
public:
    SolidCollector(const AcDbDatabase& database, double deviation)
        : ResolvingDraw(database, deviation, AcGeVector3d::kZAxis) {}
    std::vector<ShownSolid> take() { return std::move(solids_); }

    bool polyline(std::uint32_t, const AcGePoint3d*, const AcGeVector3d*, std::int64_t) override {
        return false;
    }
    bool polygon(std::uint32_t, const AcGePoint3d*) override { return false; }
    bool polyPolygon(std::uint32_t, const std::uint32_t*, const AcGePoint3d*) override { return false; }
    bool circle(const AcGePoint3d&, double, const AcGeVector3d&) override { return false; }
    bool circularArc(const AcGePoint3d&, double, const AcGeVector3d&, const AcGeVector3d&, double) override {
        return false;
    }
    bool text(const AcGePoint3d&, const AcGeVector3d&, const AcGeVector3d&, const ACHAR*, int,
              const AcGiTextStyle&) override {
        return false;
    }
    bool shell(std::uint32_t pointCount, const AcGePoint3d* points, std::uint32_t faceListSize,
               const std::int32_t* faceList, const AcGiEdgeData* edges, const AcGiFaceData* faces) override {
        if (hidden() || open_.empty())
            return false;
        Shell body = welded(readShell(pointCount, points, faceListSize, faceList, edges, faces));
        if (!isClosed(body))
            return false;
        OpenEntity& entity = open_.back();
        entity.area += areaOf(body);
        transformShell(body, transform());
        const double volume = volumeOf(body), area = areaOf(body);
        // Two sides of one face enclose nothing, whatever rounding makes of it.
        constexpr double kFlat = 1e-12;
        if (!(std::fabs(volume) > kFlat * area * std::sqrt(area)))
            return false;
        if (volume < 0)
            turnOver(body);
        entity.shownVolume += std::fabs(volume);
        entity.shownArea += area;
        entity.bodies.push_back(std::move(body));
        return false;
    }

protected:
    // What an entity draws with the help of others that are in no drawing belongs to it.
    void beginEntity(AcDbEntity& entity) override {
        if (!entity.objectId().isNull())
            open_.push_back(
                {handleText(entity.objectId().handle()), hidden(), effectiveLayer(), {}, 0, 0, 0});
    }
    void endEntity(AcDbEntity& entity) override {
        if (entity.objectId().isNull())
            return;
        OpenEntity ended = std::move(open_.back());
        open_.pop_back();
        if (ended.isHidden)
            return;
        ShownSolid solid;
        AcDbSolidMeasures measures;
        if (entity.getSolidMeasures(measures) == Acad::eOk) {
            const double volumeScale = std::fabs(transform().det());
            const double areaScale = transform().isUniScaledOrtho() || !(ended.area > 0)
                                         ? std::pow(volumeScale, 2.0 / 3)
                                         : ended.shownArea / ended.area;
            solid.kind = measures.kind;
            solid.volume = measures.volume * volumeScale;
            solid.surfaceArea = measures.surfaceArea * areaScale;
            solid.sheetArea = measures.sheetArea * areaScale;
        } else if (ended.bodies.empty()) {
            return;
        } else {
            solid.kind = kindByClass(entity);
            solid.volume = ended.shownVolume;
            solid.surfaceArea = ended.shownArea;
        }
        for (const OpenEntity& outer : open_)
            solid.handle += outer.handle + L"/";
        solid.handle += ended.handle;
        solid.layer = layerName(ended.layer);
        solid.bodies = std::move(ended.bodies);
        solids_.push_back(std::move(solid));
    }

private:
    // An entity that is drawing itself.
    struct OpenEntity {
        std::wstring handle;
        bool isHidden = false;
        AcDbObjectId layer;
        std::vector<Shell> bodies;
        double area = 0;                        // of its bodies, in its own coordinates
        double shownVolume = 0, shownArea = 0;  // in the world's
    };
    std::vector<OpenEntity> open_;
    std::vector<ShownSolid> solids_;
};

std::wstring lowerExtension(const std::filesystem::path& path) {
    std::wstring extension = path.extension().wstring();
    std::ranges::transform(extension, extension.begin(),
                           [](wchar_t c) { return static_cast<wchar_t>(std::towlower(c)); });
    return extension;
}

}  // namespace

std::vector<ShownSolid> collectSolids(const AcDbDatabase& database) {
    SolidCollector collector(database, deviationFor(sizeOfDrawing(database)));
    collector.drawModelSpace();
    return collector.take();
}

bool writeSolids(const AcDbDatabase& database, const std::wstring& path, std::wstring& problem) {
    const std::filesystem::path target(path);
    const std::wstring extension = lowerExtension(target);
    if (extension != L".stl" && extension != L".obj" && extension != L".csv") {
        problem = L"solids are written as .stl, .obj or .csv";
        return false;
    }
    const std::vector<ShownSolid> solids = collectSolids(database);
    const bool isList = extension == L".csv";
    if (std::ranges::none_of(solids, [&](const ShownSolid& s) { return isList || !s.bodies.empty(); })) {
        problem = path + L" was not written: the drawing shows no solids.";
        return false;
    }
    const std::string bytes = isList                 ? exchange::solidListText(solids)
                              : extension == L".stl" ? exchange::stlBytes(solids)
                                                     : exchange::objText(solids);
    if (bytes.empty()) {
        problem = path + L" was not written: STL files cannot hold so many facets.";
        return false;
    }
    const Acad::ErrorStatus status = exchange::replaceFile(target, bytes);
    if (status == Acad::eOk)
        return true;
    problem = path + L" cannot be written: " + acadErrorStatusText(status) + L".";
    return false;
}

}  // namespace drafthost::graphics
