#include "tests/module/recording_draw.h"

#include "host/api/symbol_tables.h"

#include <numbers>
#include <sstream>

namespace tessary::testing {

void RecordingDraw::add(const AcGePoint3d& point) {
    points.push_back(transforms_.back() * point);
}

bool RecordingDraw::polyline(std::uint32_t count, const AcGePoint3d* vertices, const AcGeVector3d* normal,
                             std::int64_t marker) {
    std::ostringstream call;
    call << "polyline";
    for (std::uint32_t i = 0; i < count; ++i) {
        add(vertices[i]);
        call << " (" << vertices[i].x << " " << vertices[i].y << " " << vertices[i].z << ")";
    }
    call << (normal ? " normal" : "") << " marker " << marker;
    calls.push_back(call.str());
    return false;
}

bool RecordingDraw::polygon(std::uint32_t count, const AcGePoint3d* vertices) {
    for (std::uint32_t i = 0; i < count; ++i) {
        add(vertices[i]);
    }
    return false;
}

bool RecordingDraw::circle(const AcGePoint3d& center, double radius, const AcGeVector3d& normal) {
    const AcGeMatrix3d toWorld = AcGeMatrix3d::planeToWorld(normal);
    for (int i = 0; i < 32; ++i) {
        const double angle = i * std::numbers::pi / 16;
        add(center + toWorld * AcGeVector3d(std::cos(angle), std::sin(angle), 0) * radius);
    }
    return false;
}

bool RecordingDraw::draw(AcGiDrawable* drawable) {
    calls.push_back("draw");
    if (entersDrawables) {
        return drawable->worldDraw(this);
    }
    if (colorOfDrawables != 0) {
        setColor(colorOfDrawables);
    }
    return drawsCompletely;
}

void RecordingDraw::pushModelTransform(const AcGeMatrix3d& matrix) {
    transforms_.push_back(transforms_.back() * matrix);
}

void RecordingDraw::setColor(std::uint16_t index) {
    color_ = index;
    calls.push_back("color " + std::to_string(index));
}

void RecordingDraw::setLayer(AcDbObjectId layer) {
    layer_ = layer;
    const AcDbObjectPointer<AcDbLayerTableRecord> record(layer, AcDb::kForRead);
    const std::wstring name = record ? record->name() : L"?";
    calls.push_back("layer " + std::string(name.begin(), name.end()));
}

}  // namespace tessary::testing
