#pragma once

// The rows behind system_variables.h.

#include <span>

#include "host/editor/system_variables.h"

namespace drafthost::editor {

enum class VariableType { Integer, Real, Text, Point, Point2 };
enum class VariableAccess { ReadWrite, ReadOnly };
// Who keeps the value: the host until it ends, the open document, or the drawing's header, which files carry.
enum class VariablePlace { Session, Document, Drawing };

struct VariableRow {
    const wchar_t* name;
    VariableType type;
    VariablePlace place;
    VariableAccess access = VariableAccess::ReadWrite;
    double number = 0;                // default of numbers; both coordinates of points
    const wchar_t* text = nullptr;    // default of texts
    double minimum = 1, maximum = 0;  // allowed numbers; minimum above maximum: any
    // Values that are worked out when asked for, and variables whose setting does something. Null: none.
    VariableValue (*compute)(const Document& document) = nullptr;
    bool (*store)(Document& document, const VariableValue& value) = nullptr;
};

std::span<const VariableRow> variableTable();

}  // namespace drafthost::editor
