#pragma once

// The parts that translations are put together from: pieces of SQL with what is known of their values, the
// tables that names are looked up in, and parameters.

#include "server/sqlite/translator.h"
#include "server/values/error.h"

namespace tessary::server::translation {

enum class Kind { unknown, yesNo, whole, number, date, text };

struct Type {
    Kind kind = Kind::unknown;
    // What results are given as and fields are made of; nothing: each value's own storage decides.
    std::optional<FieldType> field;
    int size = 0;  // of text fields

    bool isNumeric() const { return kind == Kind::yesNo || kind == Kind::whole || kind == Kind::number; }
    bool mayBeText() const { return kind == Kind::text || kind == Kind::unknown; }
};

Type typeOf(FieldType field, int size = 0);
// Of a value that is now of one, now of the other type.
Type merged(const Type& left, const Type& right);
// A value of the type can be stored as it is.
bool fits(const Type& type, FieldType target);

enum class Form { expression, literal, parameter, column };

// Compounds stand in parentheses, so that a piece can be put anywhere.
struct Piece {
    std::string sql;
    Type type;
    Form form = Form::expression;
    bool collated = false;           // compares with the text collation without being told to
    const Value* literal = nullptr;  // of a literal; lives as long as the syntax tree
};

// Null becomes NULL, a date its days. Throws nothing: texts that SQLite's SQL cannot hold become a function
// call.
std::string literalSql(const Value& value);
Piece literalPiece(const Value& value);
// The piece with the text collation, unless it has it or cannot be a text.
std::string withCollation(const Piece& piece);
std::string asText(const Piece& piece);  // a SQL expression that gives a text or null
std::string
asNumber(const Piece& piece);  // ... a number or null; texts that are none raise typeMismatch (3464)
// Converted to what a field of the type holds.
std::string converted(const Piece& piece, FieldType target, TextView field);
std::string call(std::string_view function, std::initializer_list<std::string> arguments);
std::string joined(const std::vector<std::string>& parts, std::string_view separator);

[[noreturn]] void fail(ErrorCode code, Text text);

struct SourceField {
    Text name;
    Type type;
    std::string column;  // quoted
    bool collated = false;
};

struct SourceTable {
    Text name;          // as names refer to it; empty: a select without an alias
    std::string alias;  // t1, t2 ...: unique in the translation, so that nothing shadows anything in SQLite
    std::vector<SourceField> fields;
    const TableDefinition* definition = nullptr;  // null: a select, or a stored query
    std::string sqliteName;                       // of a table
};

struct FoundField {
    const SourceTable* table = nullptr;  // null: not found
    const SourceField* field = nullptr;
};

// The tables of one select; names that are not found there are looked up in the outer one.
struct Scope {
    std::vector<SourceTable> tables;
    const Scope* outer = nullptr;
    const sql::Select* aliases = nullptr;  // whose items' aliases may be used as names; null: none

    // In this scope alone. Throws ambiguousName (3079) when several tables have the field.
    FoundField find(const sql::Name& name) const;
    const SourceTable* table(TextView name) const;
};

// The parameters of a statement and of the stored queries in it. Each statement is a frame, the outermost is
// 0; a name means the same parameter in all frames, a "?" is its own. While a translation grows a parameter
// stands in it as a mark, because the order of first uses is known only at the end.
class Parameters {
public:
    void declare(int frame, std::span<const sql::ParameterDeclaration> declarations);
    Piece use(int frame, const Text& name, std::size_t offset);
    Piece usePlaceholder(int frame, int number, std::size_t offset);

    // Puts ?1, ?2 ... for the marks: declared ones first, then in order of first use, then those of stored
    // queries.
    std::string numbered(std::string_view sql, std::vector<Text>& names) const;

private:
    struct Entry {
        Text name;
        int placeholder = -1;
        int frame = 0;
        bool declared = false;
        std::size_t order = 0;  // place in the declaration or in the statement
        std::optional<FieldType> type;
    };
    Piece piece(std::size_t index) const;
    Piece use(Entry entry);

    std::vector<Entry> entries_;
};

}  // namespace tessary::server::translation
