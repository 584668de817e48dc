#pragma once

// Taking entities apart, the parts again, and so on.

#include <list>
#include <vector>

#include "host/api/entity.h"
#include "host/database/nesting.h"

namespace drafthost {

// The block that a reference shows, or the blocks that an entity of a module refers to and may draw as a part
// of itself.
std::vector<AcDbObjectId> blocksShownBy(const AcDbEntity& entity);

// A visit to these blocks. A symbol may be the block that its entity lies in; taken apart without such a
// visit, its parts would have no end.
class PartsVisit {
public:
    explicit PartsVisit(const AcDbEntity& entity);
    // False: a block is being visited already, further up, or lies too deep.
    bool entered() const { return entered_; }

private:
    std::list<BlockVisit> visits_;
    bool entered_ = true;
};

}  // namespace drafthost
