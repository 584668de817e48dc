#include "server/sql/parser_expressions.h"

#include "server/sql/parser_queries.h"

#include <algorithm>

namespace tessary::server::sql {

namespace {

// How tightly operators bind.
enum Level : int {
    implication = 1,
    equivalence,
    exclusion,
    disjunction,
    conjunction,
    negation,
    comparison,
    concatenation,
    addition,
    remainder,
    integerDivision,
    multiplication,
    sign,
    power,
};

struct Infix {
    TextView text;
    bool isWord;
    Level level;
    BinaryOperator operation;
    // The order of evaluation does not matter: a chain becomes a balanced tree, of which even a long one is
    // low.
    bool balanced = false;
};

constexpr Infix infixes[] = {
    {u"imp", true, implication, BinaryOperator::implies},
    {u"eqv", true, equivalence, BinaryOperator::equivalent},
    {u"xor", true, exclusion, BinaryOperator::logicalXor},
    {u"or", true, disjunction, BinaryOperator::logicalOr, true},
    {u"and", true, conjunction, BinaryOperator::logicalAnd, true},
    {u"mod", true, remainder, BinaryOperator::modulo},
    {u"=", false, comparison, BinaryOperator::equal},
    {u"<>", false, comparison, BinaryOperator::notEqual},
    {u"<", false, comparison, BinaryOperator::less},
    {u"<=", false, comparison, BinaryOperator::lessOrEqual},
    {u">", false, comparison, BinaryOperator::greater},
    {u">=", false, comparison, BinaryOperator::greaterOrEqual},
    {u"&", false, concatenation, BinaryOperator::concatenate, true},
    {u"+", false, addition, BinaryOperator::add},
    {u"-", false, addition, BinaryOperator::subtract},
    {u"\\", false, integerDivision, BinaryOperator::integerDivide},
    {u"*", false, multiplication, BinaryOperator::multiply},
    {u"/", false, multiplication, BinaryOperator::divide},
    {u"^", false, power, BinaryOperator::power},
};

// Null: the next token is no operator between two operands.
const Infix* infixAt(ParserContext& context) {
    const Token& token = context.peek();
    if (token.kind != TokenKind::word && token.kind != TokenKind::symbol) {
        return nullptr;
    }
    const auto matches = [&](const Infix& infix) {
        return infix.isWord ? token.kind == TokenKind::word && isWord(token.text, infix.text)
                            : token.kind == TokenKind::symbol && token.text == infix.text;
    };
    const auto* const found = std::ranges::find_if(infixes, matches);
    return found == std::end(infixes) ? nullptr : found;
}

// An expression with the number of levels of its tree.
struct Tree {
    ExpressionPtr expression;
    int height = 0;
};

template <typename Node>
Tree makeTree(ParserContext& context, Node node, std::size_t offset, int below = 0) {
    context.raiseTallest(below + 1);
    return {std::make_unique<Expression>(Expression{std::move(node), offset}), below + 1};
}

Tree parseLevel(ParserContext& context, int level);

Tree joined(ParserContext& context, BinaryOperator operation, Tree left, Tree right, std::size_t offset) {
    const int below = std::max(left.height, right.height);
    return makeTree(context, Binary{operation, std::move(left.expression), std::move(right.expression)},
                    offset, below);
}

// Operands [first, end) of a chain; offsets[i] is where the operator behind operand i stands.
Tree balanced(ParserContext& context, BinaryOperator operation, std::vector<Tree>& operands,
              const std::vector<std::size_t>& offsets, std::size_t first, std::size_t end) {
    if (end - first == 1) {
        return std::move(operands[first]);
    }
    const std::size_t middle = first + (end - first + 1) / 2;
    Tree left = balanced(context, operation, operands, offsets, first, middle);
    Tree right = balanced(context, operation, operands, offsets, middle, end);
    return joined(context, operation, std::move(left), std::move(right), offsets[middle - 1]);
}

Tree parseChain(ParserContext& context, const Infix& infix, Tree first) {
    std::vector<Tree> operands;
    std::vector<std::size_t> offsets;
    operands.push_back(std::move(first));
    while (infixAt(context) == &infix) {
        offsets.push_back(context.take().offset);
        operands.push_back(parseLevel(context, infix.level + 1));
    }
    return balanced(context, infix.operation, operands, offsets, 0, operands.size());
}

std::vector<ExpressionPtr> parseItems(ParserContext& context, int& tallestItem) {
    std::vector<ExpressionPtr> items;
    do {
        Tree item = parseLevel(context, implication);
        tallestItem = std::max(tallestItem, item.height);
        items.push_back(std::move(item.expression));
    } while (context.acceptSymbol(u","));
    return items;
}

Tree parseInSelect(ParserContext& context, Tree value, bool negated, std::size_t offset) {
    NestedSelect nested = parseNestedSelect(context);
    context.expectSymbol(u")");
    const int below = std::max(value.height, nested.height);
    return makeTree(context, InSelect{std::move(value.expression), std::move(nested.select), negated}, offset,
                    below);
}

Tree parseIn(ParserContext& context, Tree value, bool negated, std::size_t offset) {
    context.expectSymbol(u"(");
    if (context.atWord(u"select")) {
        return parseInSelect(context, std::move(value), negated, offset);
    }
    int below = value.height;
    std::vector<ExpressionPtr> items = parseItems(context, below);
    context.expectSymbol(u")");
    if (auto* const only = std::get_if<Subquery>(&items.front()->node); only && items.size() == 1) {
        return makeTree(context, InSelect{std::move(value.expression), std::move(only->select), negated},
                        offset, below);
    }
    return makeTree(context, InList{std::move(value.expression), std::move(items), negated}, offset, below);
}

Tree parseBetween(ParserContext& context, Tree value, bool negated, std::size_t offset) {
    Tree low = parseLevel(context, concatenation);
    context.expectWord(u"and");
    Tree high = parseLevel(context, concatenation);
    const int below = std::max({value.height, low.height, high.height});
    return makeTree(
        context,
        Between{std::move(value.expression), std::move(low.expression), std::move(high.expression), negated},
        offset, below);
}

Tree parseLike(ParserContext& context, Tree text, bool negated, std::size_t offset) {
    Tree pattern = parseLevel(context, concatenation);
    const int below = std::max(text.height, pattern.height);
    return makeTree(context, Like{std::move(text.expression), std::move(pattern.expression), negated}, offset,
                    below);
}

Tree parseIsNull(ParserContext& context, Tree operand, std::size_t offset) {
    const bool negated = context.acceptWord(u"not");
    context.expectWord(u"null");
    return makeTree(context, IsNull{std::move(operand.expression), negated}, offset, operand.height);
}

// ANY and SOME are no words of their own: only what follows tells.
bool atQuantifier(ParserContext& context) {
    const bool word = context.atWord(u"all") || context.atWord(u"any") || context.atWord(u"some");
    return word && context.atSymbol(u"(", 1) && context.atWord(u"select", 2);
}

Tree parseQuantified(ParserContext& context, BinaryOperator operation, Tree value, std::size_t offset) {
    const bool all = isWord(context.take().text, u"all");
    context.expectSymbol(u"(");
    NestedSelect nested = parseNestedSelect(context);
    context.expectSymbol(u")");
    const int below = std::max(value.height, nested.height);
    return makeTree(context,
                    Quantified{operation, std::move(value.expression), std::move(nested.select), all}, offset,
                    below);
}

bool atWordComparison(ParserContext& context) {
    const std::size_t ahead = context.atWord(u"not") ? 1 : 0;
    return context.atWord(u"like", ahead) || context.atWord(u"between", ahead) ||
           context.atWord(u"in", ahead) || (ahead == 0 && context.atWord(u"is"));
}

Tree parseWordComparison(ParserContext& context, Tree left) {
    const std::size_t offset = context.peek().offset;
    const bool negated = context.acceptWord(u"not");
    const Token word = context.take();
    if (isWord(word.text, u"like")) {
        return parseLike(context, std::move(left), negated, offset);
    }
    if (isWord(word.text, u"between")) {
        return parseBetween(context, std::move(left), negated, offset);
    }
    if (isWord(word.text, u"in")) {
        return parseIn(context, std::move(left), negated, offset);
    }
    return parseIsNull(context, std::move(left), offset);
}

// True, Yes ... unless a table of that name is meant, as in yes.f.
std::optional<Value> constantWord(ParserContext& context) {
    struct Constant {
        TextView word;
        Value value;
    };
    static const Constant constants[] = {{u"true", true},   {u"yes", true}, {u"on", true},
                                         {u"false", false}, {u"no", false}, {u"off", false},
                                         {u"null", Null()}};
    if (context.atSymbol(u".", 1) || context.atSymbol(u"!", 1)) {
        return std::nullopt;
    }
    for (const Constant& constant : constants) {
        if (context.atWord(constant.word)) {
            return constant.value;
        }
    }
    return std::nullopt;
}

Tree parseCall(ParserContext& context) {
    const std::size_t offset = context.peek().offset;
    Call call;
    call.function = context.take().text;
    context.expectSymbol(u"(");
    int below = 0;
    if (context.atSymbol(u"*") && context.atSymbol(u")", 1)) {
        context.take();
        call.star = true;
    } else if (!context.atSymbol(u")")) {
        call.distinct = context.acceptWord(u"distinct");
        call.arguments = parseItems(context, below);
    }
    context.expectSymbol(u")");
    return makeTree(context, std::move(call), offset, below);
}

Tree parseExists(ParserContext& context) {
    const std::size_t offset = context.take().offset;
    context.expectSymbol(u"(");
    NestedSelect nested = parseNestedSelect(context);
    context.expectSymbol(u")");
    return makeTree(context, Exists{std::move(nested.select)}, offset, nested.height);
}

Tree parseParenthesized(ParserContext& context) {
    const std::size_t offset = context.take().offset;
    Tree inner;
    if (context.atWord(u"select")) {
        NestedSelect nested = parseNestedSelect(context);
        inner = makeTree(context, Subquery{std::move(nested.select)}, offset, nested.height);
    } else {
        inner = parseLevel(context, implication);
    }
    context.expectSymbol(u")");
    return inner;
}

Tree parsePrefixed(ParserContext& context, UnaryOperator operation, int operandLevel) {
    const std::size_t offset = context.take().offset;
    Tree operand = parseLevel(context, operandLevel);
    return makeTree(context, Unary{operation, std::move(operand.expression)}, offset, operand.height);
}

Tree parseWordOperand(ParserContext& context) {
    const std::size_t offset = context.peek().offset;
    if (context.atWord(u"not")) {
        return parsePrefixed(context, UnaryOperator::logicalNot, negation);
    }
    if (context.atWord(u"exists") && context.atSymbol(u"(", 1)) {
        return parseExists(context);
    }
    if (std::optional<Value> value = constantWord(context)) {
        context.take();
        return makeTree(context, Literal{std::move(*value)}, offset);
    }
    if (context.atSymbol(u"(", 1) && context.atName()) {
        return parseCall(context);
    }
    return makeTree(context, parseFieldReference(context), offset);
}

Tree parseOperand(ParserContext& context) {
    const Token& token = context.peek();
    const std::size_t offset = token.offset;
    switch (token.kind) {
        case TokenKind::word: return parseWordOperand(context);
        case TokenKind::name: return makeTree(context, parseFieldReference(context), offset);
        case TokenKind::constant: return makeTree(context, Literal{context.take().value}, offset);
        default: break;
    }
    if (context.atSymbol(u"(")) {
        return parseParenthesized(context);
    }
    if (context.atSymbol(u"-")) {
        return parsePrefixed(context, UnaryOperator::negate, power);
    }
    if (context.atSymbol(u"+")) {
        return parsePrefixed(context, UnaryOperator::plus, power);
    }
    if (context.acceptSymbol(u"?")) {
        return makeTree(context, Placeholder{context.placeholders++}, offset);
    }
    context.fail(u"a value is missing");
}

// Operands with the operators between them that bind at least as tightly as `level`.
Tree parseLevel(ParserContext& context, int level) {
    const Nesting nesting(context);
    Tree left = parseOperand(context);
    for (;;) {
        if (level <= comparison && atWordComparison(context)) {
            left = parseWordComparison(context, std::move(left));
            continue;
        }
        const Infix* const infix = infixAt(context);
        if (!infix || infix->level < level) {
            return left;
        }
        if (infix->balanced) {
            left = parseChain(context, *infix, std::move(left));
        } else {
            const std::size_t offset = context.take().offset;
            if (infix->level == comparison && atQuantifier(context)) {
                left = parseQuantified(context, infix->operation, std::move(left), offset);
                continue;
            }
            Tree right = parseLevel(context, infix->level + 1);
            left = joined(context, infix->operation, std::move(left), std::move(right), offset);
        }
    }
}

}  // namespace

ExpressionPtr parseExpression(ParserContext& context) {
    return parseLevel(context, implication).expression;
}

std::vector<ExpressionPtr> parseExpressions(ParserContext& context) {
    int tallestItem = 0;
    return parseItems(context, tallestItem);
}

Name parseFieldReference(ParserContext& context) {
    Name name;
    name.name = context.takeName();
    if (context.acceptSymbol(u".") || context.acceptSymbol(u"!")) {
        name.qualifier = std::move(name.name);
        name.name = context.takeFieldName();
        if (context.atSymbol(u".") || context.atSymbol(u"!")) {
            context.fail(u"a name has at most two parts, table and field");
        }
    }
    return name;
}

Value parseConstant(ParserContext& context) {
    const bool negative = context.atSymbol(u"-");
    if (negative || context.atSymbol(u"+")) {
        context.take();
    }
    if (context.peek().kind == TokenKind::word) {
        if (std::optional<Value> value = constantWord(context); value && !negative) {
            context.take();
            return std::move(*value);
        }
    }
    if (context.peek().kind != TokenKind::constant) {
        context.fail(u"a constant is expected");
    }
    Value value = context.peek().value;
    if (negative) {
        double number = 0;
        if (const auto* const whole = std::get_if<std::int32_t>(&value)) {
            number = *whole;
        } else if (const auto* const real = std::get_if<double>(&value)) {
            number = *real;
        } else {
            context.fail(u"a number is expected behind the sign");
        }
        value = -number;
    }
    context.take();
    return value;
}

}  // namespace tessary::server::sql
