#include "module/standards/statements.h"

#include <span>
#include <utility>

namespace tessary {

namespace {

bool startsRecord(const VARIANT& value) {
    return value.vt == VT_BSTR && textOf(value.bstrVal) == L"*NewRecord*";
}

Variant copyOf(const VARIANT& value) {
    Variant copy;
    if (FAILED(VariantCopy(copy.receive(), const_cast<VARIANT*>(&value)))) {
        throw std::bad_alloc();
    }
    return copy;
}

// values: for each row a marker, then name, value, name, value ...
std::vector<SelectedRow> rowsOf(std::span<const VARIANT> values) {
    std::vector<SelectedRow> rows;
    for (std::size_t place = 0; place < values.size();) {
        // A marker is told from a field by its place, which is that of a name.
        if (startsRecord(values[place])) {
            rows.emplace_back();
            ++place;
            continue;
        }
        if (!rows.empty() && place + 1 < values.size()) {
            rows.back().push_back(copyOf(values[place + 1]));
        }
        place += 2;
    }
    return rows;
}

}  // namespace

std::optional<std::vector<SelectedRow>> selectRows(DatabaseConnection& connection,
                                                   const std::wstring& statement) {
    const Bstr text(statement);
    Variant records;
    if (!succeeds(connection, &DatabaseConnection::RunSql, text.get(), records.receive())) {
        return std::nullopt;
    }
    return rowsOf(VariantElements(records.array()).values());
}

std::optional<std::wstring> textIn(const Variant& value) {
    return value.type() == VT_BSTR ? std::optional(textOf(value.get().bstrVal)) : std::nullopt;
}

void executeStatement(DatabaseConnection& connection, const std::wstring& statement) {
    const Bstr text(statement);
    if (!succeeds(connection, &DatabaseConnection::ExecuteSql, text.get())) {
        fetchServerError(connection);
    }
}

}  // namespace tessary
