#include "server/sql/parser_context.h"
#include "server/sql/parser_definitions.h"
#include "server/sql/parser_expressions.h"
#include "server/sql/parser_fields.h"
#include "server/sql/parser_queries.h"

namespace tessary::server::sql {

namespace {

void parseQuery(ParserContext& context, Statement& statement);

void parseParameterList(ParserContext& context, std::vector<ParameterDeclaration>& parameters) {
    do {
        ParameterDeclaration parameter;
        parameter.name = context.takeName();
        parameter.type = parseType(context).type;
        parameters.push_back(std::move(parameter));
    } while (context.acceptSymbol(u","));
}

// The stored text is checked here, so that a query that can never run is refused now and not when it is used.
Text parseStoredStatement(ParserContext& context, bool view) {
    context.errorCode = ErrorCode::syntax;
    const std::size_t begin = context.peek().offset;
    Statement stored;
    if (view) {
        SelectPtr select = parseSelect(context);
        if (!select->into.empty()) {
            context.fail(u"a view cannot make a table");
        }
    } else {
        parseQuery(context, stored);
    }
    const std::size_t end = context.peek().offset;
    context.placeholders = 0;
    return context.written(begin, end);
}

CreateQuery parseCreateView(ParserContext& context) {
    CreateQuery create;
    create.query.name = parseNewName(context);
    if (context.atSymbol(u"(")) {
        context.fail(u"the fields of a view are named in its SELECT, with AS");
    }
    context.expectWord(u"as");
    create.query.statement = parseStoredStatement(context, true);
    return create;
}

// The parameters become a PARAMETERS clause of the stored statement.
CreateQuery parseCreateProcedure(ParserContext& context) {
    CreateQuery create;
    create.query.name = parseNewName(context);
    Text declared;
    if (!context.atWord(u"as")) {
        const bool parenthesized = context.acceptSymbol(u"(");
        const std::size_t begin = context.peek().offset;
        std::vector<ParameterDeclaration> parameters;
        parseParameterList(context, parameters);
        declared = u"PARAMETERS " + context.written(begin, context.peek().offset) + u"; ";
        if (parenthesized) {
            context.expectSymbol(u")");
        }
    }
    context.expectWord(u"as");
    create.query.statement = declared + parseStoredStatement(context, false);
    return create;
}

void parseCreate(ParserContext& context, Statement& statement) {
    context.errorCode = ErrorCode::syntaxInDefinition;
    context.take();
    if (context.acceptWord(u"table")) {
        statement.node = parseCreateTable(context);
    } else if (context.atWord(u"unique") || context.atWord(u"index")) {
        statement.node = parseCreateIndex(context);
    } else if (context.acceptWord(u"view")) {
        statement.node = parseCreateView(context);
    } else if (context.acceptWord(u"procedure") || context.acceptWord(u"proc")) {
        statement.node = parseCreateProcedure(context);
    } else {
        context.fail(u"TABLE, INDEX, VIEW or PROCEDURE is expected");
    }
}

void parseAlter(ParserContext& context, Statement& statement) {
    context.errorCode = ErrorCode::syntaxInDefinition;
    context.take();
    context.expectWord(u"table");
    statement.node = parseAlterTable(context);
}

void parseDropStatement(ParserContext& context, Statement& statement) {
    context.errorCode = ErrorCode::syntaxInDefinition;
    context.take();
    parseDrop(context, statement);
}

void parseExecute(ParserContext& context, Statement& statement) {
    context.take();
    Execute execute;
    execute.query = context.takeName();
    if (!context.atStatementEnd()) {
        execute.arguments = parseExpressions(context);
    }
    statement.node = std::move(execute);
}

struct Kind {
    TextView word;
    void (*parse)(ParserContext& context, Statement& statement);
    bool storable;  // by CREATE PROCEDURE
};

constexpr Kind kinds[] = {
    {u"select", [](ParserContext& context, Statement& statement) { statement.node = parseSelect(context); },
     true},
    {u"insert", [](ParserContext& context, Statement& statement) { statement.node = parseInsert(context); },
     true},
    {u"update", [](ParserContext& context, Statement& statement) { statement.node = parseUpdate(context); },
     true},
    {u"delete", [](ParserContext& context, Statement& statement) { statement.node = parseDelete(context); },
     true},
    {u"exec", parseExecute, true},
    {u"execute", parseExecute, true},
    {u"create", parseCreate, false},
    {u"alter", parseAlter, false},
    {u"drop", parseDropStatement, false},
};

// What stands behind PARAMETERS and in a procedure.
void parseQuery(ParserContext& context, Statement& statement) {
    for (const Kind& kind : kinds) {
        if (kind.storable && context.atWord(kind.word)) {
            kind.parse(context, statement);
            return;
        }
    }
    if (!context.atSymbol(u"(")) {
        context.fail(u"SELECT, INSERT, UPDATE, DELETE or EXECUTE is expected");
    }
    statement.node = parseSelect(context);
}

void parseStatement(ParserContext& context, Statement& statement) {
    for (const Kind& kind : kinds) {
        if (context.atWord(kind.word)) {
            kind.parse(context, statement);
            return;
        }
    }
    if (!context.atSymbol(u"(")) {
        context.fail(
            u"a statement begins with SELECT, INSERT, UPDATE, DELETE, CREATE, ALTER, DROP or EXECUTE");
    }
    statement.node = parseSelect(context);
}

}  // namespace

Statement parse(TextView text) {
    ParserContext context(text);
    if (context.atStatementEnd()) {
        throw DatabaseError(ErrorCode::syntax, u"The statement is empty.");
    }
    Statement statement;
    if (context.acceptWord(u"parameters")) {
        parseParameterList(context, statement.parameters);
        context.expectSymbol(u";");
        parseQuery(context, statement);
    } else {
        parseStatement(context, statement);
    }
    context.expectEnd();
    statement.placeholders = context.placeholders;
    return statement;
}

}  // namespace tessary::server::sql
