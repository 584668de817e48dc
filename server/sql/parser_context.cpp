#include "server/sql/parser_context.h"

#include <algorithm>

namespace tessary::server::sql {

namespace {

// Levels of parentheses, operators and selects inside each other.
constexpr int deepestNesting = 200;
// How much of an offending word an error text repeats.
constexpr std::size_t longestQuotation = 40;

// Words that are names in brackets alone.
constexpr TextView reservedWords[] = {
    u"all",   u"and",    u"as",     u"between", u"distinct", u"distinctrow", u"eqv",    u"exists",
    u"from",  u"group",  u"having", u"imp",     u"in",       u"inner",       u"insert", u"into",
    u"is",    u"join",   u"like",   u"mod",     u"not",      u"null",        u"on",     u"or",
    u"order", u"select", u"set",    u"union",   u"update",   u"values",      u"where",  u"xor",
};

bool isReserved(TextView word) {
    return std::ranges::any_of(reservedWords, [&](TextView reserved) { return isWord(word, reserved); });
}

Text decimal(std::size_t number) {
    const std::string digits = std::to_string(number);
    return Text(digits.begin(), digits.end());
}

Text capitals(TextView word) {
    Text text(word);
    for (char16_t& character : text) {
        character =
            character >= u'a' && character <= u'z' ? static_cast<char16_t>(character - 32) : character;
    }
    return text;
}

bool endsOperand(const Token& token) {
    return token.kind == TokenKind::word || token.kind == TokenKind::name ||
           token.kind == TokenKind::constant;
}

}  // namespace

const Token& ParserContext::peek(std::size_t ahead) {
    while (count_ <= ahead) {
        Token& token = ahead_[(first_ + count_) % ahead_.size()];
        token = lexer_.next();
        if (token.kind == TokenKind::bad) {
            fail(errorCode, token.text, token);
        }
        ++count_;
    }
    return ahead_[(first_ + ahead) % ahead_.size()];
}

Token ParserContext::take() {
    peek();
    Token token = std::move(ahead_[first_]);
    first_ = (first_ + 1) % ahead_.size();
    --count_;
    return token;
}

bool ParserContext::atWord(TextView word, std::size_t ahead) {
    const Token& token = peek(ahead);
    return token.kind == TokenKind::word && isWord(token.text, word);
}

bool ParserContext::atSymbol(TextView symbol, std::size_t ahead) {
    const Token& token = peek(ahead);
    return token.kind == TokenKind::symbol && token.text == symbol;
}

bool ParserContext::atName(std::size_t ahead) {
    const Token& token = peek(ahead);
    return token.kind == TokenKind::name || (token.kind == TokenKind::word && !isReserved(token.text));
}

bool ParserContext::acceptWord(TextView word) {
    const bool found = atWord(word);
    if (found) {
        take();
    }
    return found;
}

bool ParserContext::acceptSymbol(TextView symbol) {
    const bool found = atSymbol(symbol);
    if (found) {
        take();
    }
    return found;
}

void ParserContext::expectWord(TextView word) {
    if (!acceptWord(word)) {
        fail(capitals(word) + u" is expected");
    }
}

void ParserContext::expectSymbol(TextView symbol) {
    if (!acceptSymbol(symbol)) {
        fail(Text(u"\"").append(symbol) + u"\" is expected");
    }
}

Text ParserContext::takeName() {
    if (!atName()) {
        fail(peek().kind == TokenKind::word ? TextView(u"this word is a name only in brackets")
                                            : u"a name is expected");
    }
    return take().text;
}

Text ParserContext::takeFieldName() {
    if (peek().kind != TokenKind::word && peek().kind != TokenKind::name) {
        fail(u"the name of a field is expected");
    }
    return take().text;
}

void ParserContext::expectEnd() {
    if (acceptSymbol(u";")) {
        if (peek().kind != TokenKind::end) {
            fail(u"nothing may follow the semicolon");
        }
    } else if (peek().kind != TokenKind::end) {
        fail(endsOperand(peek()) ? TextView(u"an operator or a comma is missing in front of it")
                                 : u"this does not belong here");
    }
}

Text ParserContext::written(std::size_t from, std::size_t end) const {
    TextView text = lexer_.statement().substr(from, end - from);
    while (!text.empty() && text.back() <= u' ') {
        text.remove_suffix(1);
    }
    return Text(text);
}

void ParserContext::fail(TextView reason) {
    fail(errorCode, reason, peek());
}

void ParserContext::fail(ErrorCode code, TextView reason) {
    fail(code, reason, peek());
}

void ParserContext::fail(ErrorCode code, TextView reason, const Token& token) const {
    Text text = code == ErrorCode::tooComplex ? u"The statement is too complex" : u"Syntax error";
    if (token.kind == TokenKind::end) {
        text += u" at the end of the statement";
    } else {
        text += u" at '";
        text += lexer_.statement().substr(token.offset, std::min(token.length, longestQuotation));
        text += token.length > longestQuotation ? u"...' (character " : u"' (character ";
        text += decimal(token.offset + 1) + u")";
    }
    throw DatabaseError(code, text.append(u": ").append(reason) + u".");
}

void ParserContext::raiseTallest(int height) {
    if (height > tallestTree) {
        fail(ErrorCode::tooComplex, u"there are too many operators or tables in a row");
    }
    tallest = std::max(tallest, height);
}

Nesting::Nesting(ParserContext& context, int levels) : context_(context), levels_(levels) {
    if (context.depth_ + levels > deepestNesting) {
        context.fail(ErrorCode::tooComplex, u"it is nested too deeply");
    }
    context.depth_ += levels;
}

}  // namespace tessary::server::sql
