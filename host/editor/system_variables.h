#pragma once

// System variables: one table of names, types, ranges and where the value is kept.

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

#include "host/api/geometry.h"

namespace drafthost {
class Document;
}

namespace drafthost::editor {

// An integer, a real, a text, a point, or a point without z.
using VariableValue = std::variant<int, double, std::wstring, AcGePoint3d, AcGePoint2d>;

// Values set so far, of the session or of one document. Others have their default.
class VariableStore {
public:
    const VariableValue* find(std::wstring_view name) const;  // name in capitals
    void set(std::wstring_view name, VariableValue value) { values_[std::wstring(name)] = std::move(value); }

private:
    std::unordered_map<std::wstring, VariableValue> values_;
};

// Nothing when there is no such variable. Names in any case.
std::optional<VariableValue> getVariable(const Document& document, std::wstring_view name);

enum class SetOutcome { Done, Unknown, ReadOnly, WrongType, OutOfRange };
// Integers are taken for reals, and reals without a fraction for integers.
SetOutcome setVariable(Document& document, std::wstring_view name, const VariableValue& value);

// For prompts and messages: "6.500000", "Standard", "0.0000,0.0000".
std::wstring shownValue(const VariableValue& value);

// The value as typed text, by the variable's type; nothing when it is of another type.
std::optional<VariableValue> typedValue(const VariableValue& example, const std::wstring& text);

// Names of all variables, sorted as in the table.
std::vector<std::wstring> variableNames();

}  // namespace drafthost::editor
