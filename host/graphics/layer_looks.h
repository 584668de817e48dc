#pragma once

// Looks of a drawing's layers, read once each while the drawing is drawn.

#include <unordered_map>

#include "host/api/database_ids.h"
#include "host/graphics/color_table.h"

namespace drafthost::graphics {

struct LayerLook {
    Rgb color;
    AcDbObjectId linetype;
    int lineWeight = AcDb::kLnWtByLwDefault;
    bool off = false;     // what lies on it is not shown
    bool frozen = false;  // nor what is inside of that, whatever layer it lies on
    bool hidden() const { return off || frozen; }
};

class LayerLooks {
public:
    // A null or missing layer looks like a new one.
    const LayerLook& of(AcDbObjectId layer);

private:
    std::unordered_map<AcDbObjectId, LayerLook> looks_;
    AcDbObjectId last_;
    const LayerLook* lastLook_ = nullptr;  // of last_; points into looks_
};

}  // namespace drafthost::graphics
