// The definition language: what programs write, what the server tells, and mistakes.

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <sstream>

#include "server/schema/definition.h"
#include "server/values/error.h"

namespace tessary::server {
namespace {

// LISP text to the flat array that reaches the server for it: "(a . 1)" in quotes-free notation. Atoms: texts
// in single quotes, whole numbers, T and nil.
std::vector<Value> flat(const std::string& lisp) {
    std::vector<Value> values;
    for (std::size_t at = 0; at < lisp.size();) {
        if (lisp[at] == ' ') {
            ++at;
        } else if (lisp[at] == '(' || lisp[at] == ')') {
            values.emplace_back(Text(lisp[at++] == '(' ? u"*RTLB*" : u"*RTLE*"));
        } else if (lisp[at] == '\'') {
            const std::size_t end = lisp.find('\'', at + 1);
            values.emplace_back(toText(lisp.substr(at + 1, end - at - 1)));
            at = end + 1;
        } else {
            const std::size_t end = std::min(lisp.find_first_of(" ()", at), lisp.size());
            const std::string word = lisp.substr(at, end - at);
            at = end;
            if (word == ".")
                values.emplace_back(Text(u"*RTDOTE*"));
            else if (word == "nil")
                values.emplace_back(Null{});
            else if (word == "T")
                values.emplace_back(true);
            else if (word.find('.') != std::string::npos)
                values.emplace_back(std::stod(word));
            else
                values.emplace_back(static_cast<std::int32_t>(std::stol(word)));
        }
    }
    return values;
}

std::string utf8(TextView text) {
    return toUtf8(text);
}

std::string describe(const std::vector<Value>& structure) {
    std::string text;
    for (std::size_t at = 0; at + 1 < structure.size(); at += 2)
        text += (at ? "; " : "") + utf8(textOf(structure[at])) + ": " + utf8(textOf(structure[at + 1]));
    return text;
}

// The fields of the table that the definition makes, in the short form, or "#" and the error's number.
template <typename Make>
std::string resultOf(Make make) {
    try {
        return make();
    } catch (const DatabaseError& error) {
        EXPECT_TRUE(error.text().ends_with(u'.')) << utf8(error.text());
        EXPECT_LT(error.text().size(), 400u);
        return "#" + std::to_string(static_cast<int>(error.code()));
    }
}

std::string table(const std::string& lisp) {
    return resultOf([&] { return describe(structureOf(parseTableDefinition(u"T", flat(lisp)))); });
}

std::string changes(const std::string& lisp) {
    return resultOf([&] {
        std::string text;
        for (const FieldChange& change : parseTableChanges(flat(lisp))) {
            text += text.empty() ? "" : "; ";
            if (change.kind == FieldChange::Kind::remove)
                text += "-" + utf8(change.field.name);
            else if (change.kind == FieldChange::Kind::rename)
                text += utf8(change.field.name) + ">" + utf8(change.newName);
            else
                text +=
                    "+" + describe(structureOf({u"T", {change.field}, {}})) + (change.primary ? " key" : "");
        }
        return text;
    });
}

std::string index(TextView text, bool unique = false, bool primary = false) {
    return resultOf([&] {
        const IndexDefinition made = parseIndexDefinition(text, unique, primary);
        std::string result =
            utf8(made.name) + (made.unique ? " unique" : "") + (made.primary ? " primary" : "");
        for (const IndexField& field : made.fields)
            result += "|" + utf8(field.name) + (field.descending ? "-" : "+");
        return result;
    });
}

// ---- Fields

TEST(TableDefinition, shortFormInEveryNesting) {
    const std::string expected = "ID: COUNTER PRIMARY KEY; NAME: TEXT(50) REQUIRED; QTY: LONG";
    EXPECT_EQ(table("('ID' . 'COUNTER PRIMARY KEY') ('NAME' 'TEXT NOT NULL' 50) ('QTY' 'LONG')"), expected);
    EXPECT_EQ(table("(('ID' . 'counter primary key') ('NAME' . 'varchar(50) required') ('QTY' . 'int'))"),
              expected);
    EXPECT_EQ(table("((('ID' . 'COUNTER PRIMARY KEY')) (('NAME' . 'TEXT( 50 )REQUIRED') ('QTY' . 'LONG')))"),
              expected);
    EXPECT_EQ(table("'ID' 'COUNTER PRIMARY KEY' 'NAME' 'TEXT(50) REQUIRED' 'QTY' 'LONG'"), expected);
    EXPECT_EQ(table("(('NAME' . 'TEXT') ('QTY' . 'LONG'))"), "NAME: TEXT; QTY: LONG");
    EXPECT_EQ(table("(('NAME' . 'TEXT(50)') ('TYPE' . 'TEXT(20)') ('SIZE' . 'DOUBLE'))"),
              "NAME: TEXT(50); TYPE: TEXT(20); SIZE: DOUBLE")
        << "fields that are called like properties";
    EXPECT_EQ(table(""), "");
    EXPECT_EQ(table("nil"), "");
    EXPECT_EQ(table("()"), "");
}

TEST(TableDefinition, longFormAloneAndAmongOthers) {
    const std::string name =
        "(('NAME' . 'sName') ('TYPE' . 'TEXT') ('SIZE' . 50) ('REQUIRED' . -1) ('DEFAULT' . 'x') "
        "('AUTONUMBER' . 0) ('PRIMARYKEY' . 0))";
    const std::string key = "(('primarykey' . T) ('autonumber' . 1) ('default') ('size' . 0) ('required') "
                            "('type' . 'LONG') ('name' . 'ID'))";
    EXPECT_EQ(table(name), "sName: TEXT(50) REQUIRED DEFAULT \"x\"");
    EXPECT_EQ(table(name + key), "sName: TEXT(50) REQUIRED DEFAULT \"x\"; ID: COUNTER PRIMARY KEY");
    EXPECT_EQ(table("(" + name + key + "('QTY' . 'LONG'))"),
              "sName: TEXT(50) REQUIRED DEFAULT \"x\"; ID: COUNTER PRIMARY KEY; QTY: LONG");
    EXPECT_EQ(table(name.substr(1, name.size() - 2)), "sName: TEXT(50) REQUIRED DEFAULT \"x\"")
        << "loose properties of one field";
    EXPECT_EQ(table("(('NAME' . 'L') ('TYPE' . 'LONG') ('SIZE' . 4) ('REQUIRED' . nil))"), "L: LONG");
    EXPECT_EQ(table("(('NAME' . 'DATE') ('TYPE' . 'DATETIME') ('REQUIRED' . 0))"), "DATE: DATETIME");
    EXPECT_EQ(table("(('NAME' . 'A') ('TYPE' . 'TEXT') ('NAME' . 'B'))"), "#3290");
    EXPECT_EQ(table("(('NAME' . 'A') ('TYPE' . 5))"), "#3290");
    EXPECT_EQ(table("(('NAME' . 'A') ('TYPE' . 'DOUBLE') ('AUTONUMBER' . T))"), "#3290");
    EXPECT_EQ(table("(('NAME' . 'A') ('TYPE' . 'TEXT') ('SIZE' . 'big'))"), "#3290");
    EXPECT_EQ(table("(('NAME' . 'A') ('TYPE' . 'TEXT') ('SIZE' . (1)) ('REQUIRED' . (1 2)))"), "#3259");
}

TEST(TableDefinition, defaultsAreOfTheFieldsType) {
    EXPECT_EQ(table("('A' . 'TEXT(20) DEFAULT \"say \"\"no\"\"\" REQUIRED')"),
              "A: TEXT(20) REQUIRED DEFAULT \"say \"\"no\"\"\"");
    EXPECT_EQ(table("('A' . 'LONG NOT NULL DEFAULT -2.0')('B' . 'YESNO DEFAULT on')('C' . 'TEXT DEFAULT 5')"),
              "A: LONG REQUIRED DEFAULT -2; B: YESNO DEFAULT YES; C: TEXT DEFAULT \"5\"");
    EXPECT_EQ(table("('A' . 'DATETIME DEFAULT #7/4/2010 1:45 PM#')('B' . 'TEXT DEFAULT NULL')"),
              "A: DATETIME DEFAULT #2010-07-04 13:45:00#; B: TEXT");
    EXPECT_EQ(table("('A' . 'LONG DEFAULT \"many\"')"), "#3421");
    EXPECT_EQ(table("('A' . 'DATETIME DEFAULT #2010-02-30#')"), "#3290");
    EXPECT_EQ(table("('A' . 'TEXT(3) DEFAULT \"four\"')"), "#3163");
    EXPECT_EQ(table("('A' 'TEXT DEFAULT \"four\"' 3)"), "#3163");
    EXPECT_EQ(table("('A' . 'COUNTER DEFAULT 1')"), "#3290");
    EXPECT_EQ(table("('A' . 'LONG DEFAULT')"), "#3290");
    EXPECT_EQ(table("('A' . 'TEXT DEFAULT \"x')"), "#3290");
    EXPECT_EQ(table("(('NAME' . 'A') ('TYPE' . 'LONG') ('DEFAULT' . 'many'))"), "#3421");
}

TEST(TableDefinition, mistakesAreNamed) {
    EXPECT_EQ(table("('A' . 'BLOB')"), "#3259");
    EXPECT_EQ(table("('A' . '')"), "#3290");
    EXPECT_EQ(table("('A')"), "#3290");
    EXPECT_EQ(table("('A' . 5)"), "#3290");
    EXPECT_EQ(table("(5 . 'TEXT')"), "#3125");
    EXPECT_EQ(table("('a.b' . 'TEXT')"), "#3125");
    EXPECT_EQ(table("('" + std::string(65, 'n') + "' . 'TEXT')"), "#3125");
    EXPECT_EQ(table("('A' . 'TEXT(0)')"), "#3290");
    EXPECT_EQ(table("('A' . 'TEXT(256)')"), "#3290");
    EXPECT_EQ(table("('A' 'TEXT' 1.5)"), "#3290");
    EXPECT_EQ(table("('A' . 'TEXT(50')"), "#3290");
    EXPECT_EQ(table("('A' . 'LONG(4)')"), "#3290");
    EXPECT_EQ(table("('A' . 'LONG NOT')"), "#3290");
    EXPECT_EQ(table("('A' . 'LONG FOREVER')"), "#3290");
    EXPECT_EQ(table("('A' . 'DROP')"), "#3259") << "only a change removes";
    EXPECT_EQ(table("('A' . 'LONG')('a' . 'TEXT')"), "#3191");
    EXPECT_EQ(table("('A' . 'COUNTER')('B' . 'COUNTER')"), "#3291");
    EXPECT_EQ(table("('A' . 'LONG PRIMARY KEY')('B' . 'LONG PRIMARY KEY')"), "#3290");
    EXPECT_EQ(table("('A' 'TEXT' 5 5)"), "#3290");
    EXPECT_EQ(table("'A' ('B' . 'TEXT')"), "#3290");
    EXPECT_EQ(resultOf([] { return utf8(parseTableDefinition(u"a!b", {}).name); }), "#3125");
    std::string many;
    for (int field = 0; field < 256; ++field)
        many += "('F" + std::to_string(field) + "' . 'LONG')";
    EXPECT_EQ(table(many), "#3190");
}

TEST(TableDefinition, damagedListsAreRefused) {
    for (const char* lisp : {"(", ")", "('A' . 'LONG'", "('A' . 'LONG' 'B')", "('A' .", "('A' . )", "(. 'A')",
                             ".", "('A' 'B' . 'C')", "(('A' . 'LONG')))", "'A' 'LONG' 'B'"})
        EXPECT_EQ(table(lisp), "#3290") << lisp;
    EXPECT_EQ(table(std::string(100000, '(')), "#3290");
    EXPECT_EQ(table(std::string(20, '(') + std::string(20, ')')), "#3290");
}

TEST(TableDefinition, uniqueAndPrimaryMakeIndexes) {
    const TableDefinition made =
        parseTableDefinition(u"T", flat("('A' . 'LONG PRIMARY KEY UNIQUE')('B' . 'TEXT UNIQUE')"));
    ASSERT_EQ(made.indexes.size(), 2u);
    EXPECT_EQ(made.indexes[0], (IndexDefinition{u"PrimaryKey", {{u"A"}}, true, true}));
    EXPECT_EQ(made.indexes[1], (IndexDefinition{u"B", {{u"B"}}, true, false}));
    EXPECT_EQ(table("('A' . 'LONG PRIMARY KEY')('PrimaryKey' . 'TEXT UNIQUE')"), "#3284");
}

TEST(TableChanges, addRemoveAndRename) {
    EXPECT_EQ(changes("(('A' . 'TEXT(5)') ('B') ('C' . nil) ('D' . 'drop') ('E' . 'RENAME F'))"),
              "+A: TEXT(5); -B; -C; -D; E>F");
    EXPECT_EQ(changes("('E' . 'Rename  [New Name]')"), "E>New Name");
    EXPECT_EQ(changes("('K' . 'LONG PRIMARY KEY')"), "+K: LONG key");
    EXPECT_EQ(changes("(('NAME') ('TYPE' . 'RENAME KIND'))"), "-NAME; TYPE>KIND");
    EXPECT_EQ(changes("(('NAME' . 'X') ('TYPE' . 'MEMO'))"), "+X: MEMO");
    EXPECT_EQ(changes("'A' nil 'B' 'LONG'"), "-A; +B: LONG");
    EXPECT_EQ(changes(""), "");
    EXPECT_EQ(changes("('E' . 'RENAME')"), "#3259");
    EXPECT_EQ(changes("('E' . 'RENAME a.b')"), "#3125");
    EXPECT_EQ(changes("('E' . 'RENAME  ')"), "#3125");
    EXPECT_EQ(changes("('E' . 'TEXT UNIQUE')"), "#3290");
}

// ---- Telling a table

struct RandomTable {
    explicit RandomTable(unsigned seed) : random(seed) {}

    int below(int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); }

    Text name() {
        const TextView letters = u"aB1 _-(),'\"#\u00C4\u0416;:*";
        Text text(1, u'N');
        for (int count = below(12); count > 0; --count)
            text += letters[static_cast<std::size_t>(below(static_cast<int>(letters.size())))];
        return text;
    }

    Value defaultFor(FieldType type) {
        switch (type) {
            case FieldType::yesNo: return below(2) == 1;
            case FieldType::byte: return below(256);
            case FieldType::text: return name().substr(1);
            case FieldType::memo: return name() + u"\r\n\"" + name();
            case FieldType::dateTime:
                return below(2) ? Date{below(90000) - 45000 + below(1000) / 999.0}
                                : dateOf({1900 + below(200), 1 + below(12), 1 + below(28), below(24),
                                          below(60), 0});
            case FieldType::number: return (below(2000000) - 1000000) / 7.0 * std::pow(10.0, below(60) - 30);
            default: return convertTo(type, (below(60000) - 30000) / 3.0, u"");
        }
    }

    TableDefinition make() {
        TableDefinition table{u"T", {}, {}};
        bool counted = false;
        for (int count = below(8); count > 0; --count) {
            FieldDefinition field;
            do
                field.name = name();
            while (table.field(field.name));
            field.type = static_cast<FieldType>(below(10));
            field.required = below(2) == 1;
            if (field.type == FieldType::text && below(3) != 0)
                field.size = 20 + below(236);
            field.autonumber = !counted && field.type == FieldType::longInteger && below(2) == 1;
            counted = counted || field.autonumber;
            if (!field.autonumber && below(2) == 1)
                field.defaultValue = defaultFor(field.type);
            table.fields.push_back(field);
        }
        if (!table.fields.empty() && below(2) == 1)
            table.indexes.push_back({u"PrimaryKey", {{table.fields[0].name}}, true, true});
        return table;
    }

    std::mt19937 random;
};

std::vector<Value> nested(const std::vector<Value>& pairs) {
    std::vector<Value> values{Text(u"*RTLB*")};
    for (std::size_t at = 0; at + 1 < pairs.size(); at += 2) {
        values.emplace_back(Text(u"*RTLB*"));
        values.push_back(pairs[at]);
        if (!isNull(pairs[at + 1])) {
            values.emplace_back(Text(u"*RTDOTE*"));
            values.push_back(pairs[at + 1]);
        }
        values.emplace_back(Text(u"*RTLE*"));
    }
    values.emplace_back(Text(u"*RTLE*"));
    return values;
}

TEST(TableDescription, makesTheSameTableAgain) {
    for (unsigned seed = 0; seed < 2000; ++seed) {
        RandomTable random(seed);
        const TableDefinition original = random.make();
        const std::vector<Value> structure = structureOf(original);
        for (const auto& given : {structure, nested(structure)}) {
            const TableDefinition again = parseTableDefinition(u"T", given);
            ASSERT_EQ(again.fields, original.fields) << seed << ": " << describe(structure);
            ASSERT_EQ(again.indexes, original.indexes) << seed;
        }
        std::vector<Value> attributes;
        for (const FieldDefinition& field : original.fields) {
            // A long form has whole seconds.
            const auto* date = field.defaultValue ? std::get_if<Date>(&*field.defaultValue) : nullptr;
            FieldDefinition expected = field;
            if (date)
                expected.defaultValue = dateOf(partsOf(*date));
            const TableDefinition again = parseTableDefinition(u"T", nested(attributesOf(original, field)));
            ASSERT_EQ(again.fields, std::vector{expected}) << seed << ": " << utf8(field.name);
            ASSERT_EQ(again.indexes.size(),
                      original.primaryIndex() && &field == &original.fields[0] ? 1u : 0u);
            ASSERT_EQ(parseTableDefinition(u"T", attributesOf(original, field)).fields, again.fields);
        }
    }
}

TEST(TableDescription, aKeyOverSeveralFieldsIsNotTold) {
    TableDefinition original = parseTableDefinition(u"T", flat("('A' . 'LONG')('B' . 'LONG')"));
    original.indexes.push_back({u"K", {{u"A"}, {u"B"}}, true, true});
    EXPECT_EQ(describe(structureOf(original)), "A: LONG; B: LONG");
    EXPECT_EQ(attributesOf(original, original.fields[0]).back(), Value(false));
}

// Whatever arrives is parsed or refused, and never anything else.
TEST(TableDescription, survivesAnyArray) {
    const std::vector<Value> parts = {Text(u"*RTLB*"),
                                      Text(u"*RTLE*"),
                                      Text(u"*RTDOTE*"),
                                      Text(u"NAME"),
                                      Text(u"TYPE"),
                                      Text(u"TEXT"),
                                      Text(u"SIZE"),
                                      Text(u"DEFAULT"),
                                      Text(u"DROP"),
                                      Text(u""),
                                      Null{},
                                      true,
                                      std::int32_t{5},
                                      1e300,
                                      Date{1}};
    std::mt19937 random(3);
    int accepted = 0;
    for (int round = 0; round < 100000; ++round) {
        std::vector<Value> values;
        for (auto count = random() % 12; count > 0; --count)
            values.push_back(parts[random() % parts.size()]);
        try {
            parseTableChanges(values);
            ++accepted;
        } catch (const DatabaseError& error) {
            ASSERT_FALSE(error.text().empty());
        }
    }
    EXPECT_GT(accepted, 100);
}

// ---- Names, types, indexes

TEST(Names, whatCannotBeOneIsRefused) {
    const auto check = [](TextView name) {
        return resultOf([&] {
            checkName(name);
            return std::string("ok");
        });
    };
    for (TextView good : {u"a", u"My table", u"trailing ", u"\u00C4-1/2 (x)"})
        EXPECT_EQ(check(good), "ok") << utf8(good);
    EXPECT_EQ(check(Text(64, u'n')), "ok");
    for (TextView bad : {u"", u" a", u"a.b", u"a!b", u"a`b", u"[a]", u"a\tb", u"a\u007F"})
        EXPECT_EQ(check(bad), "#3125") << utf8(bad);
    EXPECT_EQ(check(Text(65, u'n')), "#3125");
}

TEST(TypeNames, synonymsOfEveryType) {
    const std::pair<const char*, const char*> synonyms[] = {{"COUNTER", "autoincrement AutoNumber"},
                                                            {"TEXT", "CHAR VARCHAR STRING"},
                                                            {"MEMO", "LONGTEXT NOTE"},
                                                            {"LONG", "INT INTEGER INTEGER4"},
                                                            {"SHORT", "SMALLINT INTEGER2"},
                                                            {"BYTE", "byte"},
                                                            {"DOUBLE", "FLOAT NUMBER NUMERIC"},
                                                            {"SINGLE", "REAL"},
                                                            {"CURRENCY", "MONEY"},
                                                            {"YESNO", "BIT LOGICAL BOOLEAN"},
                                                            {"DATETIME", "DATE TIME"}};
    for (const auto& [name, others] : synonyms) {
        std::istringstream words(std::string(name) + " " + others);
        for (std::string word; words >> word;)
            EXPECT_EQ(table("('A' . '" + word + "')"), std::string("A: ") + name) << word;
    }
    EXPECT_FALSE(typeOfName(u"").has_value());
    EXPECT_FALSE(typeOfName(u"TEXTS").has_value());
    for (int type = 0; type < 10; ++type)
        EXPECT_EQ(typeOfName(typeName(static_cast<FieldType>(type)))->type, static_cast<FieldType>(type));
}

TEST(IndexDefinition, nameAndFields) {
    EXPECT_EQ(index(u"QTY"), "QTY|QTY+");
    EXPECT_EQ(index(u"QTY", false, true), "QTY unique primary|QTY+");
    EXPECT_EQ(index(u" IX ( A , b DESC,[c (3)] desc, Long name asc , [desc] )", true),
              "IX unique|A+|b-|c (3)-|Long name+|desc+");
    EXPECT_EQ(index(u"[My index](desc)"), "My index|desc+");
    EXPECT_EQ(index(u"IX(a,b,c,d,e,f,g,h,i,j)"), "IX|a+|b+|c+|d+|e+|f+|g+|h+|i+|j+");
    EXPECT_EQ(index(u"IX(a,b,c,d,e,f,g,h,i,j,k)"), "#3290");
    EXPECT_EQ(index(u"IX(a, A)"), "#3191");
    for (TextView bad : {u"IX(a", u"IX(a) b", u"IX(a) )", u"[IX(a)", u"IX([a] down)", u"[IX]x(a)"})
        EXPECT_EQ(index(bad), "#3290") << utf8(bad);
    for (TextView bad : {u"", u"(a)", u"IX()", u"IX(a,)", u"IX(,a)", u"IX(a.b)"})
        EXPECT_EQ(index(bad), "#3125") << utf8(bad);
}

}  // namespace
}  // namespace tessary::server
