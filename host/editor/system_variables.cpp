#include "host/editor/system_variables.h"

#include <windows.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/database/database_impl.h"
#include "host/database/names.h"
#include "host/documents/host.h"
#include "host/editor/coordinates.h"
#include "host/editor/typed_text.h"
#include "host/editor/variable_table.h"

namespace drafthost::editor {

const VariableValue* VariableStore::find(std::wstring_view name) const {
    const auto found = values_.find(std::wstring(name));
    return found == values_.end() ? nullptr : &found->second;
}

namespace {

const VariableRow* findRow(std::wstring_view name) {
    static const auto index = [] {
        std::unordered_map<std::wstring_view, const VariableRow*> rows;
        for (const VariableRow& row : variableTable())
            rows.emplace(row.name, &row);
        return rows;
    }();
    const std::wstring folded = foldCase(name);
    const auto found = index.find(folded);
    return found == index.end() ? nullptr : found->second;
}

std::wstring headerName(const VariableRow& row) {
    return L"$" + std::wstring(row.name);
}

VariableValue defaultOf(const VariableRow& row) {
    switch (row.type) {
        case VariableType::Integer: return static_cast<int>(row.number);
        case VariableType::Real: return row.number;
        case VariableType::Text: return std::wstring(row.text ? row.text : L"");
        case VariableType::Point: return AcGePoint3d(row.number, row.number, 0);
        case VariableType::Point2: return AcGePoint2d(row.number, row.number);
    }
    return 0;
}

// The header's groups as a value of the row's type; nothing when the header has none of that kind.
std::optional<VariableValue> fromHeader(const Document& document, const VariableRow& row) {
    const auto groups = headerVariable(*document.database(), headerName(row));
    if (groups.empty())
        return std::nullopt;
    const DxfValue& value = groups.front().value;
    switch (row.type) {
        case VariableType::Integer:
            if (const auto* number = std::get_if<std::int64_t>(&value))
                return static_cast<int>(*number);
            break;
        case VariableType::Real:
            if (const auto* number = std::get_if<double>(&value))
                return *number;
            break;
        case VariableType::Text:
            if (const auto* text = std::get_if<std::wstring>(&value))
                return *text;
            break;
        case VariableType::Point:
            if (const auto* point = std::get_if<AcGePoint3d>(&value))
                return *point;
            if (const auto* point = std::get_if<AcGePoint2d>(&value))
                return AcGePoint3d(point->x, point->y, 0);
            break;
        case VariableType::Point2:
            if (const auto* point = std::get_if<AcGePoint3d>(&value))
                return point->convert2d();
            if (const auto* point = std::get_if<AcGePoint2d>(&value))
                return *point;
            break;
    }
    return std::nullopt;
}

bool toHeader(Document& document, const VariableRow& row, const VariableValue& value) {
    const std::wstring name = headerName(row);
    const auto known = headerVariable(*document.database(), name);
    static constexpr short kCodes[] = {70, 40, 1, 10, 10};
    DxfGroup group{known.empty() ? kCodes[value.index()] : known.front().code, {}};
    std::visit(
        [&](const auto& content) {
            using Type = std::decay_t<decltype(content)>;
            if constexpr (std::is_same_v<Type, int>) {
                group.value = static_cast<std::int64_t>(content);
            } else {
                group.value = content;
            }
        },
        value);
    return setHeaderVariable(*document.database(), name, {group});
}

// The value as the row's type, for callers that give integers for reals and the like.
std::optional<VariableValue> converted(const VariableRow& row, const VariableValue& value) {
    const auto* integer = std::get_if<int>(&value);
    const auto* real = std::get_if<double>(&value);
    switch (row.type) {
        case VariableType::Integer:
            if (integer)
                return value;
            if (real && *real == std::floor(*real) && std::abs(*real) <= std::numeric_limits<int>::max()) {
                return static_cast<int>(*real);
            }
            return std::nullopt;
        case VariableType::Real:
            if (real)
                return value;
            return integer ? std::optional<VariableValue>(static_cast<double>(*integer)) : std::nullopt;
        case VariableType::Text:
            return std::holds_alternative<std::wstring>(value) ? std::optional(value) : std::nullopt;
        case VariableType::Point:
            if (const auto* flat = std::get_if<AcGePoint2d>(&value))
                return AcGePoint3d(flat->x, flat->y, 0);
            return std::holds_alternative<AcGePoint3d>(value) ? std::optional(value) : std::nullopt;
        case VariableType::Point2:
            if (const auto* point = std::get_if<AcGePoint3d>(&value))
                return point->convert2d();
            return std::holds_alternative<AcGePoint2d>(value) ? std::optional(value) : std::nullopt;
    }
    return std::nullopt;
}

bool inRange(const VariableRow& row, const VariableValue& value) {
    if (row.minimum > row.maximum)
        return true;
    const auto* integer = std::get_if<int>(&value);
    const auto* real = std::get_if<double>(&value);
    const double number = integer ? *integer : real ? *real : row.minimum;
    return number >= row.minimum && number <= row.maximum;
}

VariableStore& storeOf(const Document& document, const VariableRow& row) {
    Document& owner = const_cast<Document&>(document);
    return row.place == VariablePlace::Session ? owner.host().variables() : owner.variables();
}

}  // namespace

std::optional<VariableValue> getVariable(const Document& document, std::wstring_view name) {
    const VariableRow* const row = findRow(name);
    if (!row)
        return std::nullopt;
    if (row->compute)
        return row->compute(document);
    if (row->place == VariablePlace::Drawing) {
        const auto value = fromHeader(document, *row);
        return value ? *value : defaultOf(*row);
    }
    const VariableValue* const value = storeOf(document, *row).find(row->name);
    return value ? *value : defaultOf(*row);
}

SetOutcome setVariable(Document& document, std::wstring_view name, const VariableValue& given) {
    const VariableRow* const row = findRow(name);
    if (!row)
        return SetOutcome::Unknown;
    if (row->access == VariableAccess::ReadOnly)
        return SetOutcome::ReadOnly;
    const auto value = converted(*row, given);
    if (!value)
        return SetOutcome::WrongType;
    if (!inRange(*row, *value))
        return SetOutcome::OutOfRange;
    if (row->store)
        return row->store(document, *value) ? SetOutcome::Done : SetOutcome::OutOfRange;
    if (row->place == VariablePlace::Drawing) {
        return toHeader(document, *row, *value) ? SetOutcome::Done : SetOutcome::OutOfRange;
    }
    storeOf(document, *row).set(row->name, *value);
    return SetOutcome::Done;
}

std::wstring shownValue(const VariableValue& value) {
    const auto number = [](double real, const wchar_t* format) {
        wchar_t text[400];
        std::swprintf(text, std::size(text), format, real);
        return std::wstring(text);
    };
    if (const auto* integer = std::get_if<int>(&value))
        return std::to_wstring(*integer);
    if (const auto* real = std::get_if<double>(&value))
        return number(*real, L"%.4f");
    if (const auto* text = std::get_if<std::wstring>(&value))
        return *text;
    if (const auto* flat = std::get_if<AcGePoint2d>(&value))
        return number(flat->x, L"%.4f") + L"," + number(flat->y, L"%.4f");
    const AcGePoint3d& point = std::get<AcGePoint3d>(value);
    return number(point.x, L"%.4f") + L"," + number(point.y, L"%.4f") + L"," + number(point.z, L"%.4f");
}

std::optional<VariableValue> typedValue(const VariableValue& example, const std::wstring& text) {
    if (std::holds_alternative<std::wstring>(example))
        return text == L"." ? VariableValue(std::wstring()) : VariableValue(text);
    if (std::holds_alternative<AcGePoint3d>(example) || std::holds_alternative<AcGePoint2d>(example)) {
        const auto point = typedPoint(text, {}, {});
        return point ? std::optional<VariableValue>(point->point) : std::nullopt;
    }
    if (std::holds_alternative<int>(example)) {
        const auto integer = typedInteger(text);
        return integer ? std::optional<VariableValue>(*integer) : std::nullopt;
    }
    const auto real = typedReal(text);
    return real ? std::optional<VariableValue>(*real) : std::nullopt;
}

std::vector<std::wstring> variableNames() {
    std::vector<std::wstring> names;
    for (const VariableRow& row : variableTable())
        names.emplace_back(row.name);
    return names;
}

}  // namespace drafthost::editor
