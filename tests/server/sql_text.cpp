#include "tests/server/sql_text.h"

#include <charconv>

namespace tessary::server::sql {

namespace {

std::string written(const Source& source);

std::string bracketed(TextView name) {
    const char* const quotes = name.find(u']') == TextView::npos ? "[]" : "``";
    return quotes[0] + toUtf8(name) + quotes[1];
}

std::string fieldName(const Name& name) {
    return (name.qualifier.empty() ? "" : bracketed(name.qualifier) + ".") + bracketed(name.name);
}

// All digits, so that reading gives the same number; a dot tells it from a whole one.
std::string number(double value) {
    char digits[400];
    const auto end = std::to_chars(digits, digits + sizeof digits, value, std::chars_format::scientific).ptr;
    return std::string(digits, end);
}

std::string inQuotes(TextView text) {
    std::string result = "'";
    for (const char character : toUtf8(text)) {
        result += character == '\'' ? "''" : std::string(1, character);
    }
    return result + "'";
}

std::string date(Date value) {
    const DateParts parts = partsOf(value);
    char text[80];
    std::snprintf(text, sizeof text, "#%04d-%02d-%02d %02d:%02d:%02d#", parts.year, parts.month, parts.day,
                  parts.hour, parts.minute, parts.second);
    return text;
}

struct ConstantWriter {
    std::string operator()(Null) const { return "null"; }
    std::string operator()(bool value) const { return value ? "true" : "false"; }
    std::string operator()(std::int32_t value) const { return std::to_string(value); }
    std::string operator()(double value) const { return number(value); }
    std::string operator()(Date value) const { return date(value); }
    std::string operator()(const Text& value) const { return inQuotes(value); }
};

template <typename Items, typename Write>
std::string listed(const Items& items, Write write) {
    std::string result;
    for (const auto& item : items) {
        result += (result.empty() ? "" : ", ") + write(item);
    }
    return result;
}

std::string listed(const std::vector<ExpressionPtr>& items) {
    return listed(items, [](const ExpressionPtr& item) { return written(*item); });
}

struct ExpressionWriter {
    static std::string word(BinaryOperator operation) {
        static const char* const words[] = {"+", "-",  "*", "/",  "\\",  "mod", "^",   "&",   "=",  "<>",
                                            "<", "<=", ">", ">=", "and", "or",  "xor", "eqv", "imp"};
        return words[static_cast<int>(operation)];
    }
    static std::string negation(bool negated) { return negated ? " not" : ""; }

    std::string operator()(const Literal& node) const { return std::visit(ConstantWriter(), node.value); }
    std::string operator()(const Name& node) const { return fieldName(node); }
    std::string operator()(const Placeholder&) const { return "?"; }
    std::string operator()(const Unary& node) const {
        static const char* const words[] = {"-", "+", "not "};
        return "(" + (words[static_cast<int>(node.operation)] + written(*node.operand)) + ")";
    }
    std::string operator()(const Binary& node) const {
        return "(" + written(*node.left) + " " + word(node.operation) + " " + written(*node.right) + ")";
    }
    std::string operator()(const Like& node) const {
        return "(" + written(*node.text) + negation(node.negated) + " like " + written(*node.pattern) + ")";
    }
    std::string operator()(const Between& node) const {
        return "(" + written(*node.value) + negation(node.negated) + " between " + written(*node.low) +
               " and " + written(*node.high) + ")";
    }
    std::string operator()(const IsNull& node) const {
        return "(" + written(*node.operand) + " is" + negation(node.negated) + " null)";
    }
    std::string operator()(const InList& node) const {
        return "(" + written(*node.value) + negation(node.negated) + " in (" + listed(node.items) + "))";
    }
    std::string operator()(const InSelect& node) const {
        return "(" + written(*node.value) + negation(node.negated) + " in (" + written(*node.select) + "))";
    }
    std::string operator()(const Quantified& node) const {
        return "(" + written(*node.value) + " " + word(node.operation) + (node.all ? " all (" : " any (") +
               written(*node.select) + "))";
    }
    std::string operator()(const Exists& node) const { return "exists (" + written(*node.select) + ")"; }
    std::string operator()(const Subquery& node) const { return "(" + written(*node.select) + ")"; }
    std::string operator()(const Call& node) const {
        return toUtf8(node.function) + "(" + (node.star ? "*" : "") + (node.distinct ? "distinct " : "") +
               listed(node.arguments) + ")";
    }
};

std::string alias(TextView name) {
    return name.empty() ? "" : " as " + bracketed(name);
}

struct SourceWriter {
    std::string operator()(const TableSource& node) const {
        return bracketed(node.table) + alias(node.alias);
    }
    std::string operator()(const SelectSource& node) const {
        return "(" + written(*node.select) + ")" + alias(node.alias);
    }
    std::string operator()(const Join& node) const {
        if (node.kind == JoinKind::cross) {
            return "(" + written(*node.left) + ", " + written(*node.right) + ")";
        }
        static const char* const words[] = {"", " inner join ", " left join ", " right join "};
        return "(" + written(*node.left) + words[static_cast<int>(node.kind)] + written(*node.right) +
               " on " + sql::written(*node.condition) + ")";
    }
};

std::string written(const Source& source) {
    return std::visit(SourceWriter(), source.node);
}

std::string writtenItem(const SelectItem& item) {
    if (item.expression) {
        return written(*item.expression) + alias(item.alias);
    }
    return (item.qualifier.empty() ? "" : bracketed(item.qualifier) + ".") + "*";
}

std::string where(const ExpressionPtr& condition) {
    return condition ? " where " + written(*condition) : "";
}

std::string quantifier(const Select& select) {
    std::string result = select.distinct ? "distinct " : "";
    if (select.top) {
        result += "top " + std::to_string(*select.top) + (select.topPercent ? " percent " : " ");
    }
    return result;
}

struct StatementWriter {
    std::string operator()(const SelectPtr& node) const { return written(*node); }
    std::string operator()(const Insert& node) const {
        std::string text = "insert into " + bracketed(node.table);
        if (!node.fields.empty()) {
            text += " (" + listed(node.fields, bracketed) + ")";
        }
        if (node.select) {
            return text + " " + written(*node.select);
        }
        return text + " values " + listed(node.rows, [](const auto& row) { return "(" + listed(row) + ")"; });
    }
    std::string operator()(const Update& node) const {
        return "update " + written(*node.target) + " set " +
               listed(node.assignments,
                      [](const Assignment& item) {
                          return fieldName(item.field) + " = " + written(*item.value);
                      }) +
               where(node.where);
    }
    std::string operator()(const Delete& node) const {
        return "delete " + (node.table.empty() ? "" : bracketed(node.table) + ".* ") + "from " +
               written(*node.from) + where(node.where);
    }
    std::string operator()(const Execute& node) const {
        return "execute " + bracketed(node.query) + (node.arguments.empty() ? "" : " ") +
               listed(node.arguments);
    }
    template <typename Other>
    std::string operator()(const Other&) const {
        return "";
    }
};

}  // namespace

std::string written(const Expression& expression) {
    return std::visit(ExpressionWriter(), expression.node);
}

std::string written(const Select& select) {
    std::string text = "select " + quantifier(select) + listed(select.items, writtenItem);
    text += select.into.empty() ? "" : " into " + bracketed(select.into);
    text += select.from ? " from " + written(*select.from) : "";
    text += where(select.where);
    text += select.groupBy.empty() ? "" : " group by " + listed(select.groupBy);
    text += select.having ? " having " + written(*select.having) : "";
    for (const Select::Following& following : select.unions) {
        text += std::string(following.all ? " union all " : " union ") + written(*following.select);
    }
    const auto order = [](const OrderItem& item) {
        return written(*item.expression) + (item.descending ? " desc" : "");
    };
    return text + (select.orderBy.empty() ? "" : " order by " + listed(select.orderBy, order));
}

std::string written(const Statement& statement) {
    const auto parameter = [](const ParameterDeclaration& declared) {
        return bracketed(declared.name) + " " + toUtf8(typeName(declared.type));
    };
    const std::string prefix =
        statement.parameters.empty() ? "" : "parameters " + listed(statement.parameters, parameter) + "; ";
    return prefix + std::visit(StatementWriter(), statement.node);
}

}  // namespace tessary::server::sql
