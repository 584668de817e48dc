#include "host/lisp/drawing_functions.h"

namespace drafthost::lisp {

void defineDrawingFunctions(Interpreter& interpreter) {
    for (const auto& table : {drawingEntityFunctions(), drawingTableFunctions(), drawingSelectionFunctions(),
                              drawingSettingFunctions(), inputPromptFunctions(), inputCommandFunctions(),
                              inputScreenFunctions()}) {
        interpreter.defineBuiltins(table);
    }
}

}  // namespace drafthost::lisp
