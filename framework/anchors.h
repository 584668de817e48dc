#pragma once

// Where the controls of a dialog stay when it is resized.

#include <windows.h>

#include <utility>
#include <vector>

namespace framework {

// Edges of the dialog that an edge of the control keeps its distance to. Opposite edges together stretch the
// control; a control without an edge in a direction gets half of the growth on either side of it.
enum Anchor : unsigned { anchorLeft = 1, anchorTop = 2, anchorRight = 4, anchorBottom = 8 };

class Anchors {
public:
    // Notes where the control is now, as part of a dialog of its present size. dialog: the same for all.
    // A control that does not exist is passed over. From now on the dialog does not paint over its controls.
    void add(HWND dialog, int controlId, unsigned edges);
    // Moves the controls to where they belong in the dialog's present client area. Their places follow from
    // those noted, not from the last ones, so nothing adds up over many changes.
    void apply() const;

private:
    struct Anchored {
        HWND control;
        unsigned edges;
        RECT area;  // in the client area that follows
        SIZE client;
    };
    HWND dialog_ = nullptr;
    std::vector<Anchored> controls_;
};

}  // namespace framework
