#pragma once

// Which blocks are being gone through at the moment, so that no drawing whose blocks contain each other, or
// lie very deep in each other, makes the host run out of stack or go on without end.

#include <algorithm>
#include <vector>

#include "host/api/database_ids.h"

namespace drafthost {

// Blocks in blocks, and entities that draw entities: what lies deeper is not drawn, measured or snapped to.
constexpr int kDeepestNesting = 64;

class BlockVisit {
public:
    explicit BlockVisit(AcDbObjectId block) {
        entered_ = chain().size() < kDeepestNesting && std::ranges::find(chain(), block) == chain().end();
        if (entered_)
            chain().push_back(block);
    }
    ~BlockVisit() {
        if (entered_)
            chain().pop_back();
    }
    BlockVisit(const BlockVisit&) = delete;
    BlockVisit& operator=(const BlockVisit&) = delete;
    // False: the block is being visited already, further up, or lies too deep.
    bool entered() const { return entered_; }

private:
    static std::vector<AcDbObjectId>& chain() {
        static std::vector<AcDbObjectId> blocks;
        return blocks;
    }
    bool entered_;
};

}  // namespace drafthost
