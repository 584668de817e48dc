// Table definitions from the lists of the definition language, and back.

#include "server/schema/definition_tree.h"
#include "server/schema/field_type.h"
#include "server/values/error.h"

#include <algorithm>

namespace tessary::server {
namespace {

constexpr std::size_t mostFields = 255;
constexpr TextView primaryKeyName = u"PrimaryKey";
constexpr TextView dropWord = u"DROP", renameWord = u"RENAME";

// What one field's part of a definition asks for.
struct Item {
    FieldChange::Kind kind = FieldChange::Kind::addOrAlter;
    TypedField typed;
    Text newName;
};

[[noreturn]] void fail(const Text& what, const DefinitionNode& node) {
    throw DatabaseError(ErrorCode::syntaxInDefinition,
                        u"Syntax error in the definition: " + what + u" in " + display(node) + u".");
}

// RENAME and the new name, which may be in brackets and contain blanks.
bool isRename(TextView text) {
    return text.size() > renameWord.size() && sameName(text.substr(0, renameWord.size()), renameWord) &&
           text[renameWord.size()] == u' ';
}

// A number: nothing when it is none. Texts that are numbers count.
std::optional<double> numberIn(const Value& value) {
    if (const auto* integer = std::get_if<std::int32_t>(&value))
        return *integer;
    if (const auto* number = std::get_if<double>(&value))
        return *number;
    double parsed = 0;
    const auto* text = std::get_if<Text>(&value);
    return text && parseNumber(*text, parsed) ? std::optional(parsed) : std::nullopt;
}

Text nameIn(const DefinitionNode& node) {
    const Text* name = node.text();
    if (!name)
        throw DatabaseError(ErrorCode::nameNotValid, display(node) + u" is not a name.");
    checkName(*name);
    return *name;
}

// The long form: properties by their names.
class LongForm {
public:
    explicit LongForm(const DefinitionNode& list) : list_(list) {}

    // A list of pairs is read as the long form when all its names are properties, NAME and TYPE among them,
    // unless it makes sense as fields in the short form too: fields may be called Name and Type.
    static bool matches(const DefinitionNode& list) {
        const LongForm form(list);
        const auto isProperty = [](const DefinitionNode& item) {
            return item.isList && !item.items.empty() && item.items.size() <= 2 && item.items[0].text() &&
                   std::any_of(std::begin(keys), std::end(keys),
                               [&](TextView key) { return sameName(key, *item.items[0].text()); });
        };
        const auto isShort = [](const DefinitionNode& item) {
            const Text* text = item.items.size() == 2 ? item.items[1].text() : nullptr;
            return text && (beginsWithType(*text) || isRename(*text) || sameName(*text, dropWord));
        };
        return std::all_of(list.items.begin(), list.items.end(), isProperty) &&
               !form.value(u"NAME").isNil() && !form.value(u"TYPE").isNil() &&
               !std::all_of(list.items.begin(), list.items.end(), isShort);
    }

    Item read() const {
        checkKeys();
        const Text name = nameIn(value(u"NAME"));
        const Text* type = value(u"TYPE").text();
        if (!type)
            fail(u"a type is missing", list_);
        Item item;
        item.typed = parseFieldType(name, *type);
        FieldDefinition& field = item.typed.field;
        readSize(field);
        field.required = field.required || flag(u"REQUIRED");
        readAutonumber(field);
        if (find(u"DEFAULT"))
            setDefault(field, scalar(u"DEFAULT"));
        checkField(field);
        item.typed.primary = item.typed.primary || flag(u"PRIMARYKEY");
        return item;
    }

private:
    static constexpr TextView keys[] = {u"NAME",    u"TYPE",       u"SIZE",      u"REQUIRED",
                                        u"DEFAULT", u"AUTONUMBER", u"PRIMARYKEY"};

    // The pair of that name; null when there is none.
    const DefinitionNode* find(TextView key) const {
        const auto found =
            std::find_if(list_.items.begin(), list_.items.end(), [&](const DefinitionNode& item) {
                return item.isList && !item.items.empty() && item.items[0].text() &&
                       sameName(*item.items[0].text(), key);
            });
        return found == list_.items.end() ? nullptr : &*found;
    }

    // A key alone stands for nil, since LISP writes ("SIZE" . nil) like that.
    const DefinitionNode& value(TextView key) const {
        static const DefinitionNode nil;
        const DefinitionNode* pair = find(key);
        return pair && pair->items.size() == 2 ? pair->items[1] : nil;
    }

    const Value& scalar(TextView key) const {
        static const Value null;
        const DefinitionNode& node = value(key);
        if (node.isNil())
            return null;
        if (node.isList)
            fail(Text(key) + u" has a list for a value", list_);
        return node.value;
    }

    bool flag(TextView key) const {
        const Value& given = scalar(key);
        if (isNull(given))
            return false;
        return std::get<bool>(convertTo(FieldType::yesNo, given, key));
    }

    void checkKeys() const {
        for (const DefinitionNode& item : list_.items)
            if (find(*item.items[0].text()) != &item)
                fail(*item.items[0].text() + u" is given twice", list_);
    }

    // Zero is what attributes tell for the largest size, and for types without one; for those any size is
    // ignored, as descriptions from elsewhere have one for every field.
    void readSize(FieldDefinition& field) const {
        const Value& given = scalar(u"SIZE");
        if (isNull(given) || field.type != FieldType::text)
            return;
        const auto size = numberIn(given);
        if (!size)
            fail(u"the size is not a number", list_);
        if (*size != 0)
            setSize(field, *size);
    }

    void readAutonumber(FieldDefinition& field) const {
        if (!flag(u"AUTONUMBER"))
            return;
        if (field.type != FieldType::longInteger)
            fail(u"only a LONG counts by itself", list_);
        field.autonumber = true;
    }

    const DefinitionNode& list_;
};

class LanguageReader {
public:
    // changes: fields may be removed and renamed too.
    explicit LanguageReader(bool changes) : changes_(changes) {}

    std::vector<Item> read(const std::vector<Value>& flat) {
        DefinitionNode all = parseTree(flat);
        const auto isGiven = [](const DefinitionNode& node) { return !node.isNil(); };
        const auto first = std::find_if(all.items.begin(), all.items.end(), isGiven);
        if (first == all.items.end())
            return {};
        if (first->isList)
            std::erase_if(all.items, [](const DefinitionNode& node) { return node.isNil(); });
        else
            all = pairsOf(all);
        readFields(all);
        return std::move(items_);
    }

private:
    // Scripts give what structure and attributes tell as it is: names and values in turn, without lists.
    static DefinitionNode pairsOf(const DefinitionNode& all) {
        DefinitionNode pairs{true, {}, {}};
        for (std::size_t at = 0; at < all.items.size(); at += 2) {
            if (at + 1 == all.items.size() || all.items[at].isList || all.items[at + 1].isList)
                fail(u"a field is not in parentheses", all.items[at]);
            pairs.items.push_back({true, {}, {all.items[at], all.items[at + 1]}});
        }
        return pairs;
    }

    // The list holds fields, lists of fields, or the properties of one.
    void readFields(const DefinitionNode& list) {
        if (!list.items.empty() && LongForm::matches(list)) {
            items_.push_back(LongForm(list).read());
            return;
        }
        for (const DefinitionNode& node : list.items) {
            if (node.isNil())
                continue;
            if (!node.isList)
                fail(u"a field is not in parentheses", node);
            if (node.items.front().isList)
                readFields(node);
            else
                items_.push_back(readShort(node));
            if (items_.size() > mostFields)
                throw DatabaseError(ErrorCode::tooManyFields, u"A table has at most 255 fields.");
        }
    }

    // (name type), (name type size), and for changes (name) and the words for removing and renaming.
    Item readShort(const DefinitionNode& node) const {
        const Text name = nameIn(node.items[0]);
        const std::size_t count = node.items.size();
        const bool hasType = count > 1 && !node.items[1].isNil();
        if (changes_ && !hasType && count <= 2)
            return {FieldChange::Kind::remove, named(name), {}};
        const Text* type = hasType ? node.items[1].text() : nullptr;
        if (!type || count > 3)
            fail(hasType ? u"a field is not a name, a type and a size" : u"a type is missing", node);
        if (changes_ && count == 2 && sameName(*type, dropWord))
            return {FieldChange::Kind::remove, named(name), {}};
        if (changes_ && count == 2 && isRename(*type))
            return {FieldChange::Kind::rename, named(name), newNameIn(*type)};
        Item item;
        item.typed = parseFieldType(name, *type);
        if (count == 3 && !node.items[2].isNil())
            readSize(item.typed.field, node);
        return item;
    }

    static TypedField named(const Text& name) {
        TypedField typed;
        typed.field.name = name;
        return typed;
    }

    static Text newNameIn(TextView type) {
        TextView name = type.substr(renameWord.size());
        name.remove_prefix(std::min(name.find_first_not_of(u' '), name.size()));
        if (name.starts_with(u'[') && name.ends_with(u']'))
            name = name.substr(1, name.size() - 2);
        checkName(name);
        return Text(name);
    }

    static void readSize(FieldDefinition& field, const DefinitionNode& node) {
        const auto size = node.items[2].isList ? std::nullopt : numberIn(node.items[2].value);
        if (!size)
            fail(u"the size is not a number", node);
        if (field.type != FieldType::text)
            fail(u"this type has no size", node);
        setSize(field, *size);
        // A default that was given in the type's text must still fit.
        if (field.defaultValue)
            setDefault(field, Value(*field.defaultValue));
    }

    bool changes_;
    std::vector<Item> items_;
};

void addIndex(TableDefinition& table, IndexDefinition index) {
    if (index.primary && table.primaryIndex())
        throw DatabaseError(ErrorCode::syntaxInDefinition,
                            u"The table '" + table.name +
                                u"' has two fields with PRIMARY KEY. A key over several fields is an index.");
    if (table.index(index.name))
        throw DatabaseError(ErrorCode::indexExists, u"The table '" + table.name +
                                                        u"' has two indexes with the name '" + index.name +
                                                        u"'.");
    table.indexes.push_back(std::move(index));
}

void addField(TableDefinition& table, Item item) {
    FieldDefinition& field = item.typed.field;
    if (table.field(field.name))
        throw DatabaseError(ErrorCode::duplicateField,
                            u"The field '" + field.name + u"' is defined more than once.");
    const bool hasAutonumber = std::any_of(table.fields.begin(), table.fields.end(),
                                           [](const auto& other) { return other.autonumber; });
    if (field.autonumber && hasAutonumber)
        throw DatabaseError(ErrorCode::autonumberOnlyOne, u"The table '" + table.name +
                                                              u"' has more than one counter: '" + field.name +
                                                              u"'.");
    if (item.typed.primary)
        addIndex(table, {Text(primaryKeyName), {{field.name}}, true, true});
    else if (item.typed.unique)
        addIndex(table, {field.name, {{field.name}}, true, false});
    table.fields.push_back(std::move(field));
}

// A key over several fields cannot be told of one field.
bool isPrimaryAlone(const TableDefinition& table, const FieldDefinition& field) {
    const IndexDefinition* primary = table.primaryIndex();
    return primary && primary->fields.size() == 1 && sameName(primary->fields[0].name, field.name);
}

// A date in the form that is read back wherever the client is.
Value defaultAttribute(const FieldDefinition& field) {
    if (!field.defaultValue)
        return Null{};
    const auto* date = std::get_if<Date>(&*field.defaultValue);
    return date ? Value(dateText(*date)) : *field.defaultValue;
}

}  // namespace

TableDefinition parseTableDefinition(TextView table, const std::vector<Value>& flat) {
    checkName(table);
    TableDefinition definition;
    definition.name = table;
    for (Item& item : LanguageReader(false).read(flat))
        addField(definition, std::move(item));
    return definition;
}

std::vector<FieldChange> parseTableChanges(const std::vector<Value>& flat) {
    std::vector<FieldChange> changes;
    for (Item& item : LanguageReader(true).read(flat)) {
        if (item.typed.unique)
            throw DatabaseError(ErrorCode::syntaxInDefinition,
                                u"Definition of the field '" + item.typed.field.name +
                                    u"': UNIQUE makes an index only in a new table. Create the index apart.");
        changes.push_back(
            {item.kind, std::move(item.typed.field), std::move(item.newName), item.typed.primary});
    }
    return changes;
}

std::vector<Value> structureOf(const TableDefinition& table) {
    std::vector<Value> flat;
    for (const FieldDefinition& field : table.fields) {
        flat.emplace_back(field.name);
        flat.emplace_back(fieldTypeText(field, isPrimaryAlone(table, field)));
    }
    return flat;
}

std::vector<Value> attributesOf(const TableDefinition& table, const FieldDefinition& field) {
    return {Text(u"NAME"),       field.name,
            Text(u"TYPE"),       typeName(field.type),
            Text(u"SIZE"),       std::int32_t{field.size},
            Text(u"REQUIRED"),   field.required,
            Text(u"DEFAULT"),    defaultAttribute(field),
            Text(u"AUTONUMBER"), field.autonumber,
            Text(u"PRIMARYKEY"), isPrimaryAlone(table, field)};
}

}  // namespace tessary::server
