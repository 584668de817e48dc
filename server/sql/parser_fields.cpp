#include "server/sql/parser_fields.h"

#include "server/schema/field_type.h"
#include "server/sql/parser_expressions.h"

#include <algorithm>

namespace tessary::server::sql {

namespace {

constexpr std::size_t mostIndexFields = 10;

// Types of two words, and the word that means the same.
struct LongType {
    TextView first, second, meaning;
};
constexpr LongType longTypes[] = {
    {u"double", u"precision", u"DOUBLE"},
    {u"long", u"integer", u"LONG"},
    {u"char", u"varying", u"VARCHAR"},
    {u"character", u"varying", u"VARCHAR"},
};

Text parseTypeName(ParserContext& context) {
    if (context.peek().kind != TokenKind::word) {
        context.fail(u"the type of a field is expected");
    }
    for (const LongType& type : longTypes) {
        if (context.atWord(type.first) && context.atWord(type.second, 1)) {
            context.take();
            return Text(type.meaning);
        }
    }
    return context.peek().text;
}

// (n) or (n, m). A text's size is the only one with a meaning; the start and step of a counter and the digits
// of a number are accepted for the sake of statements written for other databases.
void parseSize(ParserContext& context, FieldDefinition& field) {
    if (!context.acceptSymbol(u"(")) {
        return;
    }
    int numbers = 0;
    do {
        const bool negative = field.autonumber && context.acceptSymbol(u"-");
        const auto* const number = std::get_if<std::int32_t>(&context.peek().value);
        if (!number || context.peek().kind != TokenKind::constant) {
            context.fail(u"a whole number is expected");
        }
        if (field.type == FieldType::text && (*number < 1 || *number > largestTextSize || numbers > 0)) {
            context.fail(u"the size of a text is one number from 1 to 255");
        }
        field.size = field.type == FieldType::text && !negative ? *number : field.size;
        context.take();
        ++numbers;
    } while (numbers < 2 && context.acceptSymbol(u","));
    context.expectSymbol(u")");
}

std::vector<Text> parseNames(ParserContext& context) {
    std::vector<Text> names;
    context.expectSymbol(u"(");
    do {
        names.push_back(context.takeName());
    } while (context.acceptSymbol(u","));
    context.expectSymbol(u")");
    return names;
}

// Cut to the longest name there can be.
Text madeName(Text name) {
    name.resize(std::min(name.size(), longestName));
    return name;
}

IndexDefinition makeIndex(Text name, std::vector<IndexField> fields, bool primary) {
    if (name.empty()) {
        name = primary ? u"PrimaryKey" : fields.front().name;
    }
    return {std::move(name), std::move(fields), true, primary};
}

// CASCADE: true. Doing nothing is what happens without the clause.
bool parseAction(ParserContext& context) {
    if (context.acceptWord(u"cascade")) {
        return true;
    }
    if (context.atWord(u"set")) {
        context.fail(u"references can only be kept by CASCADE or NO ACTION");
    }
    context.expectWord(u"no");
    context.expectWord(u"action");
    return false;
}

// At REFERENCES. The name may be empty.
void parseReference(ParserContext& context, Text name, std::vector<Text> foreignFields,
                    const Constraints& constraints) {
    context.expectWord(u"references");
    RelationDefinition relation;
    relation.table = context.takeName();
    if (context.atSymbol(u"(")) {
        relation.fields = parseNames(context);
    }
    if (!relation.fields.empty() && relation.fields.size() != foreignFields.size()) {
        context.fail(u"as many fields must be referred to as refer");
    }
    while (context.acceptWord(u"on")) {
        if (context.acceptWord(u"update")) {
            relation.cascadeUpdate = parseAction(context);
        } else {
            context.expectWord(u"delete");
            relation.cascadeDelete = parseAction(context);
        }
    }
    relation.foreignTable = constraints.table;
    relation.foreignFields = std::move(foreignFields);
    if (name.empty()) {
        name = relation.foreignTable;
        for (const Text& field : relation.foreignFields) {
            name.append(u"_").append(field);
        }
    }
    relation.name = madeName(std::move(name));
    constraints.relations.push_back(std::move(relation));
}

Text parseConstraintName(ParserContext& context) {
    return context.acceptWord(u"constraint") ? parseNewName(context) : Text();
}

// A constraint of the field that was just named; false: here is none.
bool parseFieldConstraint(ParserContext& context, FieldDefinition& field, const Constraints& constraints) {
    const bool named = context.atWord(u"constraint");
    Text name = parseConstraintName(context);
    if (context.acceptWord(u"not")) {
        context.expectWord(u"null");
        field.required = true;
    } else if (context.acceptWord(u"primary")) {
        context.expectWord(u"key");
        constraints.indexes.push_back(makeIndex(std::move(name), {{field.name}}, true));
    } else if (context.acceptWord(u"unique")) {
        constraints.indexes.push_back(makeIndex(std::move(name), {{field.name}}, false));
    } else if (context.atWord(u"references")) {
        parseReference(context, std::move(name), {field.name}, constraints);
    } else if (named) {
        context.fail(u"NOT NULL, PRIMARY KEY, UNIQUE or REFERENCES is expected");
    } else {
        return false;
    }
    return true;
}

// How a text is stored has no meaning here.
bool skipCompression(ParserContext& context) {
    const bool found =
        context.atWord(u"with") && (context.atWord(u"compression", 1) || context.atWord(u"comp", 1));
    if (found) {
        context.take();
        context.take();
    }
    return found;
}

}  // namespace

Text parseNewName(ParserContext& context) {
    Text name = context.takeName();
    checkName(name);
    return name;
}

FieldDefinition parseType(ParserContext& context) {
    const std::optional<FieldDefinition> type = typeOfName(parseTypeName(context));
    if (!type) {
        context.fail(ErrorCode::typeUnknown, u"there is no field type of that name");
    }
    context.take();
    FieldDefinition field = *type;
    parseSize(context, field);
    return field;
}

FieldDefinition parseField(ParserContext& context, const Constraints& constraints) {
    Text name = parseNewName(context);
    FieldDefinition field = parseType(context);
    field.name = std::move(name);
    for (;;) {
        if (context.acceptWord(u"default")) {
            setDefault(field, parseConstant(context));
        } else if (!context.acceptWord(u"null") && !skipCompression(context) &&
                   !parseFieldConstraint(context, field, constraints)) {
            checkField(field);
            return field;
        }
    }
}

bool atTableConstraint(ParserContext& context) {
    return context.atWord(u"constraint") || context.atWord(u"check") ||
           (context.atWord(u"primary") && context.atWord(u"key", 1)) ||
           (context.atWord(u"foreign") && context.atWord(u"key", 1)) ||
           (context.atWord(u"unique") && context.atSymbol(u"(", 1));
}

void parseTableConstraint(ParserContext& context, const Constraints& constraints) {
    Text name = parseConstraintName(context);
    if (context.acceptWord(u"primary")) {
        context.expectWord(u"key");
        constraints.indexes.push_back(makeIndex(std::move(name), parseIndexFields(context), true));
    } else if (context.acceptWord(u"unique")) {
        constraints.indexes.push_back(makeIndex(std::move(name), parseIndexFields(context), false));
    } else if (context.acceptWord(u"foreign")) {
        context.expectWord(u"key");
        std::vector<Text> fields = parseNames(context);
        parseReference(context, std::move(name), std::move(fields), constraints);
    } else {
        context.fail(u"PRIMARY KEY, UNIQUE or FOREIGN KEY is expected");
    }
}

std::vector<IndexField> parseIndexFields(ParserContext& context) {
    std::vector<IndexField> fields;
    context.expectSymbol(u"(");
    do {
        IndexField field{context.takeName()};
        field.descending = context.acceptWord(u"desc");
        if (!field.descending) {
            context.acceptWord(u"asc");
        }
        fields.push_back(std::move(field));
    } while (context.acceptSymbol(u","));
    if (fields.size() > mostIndexFields) {
        context.fail(u"an index has at most ten fields");
    }
    context.expectSymbol(u")");
    return fields;
}

}  // namespace tessary::server::sql
