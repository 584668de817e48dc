#pragma once

// Selecting entities: by asking the drafter, by window, by filter (acedSSGet and ssget).

#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

#include "host/api/editor.h"
#include "host/editor/entity_outline.h"
#include "host/editor/selection_filter.h"
#include "host/editor/selection_set.h"

namespace drafthost::editor {

struct SelectRequest {
    // Empty: the drafter is asked (or, with one point, the entity there is taken). X: the whole drawing. A:
    // all but frozen layers. L: the last visible entity. P: the previous selection. I: what is selected
    // already. W, C: window and crossing; WP, CP: polygons; F: fence. A leading underscore does not matter;
    // behind a colon stand S (one selection only), L (not on locked layers), $ (own prompts), K (keywords)
    // and E (ignored).
    std::wstring mode;
    std::vector<AcGePoint3d> points;  // UCS
    SelectionFilter filter;
    std::wstring addPrompt, removePrompt;  // empty: the host's own
    std::wstring keywords;
};
struct SelectResult {
    int status = RTERROR;               // RTNORM, RTERROR (nothing selected, unknown mode), RTCAN
    std::shared_ptr<SelectionSet> set;  // of RTNORM
    // What crossing windows and polygons found, and the last of these in plan view; without corners when
    // there was none.
    std::unordered_set<AcDbObjectId> crossed;
    Region lastCrossing;
};
SelectResult select(Document& document, const SelectRequest& request);

}  // namespace drafthost::editor
