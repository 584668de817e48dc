#include "server/sqlite/csv_reader.h"

#include "server/values/error.h"

#include <algorithm>

namespace tessary::server {

namespace {

struct CsvField {
    std::string text;
    bool quoted = false;
};
using CsvRow = std::vector<CsvField>;

// Takes one field off the front; `ended` tells that the row ends behind it.
CsvField takeField(std::string_view& rest, bool& ended) {
    CsvField field;
    bool inQuotes = false;
    std::size_t place = 0;
    for (; place < rest.size(); ++place) {
        const char c = rest[place];
        if (c == '"' && inQuotes && place + 1 < rest.size() && rest[place + 1] == '"') {
            field.text += '"';
            ++place;
        } else if (c == '"' && (inQuotes || field.text.empty())) {
            inQuotes = !inQuotes;
            field.quoted = true;
        } else if (!inQuotes && (c == ',' || c == '\n')) {
            break;
        } else if (inQuotes || c != '\r') {
            field.text += c;
        }
    }
    ended = place >= rest.size() || rest[place] == '\n';
    rest.remove_prefix(std::min(place + 1, rest.size()));
    return field;
}

std::vector<CsvRow> splitRows(std::string_view content) {
    if (content.starts_with("\xEF\xBB\xBF"))
        content.remove_prefix(3);
    std::vector<CsvRow> rows;
    while (!content.empty()) {
        CsvRow row;
        for (bool ended = false; !ended;)
            row.push_back(takeField(content, ended));
        if (row.size() > 1 || !row[0].text.empty())
            rows.push_back(std::move(row));  // an empty line is no record
    }
    return rows;
}

// What cannot stand in a name becomes "_".
Text fieldName(const std::string& header, std::size_t place) {
    Text name = toText(header);
    while (!name.empty() && name.front() == u' ')
        name.erase(0, 1);
    while (!name.empty() && name.back() == u' ')
        name.pop_back();
    for (char16_t& c : name)
        if (c < u' ' || TextView(u".!`[]").find(c) != TextView::npos)
            c = u'_';
    name.resize(std::min(name.size(), longestName));
    return name.empty() ? u"Field" + toText(std::to_string(place + 1)) : name;
}

FieldType typeOfColumn(const std::vector<CsvRow>& rows, std::size_t place) {
    bool hasNumber = false, hasText = false, hasLong = false;
    for (std::size_t row = 1; row < rows.size(); ++row) {
        if (place >= rows[row].size() || rows[row][place].text.empty())
            continue;
        const Text text = toText(rows[row][place].text);
        double number = 0;
        const bool isNumber = !rows[row][place].quoted && parseNumber(text, number);
        (isNumber ? hasNumber : hasText) = true;
        hasLong = hasLong || text.size() > static_cast<std::size_t>(largestTextSize);
    }
    if (hasNumber && !hasText)
        return FieldType::number;
    return hasLong ? FieldType::memo : FieldType::text;
}

// Two fields of one name are told apart by a number.
Text newName(const TableDefinition& table, const Text& wanted) {
    Text name = wanted;
    for (int number = 2; table.field(name) != nullptr; ++number) {
        const Text suffix = toText(std::to_string(number));
        name = wanted.substr(0, longestName - suffix.size()) + suffix;
    }
    return name;
}

}  // namespace

CsvTable readCsv(TextView tableName, std::string_view content) {
    const std::vector<CsvRow> rows = splitRows(content);
    CsvTable table;
    table.definition.name = tableName;
    if (rows.empty())
        throw DatabaseError(ErrorCode::noField, u"The text file linked as '" + Text(tableName) +
                                                    u"' has no row with the fields' names.");
    for (std::size_t place = 0; place < rows[0].size(); ++place) {
        FieldDefinition field;
        field.name = newName(table.definition, fieldName(rows[0][place].text, place));
        field.type = typeOfColumn(rows, place);
        table.definition.fields.push_back(std::move(field));
    }
    for (std::size_t row = 1; row < rows.size(); ++row) {
        std::vector<Value> values;
        for (std::size_t place = 0; place < rows[0].size(); ++place) {
            const bool given = place < rows[row].size() && !(rows[row][place].text.empty());
            const FieldDefinition& field = table.definition.fields[place];
            values.push_back(given ? convertTo(field.type, toText(rows[row][place].text), field.name)
                                   : Value(Null{}));
        }
        table.rows.push_back(std::move(values));
    }
    return table;
}

}  // namespace tessary::server
