#include "server/sqlite/functions.h"
#include "server/sqlite/translator_state.h"

#include <algorithm>
#include <map>

namespace tessary::server::translation {

namespace {

// sameNumber: whole for whole numbers; wholePart: also a date for a date.
enum class Result { unknown, yesNo, whole, number, date, text, sameNumber, wholePart };

Type typeOfResult(Result result, const std::vector<Piece>& arguments) {
    switch (result) {
        case Result::yesNo: return typeOf(FieldType::yesNo);
        case Result::whole: return typeOf(FieldType::longInteger);
        case Result::number: return typeOf(FieldType::number);
        case Result::date: return typeOf(FieldType::dateTime);
        case Result::text: return typeOf(FieldType::text);
        case Result::wholePart:
            if (arguments[0].type.kind == Kind::date)
                return typeOf(FieldType::dateTime);
            [[fallthrough]];
        case Result::sameNumber:
            if (arguments[0].type.kind == Kind::yesNo)
                return typeOf(FieldType::longInteger);
            return arguments[0].type.kind == Kind::whole ? arguments[0].type : typeOf(FieldType::number);
        case Result::unknown: break;
    }
    return {};
}

Text lowerCase(TextView name) {
    Text lower(name);
    for (char16_t& c : lower) {
        if (c >= u'A' && c <= u'Z')
            c = static_cast<char16_t>(c + (u'a' - u'A'));
    }
    return lower;
}

}  // namespace

// A function that is more than a call of its SQLite counterpart.
using SpecialForm = Piece (*)(Translator& translator, const sql::Call& call, const Scope& scope);

struct ScalarFunction {
    int least, most;  // arguments
    // One letter each, the last for all that follow: t text, n number, a any value. Dates are made texts for
    // t, since a function cannot tell them from numbers.
    std::string_view arguments;
    Result result;
    const char* sqlite;  // null: form
    SpecialForm form = nullptr;
};

enum class AggregateResult { count, number, same };
struct AggregateFunction {
    const char* sqlite;
    AggregateResult result;
    bool ofNumbers;
};

struct FunctionForms {
    static Piece iif(Translator& translator, const sql::Call& node, const Scope& scope) {
        std::vector<Piece> values = valuesOf(translator, node, scope, 1, 1);
        const Type type = madeAlike(values);
        return {"(CASE WHEN " + translator.condition(*node.arguments[0], scope) + " THEN " + values[0].sql +
                    " ELSE " + values[1].sql + " END)",
                type};
    }

    // Without a second argument null becomes the empty text, or 0 among numbers.
    static Piece nz(Translator& translator, const sql::Call& node, const Scope& scope) {
        std::vector<Piece> values = valuesOf(translator, node, scope, 0, 1);
        const Type type = madeAlike(values);
        if (values.size() == 1)
            return {call("coalesce", {values[0].sql, type.mayBeText() ? "''" : "0"}), type};
        return {call("coalesce", {values[0].sql, values[1].sql}), type};
    }

    static Piece isNull(Translator& translator, const sql::Call& node, const Scope& scope) {
        return {"(-(" + translator.value(*node.arguments[0], scope).sql + " IS NULL))",
                typeOf(FieldType::yesNo)};
    }

    static Piece switchOf(Translator& translator, const sql::Call& node, const Scope& scope) {
        if (node.arguments.size() % 2 != 0)
            fail(ErrorCode::syntax, u"Switch needs pairs of a condition and a value.");
        std::vector<Piece> values = valuesOf(translator, node, scope, 1, 2);
        const Type type = madeAlike(values);
        std::string sql = "(CASE";
        for (std::size_t i = 0; i < values.size(); ++i)
            sql += " WHEN " + translator.condition(*node.arguments[2 * i], scope) + " THEN " + values[i].sql;
        return {sql + " END)", type};
    }

    static Piece choose(Translator& translator, const sql::Call& node, const Scope& scope) {
        const Piece index = translator.value(*node.arguments[0], scope);
        std::vector<Piece> values = valuesOf(translator, node, scope, 1, 1);
        const Type type = madeAlike(values);
        std::string sql = "(CASE ts_fix(" + asNumber(index) + ")";
        for (std::size_t i = 0; i < values.size(); ++i)
            sql += " WHEN " + std::to_string(i + 1) + " THEN " + values[i].sql;
        return {sql + " END)", type};
    }

    static Piece format(Translator& translator, const sql::Call& node, const Scope& scope) {
        const Piece given = translator.value(*node.arguments[0], scope);
        const std::string pattern = node.arguments.size() > 1
                                        ? asText(translator.value(*node.arguments[1], scope))
                                        : std::string("''");
        const char* function = given.type.kind == Kind::date ? "ts_format_date" : "ts_format";
        return {call(function, {given.sql, pattern}), typeOf(FieldType::text)};
    }

    static Piece text(Translator& translator, const sql::Call& node, const Scope& scope) {
        return {asText(translator.value(*node.arguments[0], scope)), typeOf(FieldType::text)};
    }

    static Piece isDate(Translator& translator, const sql::Call& node, const Scope& scope) {
        const Piece given = translator.value(*node.arguments[0], scope);
        if (given.type.kind == Kind::date)
            return {"(-(" + given.sql + " IS NOT NULL))", typeOf(FieldType::yesNo)};
        return {call("ts_is_date", {given.sql}), typeOf(FieldType::yesNo)};
    }

    static Piece isNumeric(Translator& translator, const sql::Call& node, const Scope& scope) {
        const Piece given = translator.value(*node.arguments[0], scope);
        if (given.type.kind == Kind::date)
            return {"0", typeOf(FieldType::yesNo)};
        return {call("ts_is_numeric", {given.sql}), typeOf(FieldType::yesNo)};
    }

    static Piece random(Translator&, const sql::Call&, const Scope&) {
        return {"(abs(random() % 16777216) / 16777216.0)", typeOf(FieldType::number)};
    }

    // SQLite keeps 'now' still while a statement runs.
    static Piece now(Translator&, const sql::Call&, const Scope&) {
        return {"ts_now(julianday('now', 'localtime'))", typeOf(FieldType::dateTime)};
    }
    static Piece today(Translator&, const sql::Call&, const Scope&) {
        return {"ts_date_of(ts_now(julianday('now', 'localtime')))", typeOf(FieldType::dateTime)};
    }
    static Piece timeOfDay(Translator&, const sql::Call&, const Scope&) {
        return {"ts_time_of(ts_now(julianday('now', 'localtime')))", typeOf(FieldType::dateTime)};
    }

private:
    static std::vector<Piece> valuesOf(Translator& translator, const sql::Call& node, const Scope& scope,
                                       std::size_t first, std::size_t step) {
        std::vector<Piece> values;
        for (std::size_t i = first; i < node.arguments.size(); i += step)
            values.push_back(translator.value(*node.arguments[i], scope));
        return values;
    }

    // The type of them all; null has every type. Dates beside a text become texts, since nothing would tell
    // them from numbers there.
    static Type madeAlike(std::vector<Piece>& values) {
        const auto isKind = [](Kind kind) {
            return [kind](const Piece& piece) { return piece.type.kind == kind; };
        };
        if (std::ranges::any_of(values, isKind(Kind::text))) {
            for (Piece& piece : values) {
                if (piece.type.kind == Kind::date)
                    piece = {asText(piece), typeOf(FieldType::text)};
            }
        }
        std::optional<Type> all;
        for (const Piece& piece : values) {
            const bool null = piece.literal && tessary::server::isNull(*piece.literal);
            if (!null)
                all = all ? merged(*all, piece.type) : piece.type;
        }
        return all.value_or(Type{});
    }
};

namespace {

constexpr int many = 200;

const std::map<TextView, ScalarFunction>& scalarFunctions() {
    static const std::map<TextView, ScalarFunction> functions = {
        {u"abs", {1, 1, "n", Result::sameNumber, "ts_abs"}},
        {u"asc", {1, 1, "t", Result::whole, "ts_asc"}},
        {u"atn", {1, 1, "n", Result::number, "ts_atn"}},
        {u"cbool", {1, 1, "a", Result::yesNo, "ts_cbool"}},
        {u"cbyte", {1, 1, "a", Result::whole, "ts_cbyte"}},
        {u"ccur", {1, 1, "a", Result::number, "ts_ccur"}},
        {u"cdate", {1, 1, "a", Result::date, "ts_cdate"}},
        {u"cdbl", {1, 1, "a", Result::number, "ts_cdbl"}},
        {u"choose", {2, many, "", Result::unknown, nullptr, FunctionForms::choose}},
        {u"chr", {1, 1, "n", Result::text, "ts_chr"}},
        {u"cint", {1, 1, "a", Result::whole, "ts_cint"}},
        {u"clng", {1, 1, "a", Result::whole, "ts_clng"}},
        {u"cos", {1, 1, "n", Result::number, "ts_cos"}},
        {u"csng", {1, 1, "a", Result::number, "ts_csng"}},
        {u"cstr", {1, 1, "", Result::text, nullptr, FunctionForms::text}},
        {u"date", {0, 0, "", Result::date, nullptr, FunctionForms::today}},
        {u"dateadd", {3, 3, "tna", Result::date, "ts_dateadd"}},
        {u"datediff", {3, 5, "taann", Result::whole, "ts_datediff"}},
        {u"datepart", {2, 4, "tann", Result::whole, "ts_datepart"}},
        {u"dateserial", {3, 3, "nnn", Result::date, "ts_dateserial"}},
        {u"datevalue", {1, 1, "a", Result::date, "ts_datevalue"}},
        {u"day", {1, 1, "a", Result::whole, "ts_day"}},
        {u"exp", {1, 1, "n", Result::number, "ts_exp"}},
        {u"fix", {1, 1, "n", Result::wholePart, "ts_fix"}},
        {u"format", {1, 2, "", Result::text, nullptr, FunctionForms::format}},
        {u"hex", {1, 1, "n", Result::text, "ts_hex"}},
        {u"hour", {1, 1, "a", Result::whole, "ts_hour"}},
        {u"iif", {3, 3, "", Result::unknown, nullptr, FunctionForms::iif}},
        {u"instr", {2, 4, "a", Result::whole, "ts_instr"}},
        {u"instrrev", {2, 4, "ttnn", Result::whole, "ts_instrrev"}},
        {u"int", {1, 1, "n", Result::wholePart, "ts_int"}},
        {u"isdate", {1, 1, "", Result::yesNo, nullptr, FunctionForms::isDate}},
        {u"isnull", {1, 1, "", Result::yesNo, nullptr, FunctionForms::isNull}},
        {u"isnumeric", {1, 1, "", Result::yesNo, nullptr, FunctionForms::isNumeric}},
        {u"lcase", {1, 1, "t", Result::text, "ts_lcase"}},
        {u"left", {2, 2, "tn", Result::text, "ts_left"}},
        {u"len", {1, 1, "t", Result::whole, "ts_len"}},
        {u"log", {1, 1, "n", Result::number, "ts_log"}},
        {u"ltrim", {1, 1, "t", Result::text, "ts_ltrim"}},
        {u"mid", {2, 3, "tnn", Result::text, "ts_mid"}},
        {u"minute", {1, 1, "a", Result::whole, "ts_minute"}},
        {u"month", {1, 1, "a", Result::whole, "ts_month"}},
        {u"monthname", {1, 2, "nn", Result::text, "ts_monthname"}},
        {u"now", {0, 0, "", Result::date, nullptr, FunctionForms::now}},
        {u"nz", {1, 2, "", Result::unknown, nullptr, FunctionForms::nz}},
        {u"oct", {1, 1, "n", Result::text, "ts_oct"}},
        {u"replace", {3, 6, "tttnnn", Result::text, "ts_replace"}},
        {u"right", {2, 2, "tn", Result::text, "ts_right"}},
        {u"rnd", {0, 1, "", Result::number, nullptr, FunctionForms::random}},
        {u"round", {1, 2, "nn", Result::sameNumber, "ts_round"}},
        {u"rtrim", {1, 1, "t", Result::text, "ts_rtrim"}},
        {u"second", {1, 1, "a", Result::whole, "ts_second"}},
        {u"sgn", {1, 1, "n", Result::whole, "ts_sgn"}},
        {u"sin", {1, 1, "n", Result::number, "ts_sin"}},
        {u"space", {1, 1, "n", Result::text, "ts_space"}},
        {u"sqr", {1, 1, "n", Result::number, "ts_sqr"}},
        {u"str", {1, 1, "n", Result::text, "ts_str"}},
        {u"strcomp", {2, 3, "ttn", Result::whole, "ts_strcomp"}},
        {u"strreverse", {1, 1, "t", Result::text, "ts_strreverse"}},
        {u"string", {2, 2, "na", Result::text, "ts_string"}},
        {u"switch", {2, many, "", Result::unknown, nullptr, FunctionForms::switchOf}},
        {u"tan", {1, 1, "n", Result::number, "ts_tan"}},
        {u"time", {0, 0, "", Result::date, nullptr, FunctionForms::timeOfDay}},
        {u"timeserial", {3, 3, "nnn", Result::date, "ts_timeserial"}},
        {u"timevalue", {1, 1, "a", Result::date, "ts_timevalue"}},
        {u"trim", {1, 1, "t", Result::text, "ts_trim"}},
        {u"ucase", {1, 1, "t", Result::text, "ts_ucase"}},
        {u"val", {1, 1, "t", Result::number, "ts_val"}},
        {u"weekday", {1, 2, "an", Result::whole, "ts_weekday"}},
        {u"weekdayname", {1, 3, "nnn", Result::text, "ts_weekdayname"}},
        {u"year", {1, 1, "a", Result::whole, "ts_year"}},
    };
    return functions;
}

const std::map<TextView, AggregateFunction>& aggregateFunctions() {
    static const std::map<TextView, AggregateFunction> functions = {
        {u"avg", {"avg", AggregateResult::number, true}},
        {u"count", {"count", AggregateResult::count, false}},
        {u"first", {"ts_first", AggregateResult::same, false}},
        {u"last", {"ts_last", AggregateResult::same, false}},
        {u"max", {"max", AggregateResult::same, false}},
        {u"min", {"min", AggregateResult::same, false}},
        {u"stdev", {"ts_stdev", AggregateResult::number, true}},
        {u"stdevp", {"ts_stdevp", AggregateResult::number, true}},
        {u"sum", {"sum", AggregateResult::number, true}},
        {u"var", {"ts_var", AggregateResult::number, true}},
        {u"varp", {"ts_varp", AggregateResult::number, true}},
    };
    return functions;
}

Text countText(std::size_t count) {
    return textOf(static_cast<double>(count));
}

std::string argument(char kind, const Piece& piece) {
    if (kind == 't' && piece.type.kind == Kind::date)
        return asText(piece);
    return piece.sql;
}

}  // namespace

Piece Translator::functionCall(const sql::Call& node, const Scope& scope) {
    Text lower = lowerCase(node.function);
    // LEFT$ and its like differ in nothing here.
    if (lower.ends_with(u'$'))
        lower.pop_back();
    if (const auto found = aggregateFunctions().find(lower); found != aggregateFunctions().end())
        return aggregate(found->second, node, scope);
    const auto found = scalarFunctions().find(lower);
    if (found == scalarFunctions().end())
        fail(ErrorCode::unknownFunction, u"Undefined function '" + node.function + u"' in expression.");
    const ScalarFunction& function = found->second;
    const auto count = static_cast<int>(node.arguments.size());
    if (node.star || node.distinct || count < function.least || count > function.most)
        fail(ErrorCode::syntax, u"Wrong number of arguments (" + countText(node.arguments.size()) +
                                    u") used with function '" + node.function + u"'.");
    if (function.form)
        return function.form(*this, node, scope);
    std::vector<Piece> pieces;
    std::vector<std::string> arguments;
    for (const sql::ExpressionPtr& expression : node.arguments) {
        pieces.push_back(value(*expression, scope));
        const std::size_t place = std::min(arguments.size(), function.arguments.size() - 1);
        arguments.push_back(argument(function.arguments[place], pieces.back()));
    }
    return {std::string(function.sqlite) + "(" + joined(arguments, ", ") + ")",
            typeOfResult(function.result, pieces)};
}

// SQLite gives an aggregate over fields of an outer select alone to that select. A field of the own select
// that changes nothing keeps it here.
std::string Translator::aggregated(const AggregateFunction& function, const sql::Call& node,
                                   const Scope& scope, Piece& given) {
    const Replaced none(aggregates_, false);
    const Replaced<Grouping*> apart(grouping_, nullptr);
    const Replaced<const Scope*> home(home_, &scope);
    const Replaced<bool> noneOutside(usesOuter_, false);
    const Replaced<bool> noneInside(usesHome_, false);
    given = value(*node.arguments[0], scope);
    const std::string argument = function.ofNumbers ? asNumber(given) : withCollation(given);
    if (!usesOuter_ || usesHome_)
        return argument;
    if (scope.tables.empty())
        fail(ErrorCode::syntax,
             u"The aggregate function '" + node.function + u"' needs a FROM clause in its own select.");
    const SourceTable& table = scope.tables.front();
    return "iif(typeof(" + table.alias + "." + table.fields.front().column + ") = '', " + argument + ", " +
           argument + ")";
}

Piece Translator::aggregate(const AggregateFunction& function, const sql::Call& node, const Scope& scope) {
    if (!aggregates_)
        fail(ErrorCode::syntax, u"The aggregate function '" + node.function +
                                    u"' cannot be used in WHERE, ON, GROUP BY, in assignments, inside "
                                    u"another one, or with ALL, ANY or SOME.");
    if (node.star && function.result == AggregateResult::count && node.arguments.empty()) {
        if (grouping_ && grouping_->scope == &scope)
            grouping_->aggregates = true;
        return {"count(*)", typeOf(FieldType::longInteger)};
    }
    if (node.star || node.arguments.size() != 1)
        fail(ErrorCode::syntax, u"Wrong number of arguments (" + countText(node.arguments.size()) +
                                    u") used with function '" + node.function + u"'.");
    if (grouping_ && grouping_->scope == &scope)
        grouping_->aggregates = true;
    Piece given;
    const std::string argument = aggregated(function, node, scope, given);
    const std::string sql =
        std::string(function.sqlite) + "(" + (node.distinct ? "DISTINCT " : "") + argument + ")";
    switch (function.result) {
        case AggregateResult::count: return {sql, typeOf(FieldType::longInteger)};
        case AggregateResult::number: return {sql, typeOf(FieldType::number)};
        case AggregateResult::same: break;
    }
    return {sql, given.type};
}

}  // namespace tessary::server::translation
