// QNLeader: filing, exactly and as DXF groups.

#include "module/binding/value_list.h"
#include "module/leader/drawing_scale.h"
#include "module/leader/leader_entity.h"

namespace tessary {

namespace {

// Version 1 kept the offset as a size on paper, which the drawing's scale turns into drawing units.
constexpr std::int32_t paperOffsetVersion = 1;
constexpr std::int32_t currentVersion = 2;

AcGePoint3d pointOf(const resbuf& node) {
    const double* const point = node.resval.rpoint;
    return {point[0], point[1], point[2]};
}

}  // namespace

Acad::ErrorStatus QNLeader::dwgOutFields(AcDbDwgFiler* filer) const {
    assertReadEnabled();
    AcDbCurve::dwgOutFields(filer);
    if (const auto status = filer->writeInt32(currentVersion); status != Acad::eOk) {
        return status;
    }
    for (const AcGePoint3d* const point : {&start_, &middle_, &end_}) {
        if (const auto status = filer->writePoint3d(*point); status != Acad::eOk) {
            return status;
        }
    }
    if (const auto status = filer->writeDouble(offset_); status != Acad::eOk) {
        return status;
    }
    // Undoing may bring an erased block back; everywhere else it is gone.
    const bool isLost = blockId_.isErased() && filer->filerType() != AcDb::kUndoFiler;
    const bool hasBlock = blockId_.isValid() && !isLost;
    if (const auto status = filer->writeBool(hasBlock); status != Acad::eOk) {
        return status;
    }
    if (hasBlock) {
        if (const auto status = filer->writeHardPointerId(blockId_); status != Acad::eOk) {
            return status;
        }
    }
    return filer->filerStatus();
}

Acad::ErrorStatus QNLeader::dwgInFields(AcDbDwgFiler* filer) {
    if (!assertWriteEnabled()) {
        return Acad::eNotOpenForWrite;
    }
    // Leaders are read the same way for every purpose, but filers may expect to be asked.
    static_cast<void>(filer->filerType());
    // The leader's own data decide whether it can be read, not those of the entity.
    AcDbCurve::dwgInFields(filer);
    std::int32_t version = 0;
    if (const auto status = filer->readInt32(&version); status != Acad::eOk) {
        return status;
    }
    if (version > currentVersion) {
        return Acad::eMakeMeProxy;
    }
    // Version 0 and negative ones never held anything more: such a leader stays as it was made.
    if (version < paperOffsetVersion) {
        return filer->filerStatus();
    }
    return readMembers(*filer, version);
}

Acad::ErrorStatus QNLeader::readMembers(AcDbDwgFiler& filer, std::int32_t version) {
    for (AcGePoint3d* const point : {&start_, &middle_, &end_}) {
        if (const auto status = filer.readPoint3d(point); status != Acad::eOk) {
            return status;
        }
    }
    if (const auto status = filer.readDouble(&offset_); status != Acad::eOk) {
        return status;
    }
    // The scale of the drawing that the drafter works in, not of the one that is read: the leader comes to
    // stand among its annotation.
    if (version == paperOffsetVersion) {
        offset_ *= drawingScale();
    }
    blockId_ = AcDbObjectId::kNull;
    bool hasBlock = false;
    if (const auto status = filer.readBool(&hasBlock); status != Acad::eOk) {
        return status;
    }
    if (hasBlock) {
        // A block that did not come along leaves the leader without a symbol; its segments are worth keeping.
        const auto status = filer.readHardPointerId(&blockId_);
        if (status != Acad::eOk && status != Acad::eUnknownHandle) {
            return status;
        }
    }
    blockReference_.setBlockTableRecord(blockId_);
    updateBlockPlacement();
    setOffset(offset_);
    // The symbol of a version 1 leader has no layer of its own until the leader is changed: drawings that
    // were made with it show it in the leader's look, and keep it.
    if (version == currentVersion) {
        blockReference_.setLayer(layerId(), true, false);
    }
    return filer.filerStatus();
}

// Without the block: those who read leaders from DXF files know these groups and no others. Programs set the
// block again.
Acad::ErrorStatus QNLeader::dxfOutFields(AcDbDxfFiler* filer) const {
    assertReadEnabled();
    AcDbCurve::dxfOutFields(filer);
    filer->writeItem(100, L"QNLeader");
    filer->writeItem(10, start_);
    filer->writeItem(11, middle_);
    filer->writeItem(12, end_);
    filer->writeItem(40, offset_);
    return filer->filerStatus();
}

Acad::ErrorStatus QNLeader::dxfInFields(AcDbDxfFiler* filer) {
    if (!assertWriteEnabled()) {
        return Acad::eNotOpenForWrite;
    }
    if (const auto status = AcDbCurve::dxfInFields(filer); status != Acad::eOk) {
        return status;
    }
    if (!filer->atSubclassData(L"QNLeader")) {
        return Acad::eBadDxfSequence;
    }
    for (;;) {
        const ValueList group = ownValueList(acutNewRb(RTNIL));
        if (filer->readResBuf(group.get()) != Acad::eOk) {
            break;
        }
        switch (group->restype) {
            case 10: start_ = pointOf(*group); break;
            case 11: middle_ = pointOf(*group); break;
            case 12: end_ = pointOf(*group); break;
            case 40: setOffset(group->resval.rreal); break;
            default: break;
        }
    }
    updateBlockPlacement();
    // Reading ends at the first group that cannot be had, which mostly is the end: the filer knows the
    // difference.
    return filer->filerStatus();
}

}  // namespace tessary
