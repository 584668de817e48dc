#include "server/sql/parser_definitions.h"

#include "server/sql/parser_fields.h"

namespace tessary::server::sql {

namespace {

void parseIndexOption(ParserContext& context, CreateIndex& statement) {
    if (context.acceptWord(u"primary")) {
        statement.index.primary = true;
        statement.index.unique = true;
    } else if (context.acceptWord(u"disallow")) {
        context.expectWord(u"null");
        statement.disallowNull = true;
    } else if (context.acceptWord(u"ignore")) {
        context.expectWord(u"null");
        statement.ignoreNull = true;
    } else {
        context.fail(u"PRIMARY, DISALLOW NULL or IGNORE NULL is expected");
    }
}

// ADD and ALTER of fields, with further ones behind commas.
void parseAddedFields(ParserContext& context, AlterTable& statement, const Constraints& constraints) {
    context.acceptWord(u"column");
    FieldChange change;
    change.field = parseField(context, constraints);
    statement.changes.push_back(std::move(change));
}

void parseRemoval(ParserContext& context, AlterTable& statement) {
    if (context.acceptWord(u"constraint")) {
        statement.droppedConstraints.push_back(context.takeName());
        return;
    }
    context.acceptWord(u"column");
    FieldChange change;
    change.kind = FieldChange::Kind::remove;
    change.field.name = context.takeName();
    statement.changes.push_back(std::move(change));
}

void parseRenaming(ParserContext& context, AlterTable& statement) {
    context.acceptWord(u"column");
    FieldChange change;
    change.kind = FieldChange::Kind::rename;
    change.field.name = context.takeName();
    context.expectWord(u"to");
    change.newName = parseNewName(context);
    statement.changes.push_back(std::move(change));
}

void parseAddition(ParserContext& context, AlterTable& statement, const Constraints& constraints) {
    if (atTableConstraint(context)) {
        parseTableConstraint(context, constraints);
    } else {
        parseAddedFields(context, statement, constraints);
    }
}

enum class Action { none, add, alter, drop, rename };

Action acceptAction(ParserContext& context) {
    static constexpr std::pair<TextView, Action> actions[] = {{u"add", Action::add},
                                                              {u"alter", Action::alter},
                                                              {u"drop", Action::drop},
                                                              {u"rename", Action::rename}};
    for (const auto& [word, action] : actions) {
        if (context.acceptWord(word)) {
            return action;
        }
    }
    return Action::none;
}

}  // namespace

CreateTable parseCreateTable(ParserContext& context) {
    CreateTable statement;
    TableDefinition& table = statement.definition;
    table.name = parseNewName(context);
    const Constraints constraints{table.name, table.indexes, statement.relations};
    context.expectSymbol(u"(");
    do {
        if (atTableConstraint(context)) {
            parseTableConstraint(context, constraints);
        } else {
            table.fields.push_back(parseField(context, constraints));
        }
    } while (context.acceptSymbol(u","));
    context.expectSymbol(u")");
    return statement;
}

CreateIndex parseCreateIndex(ParserContext& context) {
    CreateIndex statement;
    statement.index.unique = context.acceptWord(u"unique");
    context.expectWord(u"index");
    statement.index.name = parseNewName(context);
    context.expectWord(u"on");
    statement.table = context.takeName();
    statement.index.fields = parseIndexFields(context);
    if (context.acceptWord(u"with")) {
        do {
            parseIndexOption(context, statement);
        } while (!context.atStatementEnd());
    }
    return statement;
}

// Behind a comma the action may be left out: ADD a long, b long.
AlterTable parseAlterTable(ParserContext& context) {
    AlterTable statement;
    statement.table = context.takeName();
    const Constraints constraints{statement.table, statement.indexes, statement.relations};
    Action action = Action::none;
    do {
        const Action given = acceptAction(context);
        action = given == Action::none ? action : given;
        switch (action) {
            case Action::add: parseAddition(context, statement, constraints); break;
            case Action::alter: parseAddedFields(context, statement, constraints); break;
            case Action::drop: parseRemoval(context, statement); break;
            case Action::rename: parseRenaming(context, statement); break;
            case Action::none: context.fail(u"ADD, ALTER, DROP or RENAME is expected");
        }
    } while (context.acceptSymbol(u","));
    return statement;
}

void parseDrop(ParserContext& context, Statement& statement) {
    if (context.acceptWord(u"table")) {
        statement.node = DropTable{context.takeName()};
    } else if (context.acceptWord(u"index")) {
        DropIndex drop;
        drop.index = context.takeName();
        context.expectWord(u"on");
        drop.table = context.takeName();
        statement.node = std::move(drop);
    } else if (context.acceptWord(u"view") || context.acceptWord(u"procedure") ||
               context.acceptWord(u"proc")) {
        statement.node = DropQuery{context.takeName()};
    } else {
        context.fail(u"TABLE, INDEX, VIEW or PROCEDURE is expected");
    }
}

}  // namespace tessary::server::sql
