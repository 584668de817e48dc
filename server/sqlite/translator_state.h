#pragma once

// The translator at work on one statement.

#include "server/sqlite/translator_parts.h"

#include <deque>

namespace tessary::server::translation {

struct ResultField {
    Text name;
    Type type;
    bool collated = false;
    Text table;  // that the field comes from; empty: computed, or named by an alias
};

// A select and what it gives; the columns are called c1, c2 ... in SQLite.
struct TranslatedSelect {
    std::string sql;
    std::vector<ResultField> fields;
};

struct AggregateFunction;

// A select whose fields must stand in GROUP BY or in aggregates, if it has either.
struct Grouping {
    const Scope* scope = nullptr;
    Grouping* outer = nullptr;        // of the select around it
    std::vector<std::string> groups;  // the expressions of GROUP BY
    std::vector<Text> loose;          // fields used outside of aggregates and of expressions of GROUP BY
    bool aggregates = false;          // there is one

    void settle(const std::string& expression, std::size_t before);
};

class Translator {
public:
    Translator(const SchemaView& schema, std::span<const sql::ParameterDeclaration> parameters);

    TranslatedSelect select(const sql::Select& select, const Scope* outer);
    std::string insert(const sql::Insert& statement);
    std::string update(const sql::Update& statement);
    std::string erase(const sql::Delete& statement);

    Translation finished(std::string_view sql) const;

private:
    friend struct FunctionForms;

    // Expressions: as a value, where comparisons give -1 and 0, and as a condition for WHERE, ON, CASE.
    Piece value(const sql::Expression& expression, const Scope& scope);
    Piece ungroupedValue(const sql::Expression& expression, const Scope& scope);
    std::string condition(const sql::Expression& expression, const Scope& scope);
    Piece name(const sql::Name& name, std::size_t offset, const Scope& scope);
    void noteUse(const Scope& level, const FoundField& found);
    Piece alias(const sql::Name& name, const Scope& scope, bool& found);
    Piece unary(const sql::Unary& node, const Scope& scope);
    Piece arithmetic(const sql::Binary& node, const Scope& scope);
    Piece sum(const Piece& left, const Piece& right);
    std::string concatenation(const sql::Expression& expression, const Scope& scope);
    std::string logicalChain(const sql::Expression& expression, const Scope& scope);
    std::optional<std::string> ownCondition(const sql::Expression& expression, const Scope& scope);
    std::string binaryCondition(const sql::Expression& expression, const sql::Binary& node,
                                const Scope& scope);
    std::string between(const sql::Between& node, const Scope& scope);
    std::string inList(const sql::InList& node, const Scope& scope);
    std::string inSelect(const sql::InSelect& node, const Scope& scope);
    std::string quantified(const sql::Quantified& node, const Scope& scope);
    Piece subquery(const sql::Select& node, const Scope& scope);
    Piece functionCall(const sql::Call& node, const Scope& scope);
    Piece aggregate(const AggregateFunction& function, const sql::Call& node, const Scope& scope);
    std::string aggregated(const AggregateFunction& function, const sql::Call& node, const Scope& scope,
                           Piece& given);

    // Selects.
    TranslatedSelect single(const sql::Select& select, const Scope* outer);
    TranslatedSelect unionOf(const sql::Select& select, const Scope* outer);
    std::string unionOrder(const sql::Select& select, const std::vector<ResultField>& fields);
    std::string order(const sql::Select& select, const Scope& scope, std::size_t columns);
    std::vector<std::string> groups(const sql::Select& select, const Scope& scope);
    std::string filter(const sql::ExpressionPtr& where, const Scope& scope);
    void items(const sql::Select& select, const Scope& scope, std::vector<std::string>& columns,
               std::vector<ResultField>& fields);
    std::string limited(std::string sql, const sql::Select& select) const;

    // Sources add their tables to the scope.
    std::string source(const sql::Source& source, Scope& scope);
    std::string table(const sql::TableSource& node, Scope& scope);
    std::string join(const sql::Join& node, Scope& scope);
    std::string storedQuery(const QueryDefinition& query, const Text& name, Scope& scope);
    std::string derived(const TranslatedSelect& select, const Text& name, Scope& scope);
    SourceTable tableOf(const TableDefinition& definition, const Text& name);

    // Changes.
    const TableDefinition& tableToChange(TextView name) const;
    std::string assigned(const sql::Expression& expression, const Scope& scope, const FieldDefinition& field);

    // Throws tooComplex (3360) when the statement has become too deep or too large.
    void spend(int nodes = 1);

    const SchemaView& schema_;
    Parameters parameters_;
    std::vector<Text> queries_;                    // stored queries being inlined, outermost first
    std::vector<const sql::Expression*> aliases_;  // items being translated in place of their aliases
    int frame_ = 0;
    int frames_ = 1;
    int tables_ = 0;
    int depth_ = 0;
    int nodes_ = 0;
    bool aggregates_ = false;        // are allowed here
    Grouping* grouping_ = nullptr;   // of the innermost select that is being translated; null: none
    const Scope* home_ = nullptr;    // of the aggregate that is being translated; null: none
    bool usesHome_ = false;          // its argument uses a field of that scope,
    bool usesOuter_ = false;         // of one around it
    const Scope* closed_ = nullptr;  // the scope beyond which SQLite lets no name refer here; null: none
};

// Gives a variable a value for as long as it lives.
template <class T>
class Replaced {
public:
    Replaced(T& variable, T value) : variable_(variable), before_(std::move(variable)) {
        variable = std::move(value);
    }
    ~Replaced() { variable_ = std::move(before_); }
    Replaced(const Replaced&) = delete;
    Replaced& operator=(const Replaced&) = delete;

private:
    T& variable_;
    T before_;
};

}  // namespace tessary::server::translation
