#include "server/sqlite/functions.h"
#include "server/sqlite/translator_state.h"

#include <algorithm>
#include <map>

namespace tessary::server::translation {

using sql::BinaryOperator;

namespace {

// Beyond this a statement could exhaust the stack, or is a trap made of aliases and stored queries that
// double.
constexpr int deepestExpression = 400;
constexpr int largestStatement = 500000;

const std::map<BinaryOperator, std::string_view>& comparisons() {
    static const std::map<BinaryOperator, std::string_view> operators = {
        {BinaryOperator::equal, " = "},   {BinaryOperator::notEqual, " <> "},
        {BinaryOperator::less, " < "},    {BinaryOperator::lessOrEqual, " <= "},
        {BinaryOperator::greater, " > "}, {BinaryOperator::greaterOrEqual, " >= "},
    };
    return operators;
}

bool isGiven(const Piece& piece) {
    return piece.form == Form::literal || piece.form == Form::parameter;
}

[[noreturn]] void mismatch(const Value& value) {
    fail(ErrorCode::typeMismatch,
         u"Data type mismatch: '" + textOf(value) + u"' is compared with a value of another type.");
}

Piece givenNumber(const Piece& piece) {
    if (!piece.literal)
        return {call("ts_number", {piece.sql}), typeOf(FieldType::number), piece.form, false, nullptr};
    if (!std::holds_alternative<Text>(*piece.literal))
        return piece;
    double number = 0;
    if (!parseNumber(std::get<Text>(*piece.literal), number))
        mismatch(*piece.literal);
    return {literalSql(number), typeOf(FieldType::number), Form::literal, false, nullptr};
}

Piece givenDate(const Piece& piece) {
    if (!piece.literal)
        return {call("ts_date_number", {piece.sql}), typeOf(FieldType::dateTime), piece.form, false, nullptr};
    if (!std::holds_alternative<Text>(*piece.literal))
        return piece;
    Date date;
    if (!parseDate(std::get<Text>(*piece.literal), date))
        mismatch(*piece.literal);
    return {literalSql(date), typeOf(FieldType::dateTime), Form::literal, false, nullptr};
}

Piece givenYesNo(const Piece& piece) {
    const Type type = typeOf(FieldType::yesNo);
    if (!piece.literal)
        return {call("ts_yes_no", {piece.sql}), type, piece.form, false, nullptr};
    return {literalSql(convertTo(FieldType::yesNo, *piece.literal, u"yes/no")), type, Form::literal, false,
            nullptr};
}

// A literal or parameter as the kind of value that it is compared with.
void adaptGiven(Piece& given, const Type& type) {
    if (given.literal && isNull(*given.literal))
        return;
    if (given.type.kind == type.kind && type.kind != Kind::unknown)
        return;
    switch (type.kind) {
        case Kind::yesNo: given = givenYesNo(given); break;
        case Kind::whole:
        case Kind::number: given = givenNumber(given); break;
        case Kind::date: given = givenDate(given); break;
        case Kind::text: given = {asText(given), typeOf(FieldType::text), given.form, false, nullptr}; break;
        case Kind::unknown: break;
    }
}

// Texts that are numbers count as such beside numbers; others stay as they are and differ from every number.
void adaptText(Piece& text, const Type& type) {
    if (text.type.kind == Kind::text && (type.isNumeric() || type.kind == Kind::date))
        text = {call(type.kind == Kind::date ? "ts_date_if" : "ts_number_if", {text.sql}),
                {},
                Form::expression,
                false,
                nullptr};
}

void adapt(Piece& left, Piece& right) {
    if (isGiven(left) && !isGiven(right)) {
        adaptGiven(left, right.type);
    } else if (isGiven(right) && !isGiven(left)) {
        adaptGiven(right, left.type);
    } else {
        const Type leftType = left.type;
        adaptText(left, right.type);
        adaptText(right, leftType);
    }
}

// The left side of a comparison; a collation that it names counts for both.
std::string compared(const Piece& left, const Piece& right) {
    const bool decided = !left.type.mayBeText() || !right.type.mayBeText() || left.collated ||
                         (isGiven(left) && right.collated);
    return decided ? left.sql : withCollation(left);
}

bool isOneOf(const sql::Expression& expression, BinaryOperator operation) {
    const auto* binary = std::get_if<sql::Binary>(&expression.node);
    return binary && binary->operation == operation;
}

// The operands of a chain such as a AND b AND c, however long and however put together.
std::vector<const sql::Expression*> chain(const sql::Expression& expression, BinaryOperator operation) {
    std::vector<const sql::Expression*> operands;
    std::vector<const sql::Expression*> waiting = {&expression};
    while (!waiting.empty()) {
        const sql::Expression* next = waiting.back();
        waiting.pop_back();
        if (!isOneOf(*next, operation)) {
            operands.push_back(next);
            continue;
        }
        const auto& binary = std::get<sql::Binary>(next->node);
        waiting.push_back(binary.right.get());
        waiting.push_back(binary.left.get());
    }
    return operands;
}

// Halves in parentheses, since SQLite limits the depth of expressions.
std::string balanced(std::span<const std::string> operands, std::string_view operation) {
    if (operands.size() == 1)
        return operands[0];
    const std::size_t half = operands.size() / 2;
    return "(" + balanced(operands.first(half), operation) + std::string(operation) +
           balanced(operands.subspan(half), operation) + ")";
}

std::string conditionValue(const std::string& condition) {
    return "(-" + condition + ")";
}

}  // namespace

// Fields noted since `before` may stand in an expression of GROUP BY.
void Grouping::settle(const std::string& expression, std::size_t before) {
    if (std::ranges::find(groups, expression) != groups.end())
        loose.resize(before);
}

void Translator::spend(int nodes) {
    nodes_ += nodes;
    if (nodes_ > largestStatement || depth_ > deepestExpression)
        fail(ErrorCode::tooComplex, u"The statement is too complex.");
}

Piece Translator::value(const sql::Expression& expression, const Scope& scope) {
    const std::size_t before = grouping_ ? grouping_->loose.size() : 0;
    Piece piece = ungroupedValue(expression, scope);
    if (grouping_)
        grouping_->settle(piece.sql, before);
    return piece;
}

Piece Translator::ungroupedValue(const sql::Expression& expression, const Scope& scope) {
    spend();
    const Replaced deeper(depth_, depth_ + 1);
    if (const std::optional<std::string> own = ownCondition(expression, scope))
        return {conditionValue(*own), typeOf(FieldType::yesNo)};
    const auto& node = expression.node;
    if (const auto* literal = std::get_if<sql::Literal>(&node))
        return literalPiece(literal->value);
    if (const auto* field = std::get_if<sql::Name>(&node))
        return name(*field, expression.offset, scope);
    if (const auto* placeholder = std::get_if<sql::Placeholder>(&node))
        return parameters_.usePlaceholder(frame_, placeholder->number, expression.offset);
    if (const auto* operation = std::get_if<sql::Unary>(&node))
        return unary(*operation, scope);
    if (const auto* select = std::get_if<sql::Subquery>(&node))
        return subquery(*select->select, scope);
    if (const auto* function = std::get_if<sql::Call>(&node))
        return functionCall(*function, scope);
    if (isOneOf(expression, BinaryOperator::concatenate))
        return {concatenation(expression, scope), typeOf(FieldType::text)};
    return arithmetic(std::get<sql::Binary>(node), scope);
}

// True, false or null as SQLite has them; the value of anything else is true when it is not zero.
std::string Translator::condition(const sql::Expression& expression, const Scope& scope) {
    {
        spend();
        const Replaced deeper(depth_, depth_ + 1);
        const std::size_t before = grouping_ ? grouping_->loose.size() : 0;
        if (std::optional<std::string> own = ownCondition(expression, scope)) {
            if (grouping_)
                grouping_->settle(conditionValue(*own), before);
            return *own;
        }
    }
    const Piece given = value(expression, scope);
    return "(" + asNumber(given) + " <> 0)";
}

Piece Translator::name(const sql::Name& name, std::size_t offset, const Scope& scope) {
    bool closed = false;
    for (const Scope* level = &scope; level; level = level->outer) {
        const FoundField found = level->find(name);
        if (found.field && closed)
            fail(ErrorCode::syntax,
                 u"The field '" + name.name +
                     u"' of an outer select cannot be used in GROUP BY or beside TOP PERCENT.");
        if (found.field) {
            noteUse(*level, found);
            return {found.table->alias + "." + found.field->column, found.field->type, Form::column,
                    found.field->collated, nullptr};
        }
        closed = closed || level == closed_;
    }
    bool isAlias = false;
    if (Piece piece = alias(name, scope, isAlias); isAlias)
        return piece;
    return parameters_.use(frame_, name.qualifier.empty() ? name.name : name.qualifier + u"." + name.name,
                           offset);
}

void Translator::noteUse(const Scope& level, const FoundField& found) {
    for (Grouping* grouping = grouping_; grouping; grouping = grouping->outer) {
        if (grouping->scope == &level)
            grouping->loose.push_back(found.field->name);
    }
    // Selects inside the argument of an aggregate have scopes of their own, which are neither.
    bool outside = false;
    for (const Scope* scope = home_; scope; scope = scope->outer) {
        usesHome_ = usesHome_ || (scope == &level && !outside);
        usesOuter_ = usesOuter_ || (scope == &level && outside);
        outside = true;
    }
}

Piece Translator::alias(const sql::Name& name, const Scope& scope, bool& found) {
    if (!scope.aliases || !name.qualifier.empty())
        return {};
    for (const sql::SelectItem& item : scope.aliases->items) {
        if (!item.expression || !sameName(item.alias, name.name))
            continue;
        if (std::ranges::find(aliases_, item.expression.get()) != aliases_.end())
            continue;  // inside its own definition the name means something else
        found = true;
        aliases_.push_back(item.expression.get());
        Piece piece = value(*item.expression, scope);
        aliases_.pop_back();
        return piece;
    }
    return {};
}

Piece Translator::unary(const sql::Unary& node, const Scope& scope) {
    const Piece operand = value(*node.operand, scope);
    if (node.operation == sql::UnaryOperator::plus)
        return operand;
    Type type = operand.type;
    if (type.kind == Kind::yesNo || type.kind == Kind::whole)
        type = {Kind::whole, {}, 0};
    else
        type = typeOf(FieldType::number);
    return {"(- " + asNumber(operand) + ")", type};
}

// Texts are put together, a text that is a number is added to a number: known only when the values are,
// unless the types are.
Piece Translator::sum(const Piece& left, const Piece& right) {
    if (left.type.kind == Kind::text && right.type.kind == Kind::text)
        return {"(" + left.sql + " || " + right.sql + ")", typeOf(FieldType::text)};
    const bool date = (left.type.kind == Kind::date) != (right.type.kind == Kind::date);
    if (left.type.mayBeText() || right.type.mayBeText())
        return {call("ts_add", {left.sql, right.sql}), date ? typeOf(FieldType::dateTime) : Type{}};
    return {"(" + left.sql + " + " + right.sql + ")", date ? typeOf(FieldType::dateTime) : Type{}};
}

Piece Translator::arithmetic(const sql::Binary& node, const Scope& scope) {
    const Piece left = value(*node.left, scope);
    const Piece right = value(*node.right, scope);
    const auto isWhole = [](const Piece& piece) {
        return piece.type.kind == Kind::whole || piece.type.kind == Kind::yesNo;
    };
    const Type number = typeOf(FieldType::number);
    const Type type = isWhole(left) && isWhole(right) ? Type{Kind::whole, {}, 0} : number;
    const std::string a = asNumber(left);
    const std::string b = asNumber(right);
    switch (node.operation) {
        case BinaryOperator::add: {
            Piece piece = sum(left, right);
            if (piece.type.kind == Kind::unknown && !left.type.mayBeText() && !right.type.mayBeText())
                piece.type = type;
            return piece;
        }
        case BinaryOperator::subtract:
            if (left.type.kind == Kind::date && right.type.kind != Kind::date)
                return {"(" + a + " - " + b + ")", typeOf(FieldType::dateTime)};
            return {"(" + a + " - " + b + ")", type};
        case BinaryOperator::multiply: return {"(" + a + " * " + b + ")", type};
        case BinaryOperator::divide: return {call("ts_divide", {a, b}), number};
        case BinaryOperator::integerDivide: return {call("ts_integer_divide", {a, b}), {Kind::whole, {}, 0}};
        case BinaryOperator::modulo: return {call("ts_modulo", {a, b}), {Kind::whole, {}, 0}};
        default: return {call("ts_power", {a, b}), number};
    }
}

std::string Translator::concatenation(const sql::Expression& expression, const Scope& scope) {
    std::vector<std::string> texts;
    for (const sql::Expression* operand : chain(expression, BinaryOperator::concatenate)) {
        const Piece piece = value(*operand, scope);
        const bool certain = piece.literal && std::holds_alternative<Text>(*piece.literal);
        texts.push_back(certain ? piece.sql : call("coalesce", {asText(piece), "''"}));
    }
    return balanced(texts, " || ");
}

std::string Translator::logicalChain(const sql::Expression& expression, const Scope& scope) {
    const BinaryOperator operation = std::get<sql::Binary>(expression.node).operation;
    std::vector<std::string> conditions;
    for (const sql::Expression* operand : chain(expression, operation))
        conditions.push_back(condition(*operand, scope));
    return balanced(conditions, operation == BinaryOperator::logicalAnd ? " AND " : " OR ");
}

std::optional<std::string> Translator::ownCondition(const sql::Expression& expression, const Scope& scope) {
    const auto& node = expression.node;
    const auto negatedIf = [](bool negated, const std::string& sql) {
        return negated ? "(NOT " + sql + ")" : sql;
    };
    if (const auto* binary = std::get_if<sql::Binary>(&node)) {
        if (binary->operation < BinaryOperator::equal)
            return {};
        return binaryCondition(expression, *binary, scope);
    }
    if (const auto* operation = std::get_if<sql::Unary>(&node)) {
        if (operation->operation != sql::UnaryOperator::logicalNot)
            return {};
        return "(NOT " + condition(*operation->operand, scope) + ")";
    }
    if (const auto* like = std::get_if<sql::Like>(&node)) {
        const std::string text = asText(value(*like->text, scope));
        return negatedIf(like->negated, call("ts_like", {text, asText(value(*like->pattern, scope))}));
    }
    if (const auto* null = std::get_if<sql::IsNull>(&node))
        return "(" + value(*null->operand, scope).sql + (null->negated ? " IS NOT NULL)" : " IS NULL)");
    if (const auto* range = std::get_if<sql::Between>(&node))
        return negatedIf(range->negated, between(*range, scope));
    if (const auto* list = std::get_if<sql::InList>(&node))
        return negatedIf(list->negated, inList(*list, scope));
    if (const auto* set = std::get_if<sql::InSelect>(&node))
        return negatedIf(set->negated, inSelect(*set, scope));
    if (const auto* set = std::get_if<sql::Quantified>(&node))
        return quantified(*set, scope);
    if (const auto* exists = std::get_if<sql::Exists>(&node))
        return "(EXISTS (" + select(*exists->select, &scope).sql + "))";
    return {};
}

std::string Translator::binaryCondition(const sql::Expression& expression, const sql::Binary& node,
                                        const Scope& scope) {
    if (node.operation == BinaryOperator::logicalAnd || node.operation == BinaryOperator::logicalOr)
        return logicalChain(expression, scope);
    if (const auto found = comparisons().find(node.operation); found != comparisons().end()) {
        Piece left = value(*node.left, scope);
        Piece right = value(*node.right, scope);
        adapt(left, right);
        return "(" + compared(left, right) + std::string(found->second) + right.sql + ")";
    }
    const std::string left = condition(*node.left, scope);
    const std::string right = condition(*node.right, scope);
    switch (node.operation) {
        case BinaryOperator::logicalXor: return "(" + left + " <> " + right + ")";
        case BinaryOperator::equivalent: return "(" + left + " = " + right + ")";
        default: return "((NOT " + left + ") OR " + right + ")";
    }
}

std::string Translator::between(const sql::Between& node, const Scope& scope) {
    Piece middle = value(*node.value, scope);
    Piece low = value(*node.low, scope);
    Piece high = value(*node.high, scope);
    adapt(middle, low);
    adapt(middle, high);
    return "(" + withCollation(middle) + " BETWEEN " + low.sql + " AND " + high.sql + ")";
}

std::string Translator::inList(const sql::InList& node, const Scope& scope) {
    Piece left = value(*node.value, scope);
    std::vector<std::string> items;
    for (const sql::ExpressionPtr& expression : node.items) {
        Piece item = value(*expression, scope);
        adapt(left, item);
        items.push_back(item.sql);
    }
    return "(" + withCollation(left) + " IN (" + joined(items, ", ") + "))";
}

std::string Translator::inSelect(const sql::InSelect& node, const Scope& scope) {
    const Piece left = value(*node.value, scope);
    const TranslatedSelect set = select(*node.select, &scope);
    if (set.fields.size() != 1)
        fail(ErrorCode::syntax, u"A subquery in IN gives one field, not " +
                                    textOf(static_cast<double>(set.fields.size())) + u".");
    return "(" + withCollation(left) + " IN (" + set.sql + "))";
}

// Null when no value decides and a comparison with one is null.
std::string Translator::quantified(const sql::Quantified& node, const Scope& scope) {
    Piece left;
    {
        const Replaced none(aggregates_, false);
        left = value(*node.value, scope);
    }
    const TranslatedSelect set = select(*node.select, &scope);
    if (set.fields.size() != 1)
        fail(ErrorCode::syntax, u"A subquery behind ALL, ANY or SOME gives one field, not " +
                                    textOf(static_cast<double>(set.fields.size())) + u".");
    Piece right{"c1", set.fields[0].type};
    adapt(left, right);
    const std::string each =
        compared(left, right) + std::string(comparisons().at(node.operation)) + right.sql;
    const std::string decision = node.all ? "WHEN min(k) = 0 THEN 0 WHEN count(k) = count(*) THEN 1"
                                          : "WHEN max(k) = 1 THEN 1 WHEN count(k) = count(*) THEN 0";
    return "(SELECT CASE " + decision + " END FROM (SELECT " + each + " AS k FROM (" + set.sql + ")))";
}

Piece Translator::subquery(const sql::Select& node, const Scope& scope) {
    TranslatedSelect inner = select(node, &scope);
    if (inner.fields.size() != 1)
        fail(ErrorCode::syntax, u"A subquery used as a value gives one field, not " +
                                    textOf(static_cast<double>(inner.fields.size())) + u".");
    return {"(" + inner.sql + ")", inner.fields[0].type};
}

}  // namespace tessary::server::translation
