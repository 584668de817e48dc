#include "bench/module/bare_entities.h"

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

#include "host/api/database.h"
#include "host/api/editor.h"

namespace {

// Takes what is drawn and only counts it.
class Sink final : public AcGiWorldDraw, public AcGiWorldGeometry, public AcGiSubEntityTraits {
public:
    std::int64_t count = 0;

    AcGiWorldGeometry& geometry() const override { return const_cast<Sink&>(*this); }
    AcGiSubEntityTraits& subEntityTraits() const override { return const_cast<Sink&>(*this); }
    double deviation() const override { return 0.001; }
    bool polyline(std::uint32_t, const AcGePoint3d*, const AcGeVector3d*, std::int64_t) override {
        return counted();
    }
    bool polygon(std::uint32_t, const AcGePoint3d*) override { return counted(); }
    bool polyPolygon(std::uint32_t, const std::uint32_t*, const AcGePoint3d*) override { return counted(); }
    bool circle(const AcGePoint3d&, double, const AcGeVector3d&) override { return counted(); }
    bool circularArc(const AcGePoint3d&, double, const AcGeVector3d&, const AcGeVector3d&, double) override {
        return counted();
    }
    bool text(const AcGePoint3d&, const AcGeVector3d&, const AcGeVector3d&, const ACHAR*, int,
              const AcGiTextStyle&) override {
        return counted();
    }
    bool draw(AcGiDrawable* drawable) override { return drawable->worldDraw(this); }
    void pushModelTransform(const AcGeMatrix3d&) override {}
    void popModelTransform() override {}
    void setColor(std::uint16_t) override {}
    std::uint16_t color() const override { return 256; }
    void setBackgroundColor() override {}
    void setTrueColor(std::uint32_t) override {}
    void setLayer(AcDbObjectId) override {}
    AcDbObjectId layerId() const override { return {}; }
    void setLineType(AcDbObjectId) override {}
    AcDbObjectId lineTypeId() const override { return {}; }
    void setLineTypeScale(double) override {}
    double lineTypeScale() const override { return 1; }
    void setLineWeight(int) override {}
    int lineWeight() const override { return -1; }
    void setSelectionMarker(std::int64_t) override {}
    void setFill(bool) override {}

private:
    bool counted() {
        ++count;
        return false;
    }
};

// Seconds for that many rounds of work(entity) over the entities in the arguments; nil when one cannot be
// opened.
template <class Work>
int timedEntities(Work work) {
    resbuf* const arguments = acedGetArgs();
    const int count = arguments ? arguments->resval.rlong : 0;
    std::vector<std::unique_ptr<AcDbObjectPointer<AcDbEntity>>> entities;
    acedRetNil();
    for (const resbuf* node = arguments ? arguments->rbnext : nullptr; node; node = node->rbnext) {
        AcDbObjectId id;
        acdbGetObjectId(id, node->resval.rlname);
        entities.push_back(std::make_unique<AcDbObjectPointer<AcDbEntity>>(id, AcDb::kForRead));
    }
    acutRelRb(arguments);
    for (const auto& entity : entities) {
        if (!*entity)
            return RSRSLT;
    }
    const double start = secondsNow();
    for (int i = 0; i < count; ++i) {
        for (const auto& entity : entities)
            work(*entity->object());
    }
    acedRetReal(secondsNow() - start);
    return RSRSLT;
}

}  // namespace

double secondsNow() {
    LARGE_INTEGER count, frequency;
    QueryPerformanceCounter(&count);
    QueryPerformanceFrequency(&frequency);
    return static_cast<double>(count.QuadPart) / static_cast<double>(frequency.QuadPart);
}

int bareDraw() {
    Sink sink;
    return timedEntities([&sink](AcDbEntity& entity) { sink.draw(&entity); });
}

int bareExtents() {
    return timedEntities([](AcDbEntity& entity) {
        AcDbExtents extents;
        entity.getGeomExtents(extents);
    });
}

int bareOsnap() {
    const AcGePoint3d pick(5, 2, 0), last(0, 9, 0);
    return timedEntities([&](AcDbEntity& entity) {
        AcGePoint3dArray points;
        AcDbIntArray ids;
        for (const AcDb::OsnapMode mode :
             {AcDb::kOsModeEnd, AcDb::kOsModeMid, AcDb::kOsModeNear, AcDb::kOsModePerp})
            entity.getOsnapPoints(mode, 0, pick, last, AcGeMatrix3d(), points, ids);
    });
}

int bareLoad() {
    resbuf* const arguments = acedGetArgs();
    const std::wstring file = arguments && arguments->restype == RTSTR ? arguments->resval.rstring : L"";
    acutRelRb(arguments);
    acedRetNil();
    const double start = secondsNow();
    AcDbDatabase database(false, true);
    if (database.readDxfFile(file.c_str()) == Acad::eOk)
        acedRetReal(secondsNow() - start);
    return RSRSLT;
}
