#include "server/sqlite/translator_parts.h"

#include "server/sqlite/functions.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numeric>
#include <tuple>

namespace tessary::server {

std::string quotedName(TextView name) {
    std::string quoted = "\"";
    for (char c : toUtf8(name)) {
        if (c == '"')
            quoted += '"';
        quoted += c;
    }
    return quoted + '"';
}

namespace translation {

namespace {

// Marks of parameters; texts with these characters never stand in a translation as they are.
constexpr char markBegin = '\x01';
constexpr char markEnd = '\x02';

bool fitsIntoSql(TextView text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i];
        if (c == 0 || c == markBegin || c == markEnd)
            return false;
        if (c >= 0xD800 && c <= 0xDFFF) {
            const bool pair =
                c <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF;
            if (!pair)
                return false;
            ++i;
        }
    }
    return true;
}

std::string hexadecimalText(TextView text) {
    std::string sql = "ts_utf16(x'";
    char digits[5];
    for (char16_t c : text) {
        std::snprintf(digits, sizeof digits, "%02X%02X", static_cast<unsigned>(c & 0xFF),
                      static_cast<unsigned>(c >> 8));
        sql += digits;
    }
    return sql + "')";
}

std::string textSql(TextView text) {
    if (!fitsIntoSql(text))
        return hexadecimalText(text);
    std::string sql = "'";
    for (char c : toUtf8(text)) {
        if (c == '\'')
            sql += '\'';
        sql += c;
    }
    return sql + '\'';
}

std::string numberSql(double number) {
    if (std::isnan(number))
        return "NULL";
    if (std::isinf(number))
        return number > 0 ? "9e999" : "(-9e999)";
    char digits[40];
    std::snprintf(digits, sizeof digits, "%.17g", number);
    std::string sql = digits;
    if (sql.find_first_of(".e") == std::string::npos)
        sql += ".0";
    return number < 0 ? "(" + sql + ")" : sql;
}

struct LiteralSql {
    std::string operator()(Null) const { return "NULL"; }
    std::string operator()(bool value) const { return value ? "(-1)" : "0"; }
    std::string operator()(std::int32_t value) const {
        return value < 0 ? "(" + std::to_string(value) + ")" : std::to_string(value);
    }
    std::string operator()(double value) const { return numberSql(value); }
    std::string operator()(Date value) const { return numberSql(value.days); }
    std::string operator()(const Text& value) const { return textSql(value); }
};

struct LiteralType {
    Type operator()(Null) const { return {}; }
    Type operator()(bool) const { return typeOf(FieldType::yesNo); }
    Type operator()(std::int32_t) const { return typeOf(FieldType::longInteger); }
    Type operator()(double) const { return typeOf(FieldType::number); }
    Type operator()(Date) const { return typeOf(FieldType::dateTime); }
    Type operator()(const Text&) const { return typeOf(FieldType::text); }
};

}  // namespace

void fail(ErrorCode code, Text text) {
    throw DatabaseError(code, std::move(text));
}

Type typeOf(FieldType field, int size) {
    switch (field) {
        case FieldType::yesNo: return {Kind::yesNo, field, 0};
        case FieldType::byte:
        case FieldType::integer:
        case FieldType::longInteger: return {Kind::whole, field, 0};
        case FieldType::single:
        case FieldType::number:
        case FieldType::currency: return {Kind::number, field, 0};
        case FieldType::dateTime: return {Kind::date, field, 0};
        case FieldType::text:
        case FieldType::memo: return {Kind::text, field, size};
    }
    return {};
}

Type merged(const Type& left, const Type& right) {
    if (left.kind == right.kind) {
        if (left.field == right.field)
            return {left.kind, left.field,
                    left.size == 0 || right.size == 0 ? 0 : std::max(left.size, right.size)};
        if (left.kind == Kind::text)
            return typeOf(FieldType::memo);
        return left.kind == Kind::number ? typeOf(FieldType::number) : Type{left.kind, {}, 0};
    }
    if (left.isNumeric() && right.isNumeric())
        return {Kind::number, {}, 0};
    return {};
}

bool fits(const Type& type, FieldType target) {
    if (type.field == target)
        return true;
    switch (target) {
        case FieldType::text:
        case FieldType::memo: return type.kind == Kind::text;
        case FieldType::longInteger: return type.field == FieldType::byte || type.field == FieldType::integer;
        case FieldType::number: return type.field == FieldType::single || type.field == FieldType::currency;
        default: return false;
    }
}

std::string literalSql(const Value& value) {
    return std::visit(LiteralSql{}, value);
}

Piece literalPiece(const Value& value) {
    return {literalSql(value), std::visit(LiteralType{}, value), Form::literal, false, &value};
}

std::string withCollation(const Piece& piece) {
    if (piece.collated || !piece.type.mayBeText())
        return piece.sql;
    return "(" + piece.sql + " COLLATE " + textCollation + ")";
}

std::string asText(const Piece& piece) {
    if (piece.type.field == FieldType::single)
        return call("ts_single_text", {piece.sql});
    switch (piece.type.kind) {
        case Kind::text: return piece.sql;
        case Kind::date: return call("ts_date_text", {piece.sql});
        default: return call("ts_text", {piece.sql});
    }
}

std::string asNumber(const Piece& piece) {
    return piece.type.mayBeText() ? call("ts_number", {piece.sql}) : piece.sql;
}

std::string converted(const Piece& piece, FieldType target, TextView field) {
    if (piece.literal)
        return literalSql(convertTo(target, *piece.literal, field));
    if (fits(piece.type, target))
        return piece.sql;
    const bool text = target == FieldType::text || target == FieldType::memo;
    if (text && (piece.type.kind == Kind::date || piece.type.field == FieldType::single))
        return asText(piece);
    return call("ts_convert", {piece.sql, std::to_string(static_cast<int>(target)), textSql(field)});
}

std::string call(std::string_view function, std::initializer_list<std::string> arguments) {
    return std::string(function) + "(" + joined(std::vector<std::string>(arguments), ", ") + ")";
}

std::string joined(const std::vector<std::string>& parts, std::string_view separator) {
    std::string all;
    for (const std::string& part : parts) {
        if (!all.empty())
            all += separator;
        all += part;
    }
    return all;
}

FoundField Scope::find(const sql::Name& name) const {
    FoundField found;
    for (const SourceTable& source : tables) {
        if (!name.qualifier.empty() && !sameName(source.name, name.qualifier))
            continue;
        for (const SourceField& field : source.fields) {
            if (!sameName(field.name, name.name))
                continue;
            if (found.field)
                fail(ErrorCode::ambiguousName,
                     u"The field '" + name.name + u"' could refer to more than one table of the statement.");
            found = {&source, &field};
        }
    }
    return found;
}

const SourceTable* Scope::table(TextView name) const {
    const auto found =
        std::ranges::find_if(tables, [&](const SourceTable& table) { return sameName(table.name, name); });
    return found == tables.end() ? nullptr : &*found;
}

void Parameters::declare(int frame, std::span<const sql::ParameterDeclaration> declarations) {
    for (std::size_t i = 0; i < declarations.size(); ++i) {
        const Text& name = declarations[i].name;
        const auto known =
            std::ranges::find_if(entries_, [&](const Entry& entry) { return sameName(entry.name, name); });
        if (known == entries_.end())
            entries_.push_back({name, -1, frame, true, i, declarations[i].type});
        else if (!known->type)
            known->type = declarations[i].type;
    }
}

Piece Parameters::piece(std::size_t index) const {
    const std::string mark = markBegin + std::to_string(index) + markEnd;
    const Entry& entry = entries_[index];
    if (!entry.type)
        return {mark, {}, Form::parameter, false, nullptr};
    const Piece given{mark, {}, Form::parameter, false, nullptr};
    return {converted(given, *entry.type, entry.name), typeOf(*entry.type), Form::parameter, false, nullptr};
}

Piece Parameters::use(Entry entry) {
    const auto known = std::ranges::find_if(entries_, [&](const Entry& other) {
        if (entry.placeholder >= 0 || other.placeholder >= 0)
            return other.placeholder == entry.placeholder && other.frame == entry.frame;
        return sameName(other.name, entry.name);
    });
    if (known == entries_.end()) {
        entries_.push_back(std::move(entry));
        return piece(entries_.size() - 1);
    }
    if (!known->declared && std::tie(entry.frame, entry.order) < std::tie(known->frame, known->order)) {
        known->frame = entry.frame;
        known->order = entry.order;
    }
    return piece(static_cast<std::size_t>(known - entries_.begin()));
}

Piece Parameters::use(int frame, const Text& name, std::size_t offset) {
    return use({name, -1, frame, false, offset, {}});
}

Piece Parameters::usePlaceholder(int frame, int number, std::size_t offset) {
    return use({u"?", number, frame, false, offset, {}});
}

std::string Parameters::numbered(std::string_view sql, std::vector<Text>& names) const {
    std::vector<std::size_t> order(entries_.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::stable_sort(order, {}, [&](std::size_t index) {
        return std::make_tuple(entries_[index].frame, !entries_[index].declared, entries_[index].order);
    });
    std::vector<std::size_t> places(order.size());
    for (std::size_t place = 0; place < order.size(); ++place) {
        places[order[place]] = place;
        names.push_back(entries_[order[place]].name);
    }
    std::string result;
    for (std::size_t begin = sql.find(markBegin); begin != std::string_view::npos;
         begin = sql.find(markBegin)) {
        const std::size_t end = sql.find(markEnd, begin);
        const std::size_t index = std::stoul(std::string(sql.substr(begin + 1, end - begin - 1)));
        result.append(sql.substr(0, begin)).append("?").append(std::to_string(places[index] + 1));
        sql.remove_prefix(end + 1);
    }
    return result.append(sql);
}

}  // namespace translation

}  // namespace tessary::server
