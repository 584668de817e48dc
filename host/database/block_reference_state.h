#pragma once

// Contents of a block reference.

#include "host/database/object_imp.h"

namespace drafthost {

struct BlockReferenceState : ClonedState<BlockReferenceState, EntityState> {
    AcDbObjectId block;
    AcGePoint3d position;  // entity coordinates
    double scaleX = 1, scaleY = 1, scaleZ = 1;
    double rotation = 0;  // radians
    AcGeVector3d normal{0, 0, 1};
    std::int32_t columns = 1, rows = 1;
    double columnSpacing = 0, rowSpacing = 0;
    std::vector<AcDbObjectId> attributes;  // in order, erased ones too
    AcDbObjectId sequenceEnd;              // null: has never had attributes

    void file(StateWalker& walker) override;
    void becomeCopy() override {
        EntityState::becomeCopy();
        attributes.clear();
        sequenceEnd = AcDbObjectId();
    }
};

}  // namespace drafthost
