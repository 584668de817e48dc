#pragma once

// Which blocks are being gone through at the moment, so that a damaged drawing whose blocks contain each
// other is drawn and measured without end neither in depth nor in time.

#include <algorithm>
#include <vector>

#include "host/api/database_ids.h"

namespace drafthost {

class BlockVisit {
public:
    explicit BlockVisit(AcDbObjectId block) {
        entered_ = std::ranges::find(chain(), block) == chain().end();
        if (entered_)
            chain().push_back(block);
    }
    ~BlockVisit() {
        if (entered_)
            chain().pop_back();
    }
    BlockVisit(const BlockVisit&) = delete;
    BlockVisit& operator=(const BlockVisit&) = delete;
    // False: the block is being visited already, further up.
    bool entered() const { return entered_; }

private:
    static std::vector<AcDbObjectId>& chain() {
        static std::vector<AcDbObjectId> blocks;
        return blocks;
    }
    bool entered_;
};

}  // namespace drafthost
