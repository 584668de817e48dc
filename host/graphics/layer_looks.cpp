#include "host/graphics/layer_looks.h"

#include "host/api/database.h"

namespace drafthost::graphics {

namespace {

LayerLook readLook(AcDbObjectId layer) {
    LayerLook look;
    look.color = colorOfIndex(7);
    const AcDbObjectPointer<AcDbLayerTableRecord> record(layer, AcDb::kForRead);
    if (!record)
        return look;
    look.color = record->trueColor() >= 0 ? rgbOf(static_cast<std::uint32_t>(record->trueColor()))
                                          : colorOfIndex(record->colorIndex());
    look.linetype = record->linetypeObjectId();
    look.lineWeight = record->lineWeight();
    look.off = record->isOff();
    look.frozen = record->isFrozen();
    return look;
}

}  // namespace

const LayerLook& LayerLooks::of(AcDbObjectId layer) {
    if (lastLook_ && layer == last_)
        return *lastLook_;
    const auto [found, isNew] = looks_.try_emplace(layer);
    if (isNew)
        found->second = readLook(layer);
    last_ = layer;
    lastLook_ = &found->second;
    return found->second;
}

}  // namespace drafthost::graphics
