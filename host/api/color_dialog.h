#pragma once

#include "host/api/types.h"

// Has the drafter choose a color in the host's dialog. color: index 1 to 255, or 0 (by block) and 256 (by
// layer) where they are allowed; selected at first, and the choice on return. layerColor: what by layer
// stands for in the preview. False when the drafter cancelled or the dialog could not be created; color is
// then unchanged.
DRAFTHOST_API bool acedSetColorDialog(int& color, bool allowByBlockByLayer, int layerColor);
