#pragma once

namespace tessary {

// The systems grid of the Layers dialog.
struct LayerSystemColumn {
    static constexpr int unused = 0;
    static constexpr int key = 1;
    static constexpr int name = 2;
    static constexpr int sortOrder = 3;
};

// The general layer system is always there and no row of tblLayerSystem.
constexpr int generalSystemRow = 1;
constexpr int firstRealSystemRow = 2;
// In the place of a key.
constexpr int generalSystem = -1;

}  // namespace tessary
