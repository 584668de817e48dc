#pragma once

// The syntax tree of a statement in the product's SQL dialect: what the parser makes and an engine runs.
// Names are as they were written, without brackets; whether they exist is not known here.

#include "server/schema/definition.h"

#include <memory>

namespace tessary::server::sql {

struct Expression;
struct Select;
using ExpressionPtr = std::unique_ptr<Expression>;
using SelectPtr = std::unique_ptr<Select>;

// A constant: number, text, #date#, True, False, Null.
struct Literal {
    Value value;
};

// A field, or a parameter when no table of the statement has such a field.
struct Name {
    Text qualifier;  // table or alias; empty: none
    Text name;
};

// "?" or a name declared by PARAMETERS is a Name too; this is only the unnamed one.
struct Placeholder {
    int number = 0;  // from 0, in order
};

enum class UnaryOperator { negate, plus, logicalNot };
struct Unary {
    UnaryOperator operation;
    ExpressionPtr operand;
};

enum class BinaryOperator {
    add,
    subtract,
    multiply,
    divide,
    integerDivide,
    modulo,
    power,
    concatenate,
    equal,
    notEqual,
    less,
    lessOrEqual,
    greater,
    greaterOrEqual,
    logicalAnd,
    logicalOr,
    logicalXor,
    equivalent,
    implies,
};
// Chains of and, or and & are balanced trees: their order of evaluation does not matter.
struct Binary {
    BinaryOperator operation;
    ExpressionPtr left, right;
};

// Patterns: * any text, ? one character, # one digit, [a-z] one of, [!a-z] none of. negated: NOT.
struct Like {
    ExpressionPtr text, pattern;
    bool negated = false;
};
struct Between {
    ExpressionPtr value, low, high;
    bool negated = false;
};
struct IsNull {
    ExpressionPtr operand;
    bool negated = false;
};
struct InList {
    ExpressionPtr value;
    std::vector<ExpressionPtr> items;
    bool negated = false;
};
struct InSelect {
    ExpressionPtr value;
    SelectPtr select;
    bool negated = false;
};
// value > ALL (select), value = ANY (select); SOME is ANY. The operation is a comparison.
struct Quantified {
    BinaryOperator operation;
    ExpressionPtr value;
    SelectPtr select;
    bool all = false;
};
struct Exists {
    SelectPtr select;
};
struct Subquery {
    SelectPtr select;
};
// Any function, aggregates included. star: count(*).
struct Call {
    Text function;
    std::vector<ExpressionPtr> arguments;
    bool star = false;
    bool distinct = false;
};

struct Expression {
    std::variant<Literal, Name, Placeholder, Unary, Binary, Like, Between, IsNull, InList, InSelect,
                 Quantified, Exists, Subquery, Call>
        node;
    std::size_t offset = 0;  // in the statement, for error texts
};

struct Source;
using SourcePtr = std::unique_ptr<Source>;

struct TableSource {
    Text table;  // or a stored query
    Text alias;  // empty: none
};
struct SelectSource {
    SelectPtr select;
    Text alias;  // empty: none
};
enum class JoinKind { cross, inner, left, right };
struct Join {
    JoinKind kind;
    SourcePtr left, right;
    ExpressionPtr condition;  // null for cross
};
struct Source {
    std::variant<TableSource, SelectSource, Join> node;
};

struct SelectItem {
    ExpressionPtr expression;  // null: all fields, of `qualifier` when it is not empty
    Text qualifier;
    Text alias;  // empty: none; the result is then named after the field, or Expr1000, Expr1001 ...
};

struct OrderItem {
    ExpressionPtr expression;  // a whole number stands for the place of a result column, from 1
    bool descending = false;
};

struct Select {
    bool distinct = false;
    std::optional<std::int64_t> top;
    bool topPercent = false;
    std::vector<SelectItem> items;
    Text into;       // SELECT ... INTO: the table to make; empty: none
    SourcePtr from;  // null: none
    ExpressionPtr where;
    std::vector<ExpressionPtr> groupBy;
    ExpressionPtr having;
    std::vector<OrderItem> orderBy;  // of the whole union when there is one
    // UNION: the following selects, each with whether duplicates stay.
    struct Following {
        bool all = false;
        SelectPtr select;
    };
    std::vector<Following> unions;
};

struct Insert {
    Text table;
    std::vector<Text> fields;                      // empty: all, in order
    std::vector<std::vector<ExpressionPtr>> rows;  // VALUES, one or more
    SelectPtr select;                              // or this
};

struct Assignment {
    Name field;
    ExpressionPtr value;
};
struct Update {
    SourcePtr target;  // a table or a join
    std::vector<Assignment> assignments;
    ExpressionPtr where;
};

struct Delete {
    Text table;  // DELETE t.* FROM a join; empty: the only table
    SourcePtr from;
    ExpressionPtr where;
};

struct CreateTable {
    TableDefinition definition;
    std::vector<RelationDefinition> relations;  // foreignTable is this table
};
struct CreateIndex {
    Text table;
    IndexDefinition index;
    bool ignoreNull = false;    // accepted, without effect
    bool disallowNull = false;  // the fields become required
};
struct AlterTable {
    Text table;
    std::vector<FieldChange> changes;
    std::vector<IndexDefinition> indexes;       // ADD CONSTRAINT ... PRIMARY KEY, UNIQUE
    std::vector<RelationDefinition> relations;  // ADD CONSTRAINT ... FOREIGN KEY, REFERENCES
    std::vector<Text> droppedConstraints;       // indexes or relations
};
struct DropTable {
    Text table;
};
struct DropIndex {
    Text index, table;
};
// CREATE VIEW and CREATE PROCEDURE.
struct CreateQuery {
    QueryDefinition query;
};
// DROP VIEW, DROP PROCEDURE.
struct DropQuery {
    Text name;
};
// EXECUTE name value, value ...
struct Execute {
    Text query;
    std::vector<ExpressionPtr> arguments;
};

struct ParameterDeclaration {
    Text name;
    FieldType type;
};

struct Statement {
    std::vector<ParameterDeclaration> parameters;  // PARAMETERS ...;
    int placeholders = 0;                          // how many "?" there are
    std::variant<SelectPtr, Insert, Update, Delete, CreateTable, CreateIndex, AlterTable, DropTable,
                 DropIndex, CreateQuery, DropQuery, Execute>
        node;
};

// The most levels that a statement's tree has, those of the selects in it and of their joins counted:
// functions that walk it, destructors among them, may call themselves for each.
constexpr int tallestTree = 400;

// Parses one statement; a semicolon may end it. Throws syntax (3075) with the place in the text,
// syntaxInDefinition (3290) in statements that define something, and tooComplex (3360) for one that is nested
// too deeply.
Statement parse(TextView statement);

}  // namespace tessary::server::sql
