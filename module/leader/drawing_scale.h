#pragma once

namespace tessary {

// What sizes on paper are multiplied by for the model: the current document's DIMSCALE, 48 for a plan at 1/4"
// = 1'. 0 there means that each viewport scales annotation itself; sizes then stay as they are, as they do
// without a document: 1. Always above 0.
double drawingScale();

}  // namespace tessary
