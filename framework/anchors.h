#pragma once

// Where the controls of a dialog stay when it is resized.

#include <windows.h>

#include <vector>

namespace framework {

// Edges of the dialog that an edge of the control keeps its distance to. Opposite edges together stretch the
// control; a control without an edge in a direction keeps the same share of the space on both sides.
enum Anchor : unsigned { anchorLeft = 1, anchorTop = 2, anchorRight = 4, anchorBottom = 8 };

class Anchors {
public:
    // Notes where the control is now, as part of a dialog of its present size. dialog: the same for all.
    // A control that does not exist is passed over.
    void add(HWND dialog, int controlId, unsigned edges);
    // Moves the controls to where they belong in the dialog's present client area.
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
