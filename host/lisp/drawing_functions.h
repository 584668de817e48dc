#pragma once

// LISP functions of the drawing and the editor: what a document adds to the language. The document is
// attached to the interpreter (Interpreter::attach<drafthost::Document>).

#include <span>

#include "host/lisp/interpreter.h"

namespace drafthost::lisp {

// Defines all of the tables below.
void defineDrawingFunctions(Interpreter& interpreter);

std::span<const BuiltinDefinition> drawingEntityFunctions();     // drawing_entities.cpp
std::span<const BuiltinDefinition> drawingTableFunctions();      // drawing_tables.cpp
std::span<const BuiltinDefinition> drawingSelectionFunctions();  // drawing_selection.cpp
std::span<const BuiltinDefinition> drawingSettingFunctions();    // drawing_settings.cpp
std::span<const BuiltinDefinition> inputPromptFunctions();       // input_prompts.cpp
std::span<const BuiltinDefinition> inputCommandFunctions();      // input_commands.cpp
std::span<const BuiltinDefinition> inputScreenFunctions();       // input_screen.cpp

}  // namespace drafthost::lisp
