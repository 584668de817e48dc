// QNLeader: construction and editing.

#include "module/leader/leader_entity.h"

#include "module/drawing/geometry_helpers.h"
#include "module/drawing/model_space.h"

#include <cmath>

namespace tessary {

namespace {

bool isFinite(const AcGePoint3d& point) {
    return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}

}  // namespace

QNLeader::QNLeader() = default;

QNLeader::QNLeader(const AcGePoint3d& start, const AcGePoint3d& middle, const AcGePoint3d& end, double offset,
                   AcDbObjectId blockId, AcDbObjectId layerId)
    : start_(start), middle_(middle), end_(end) {
    QNLeader::setLayer(layerId, true, false);
    blockId_ = blockId;
    blockReference_.setBlockTableRecord(blockId);
    blockReference_.setLayer(layerId, true, false);
    updateBlockPlacement();
    setOffset(offset);
}

AcGePoint3d QNLeader::tailPoint() const {
    return polarPoint(end_, angleTo(end_, middle_), offset_);
}

AcDbLine QNLeader::firstSegment() const {
    return AcDbLine(start_, middle_);
}

AcDbLine QNLeader::secondSegment() const {
    return AcDbLine(middle_, tailPoint());
}

Acad::ErrorStatus QNLeader::setPoints(const AcGePoint3d& start, const AcGePoint3d& middle,
                                      const AcGePoint3d& end) {
    if (!isFinite(start) || !isFinite(middle) || !isFinite(end)) {
        return Acad::eInvalidInput;
    }
    if (!assertWriteEnabled()) {
        return Acad::eNotOpenForWrite;
    }
    start_ = start;
    middle_ = middle;
    end_ = end;
    updateBlockPlacement();
    return Acad::eOk;
}

Acad::ErrorStatus QNLeader::setOffset(double offset) {
    if (!std::isfinite(offset)) {
        return Acad::eInvalidInput;
    }
    if (!assertWriteEnabled()) {
        return Acad::eNotOpenForWrite;
    }
    offset_ = offset;
    return blockReference_.setScaleFactors({offset, offset, offset});
}

bool QNLeader::setBlock(const ACHAR* blockName) {
    AcDbObjectId found;
    if (!assertWriteEnabled() || !findOrLoadBlock(blockName, found)) {
        return false;
    }
    blockId_ = found;
    blockReference_.setBlockTableRecord(found);
    return true;
}

Acad::ErrorStatus QNLeader::setLayer(AcDbObjectId layerId, bool doSubents, bool allowHiddenLayer) {
    if (!assertWriteEnabled()) {
        return Acad::eNotOpenForWrite;
    }
    const Acad::ErrorStatus status = AcDbCurve::setLayer(layerId, doSubents, allowHiddenLayer);
    if (status != Acad::eOk || !doSubents) {
        return status;
    }
    return blockReference_.setLayer(layerId, doSubents, allowHiddenLayer);
}

void QNLeader::updateBlockPlacement() {
    blockReference_.setPosition(end_);
    blockReference_.setRotation(angleTo(middle_, end_));
}

bool QNLeader::rolloverHit(std::uint64_t, std::uint64_t, bool) {
    return false;
}

Acad::ErrorStatus QNLeader::getPlane(AcGePlane&, AcDb::Planarity&) const {
    return Acad::eNotApplicable;
}

Acad::ErrorStatus QNLeader::audit(AcDbAuditInfo*) {
    return Acad::eOk;
}

AcGiDrawable::DrawableType QNLeader::drawableType() const {
    return kGeometry;
}

bool QNLeader::isPlanar() const {
    return false;
}

}  // namespace tessary
