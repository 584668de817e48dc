#include "server/schema/field_type.h"

#include "server/values/error.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace tessary::server {
namespace {

struct TypeWord {
    TextView word;
    FieldType type;
    bool autonumber = false;
};

// The first word of each type is the one that is written.
constexpr TypeWord typeWords[] = {
    {u"YESNO", FieldType::yesNo},
    {u"BIT", FieldType::yesNo},
    {u"LOGICAL", FieldType::yesNo},
    {u"BOOLEAN", FieldType::yesNo},
    {u"BYTE", FieldType::byte},
    {u"SHORT", FieldType::integer},
    {u"SMALLINT", FieldType::integer},
    {u"INTEGER2", FieldType::integer},
    {u"LONG", FieldType::longInteger},
    {u"INT", FieldType::longInteger},
    {u"INTEGER", FieldType::longInteger},
    {u"INTEGER4", FieldType::longInteger},
    {u"COUNTER", FieldType::longInteger, true},
    {u"AUTOINCREMENT", FieldType::longInteger, true},
    {u"AUTONUMBER", FieldType::longInteger, true},
    {u"SINGLE", FieldType::single},
    {u"REAL", FieldType::single},
    {u"DOUBLE", FieldType::number},
    {u"FLOAT", FieldType::number},
    {u"NUMBER", FieldType::number},
    {u"NUMERIC", FieldType::number},
    {u"DECIMAL", FieldType::number},
    {u"CURRENCY", FieldType::currency},
    {u"MONEY", FieldType::currency},
    {u"DATETIME", FieldType::dateTime},
    {u"DATE", FieldType::dateTime},
    {u"TIME", FieldType::dateTime},
    {u"TEXT", FieldType::text},
    {u"CHAR", FieldType::text},
    {u"VARCHAR", FieldType::text},
    {u"STRING", FieldType::text},
    {u"MEMO", FieldType::memo},
    {u"LONGTEXT", FieldType::memo},
    {u"NOTE", FieldType::memo},
};

constexpr TextView counterWord = u"COUNTER";

bool isBlank(char16_t unit) {
    return unit == u' ' || (unit >= u'\t' && unit <= u'\r');
}

bool isMark(char16_t unit) {
    return TextView(u"()'\"#,").find(unit) != TextView::npos;
}

[[noreturn]] void failType(TextView field, TextView what) {
    throw DatabaseError(ErrorCode::syntaxInDefinition,
                        u"Definition of the field '" + Text(field) + u"': " + Text(what) + u".");
}

// Takes a type text apart: words and numbers, the parenthesized size, quoted texts and #dates#.
class TypeReader {
public:
    TypeReader(TextView fieldName, TextView text) : fieldName_(fieldName), rest_(text) {}

    TypedField read() {
        readType();
        readSize();
        for (TextView word = nextWord(); !word.empty(); word = nextWord())
            readProperty(word);
        checkField(result_.field);
        return std::move(result_);
    }

private:
    [[noreturn]] void fail(const Text& what) const { failType(fieldName_, what); }

    void skipBlanks() {
        while (!rest_.empty() && isBlank(rest_.front()))
            rest_.remove_prefix(1);
    }

    TextView take(std::size_t count) {
        const TextView taken = rest_.substr(0, count);
        rest_.remove_prefix(taken.size());
        return taken;
    }

    bool takeMark(char16_t mark) {
        skipBlanks();
        if (!rest_.starts_with(mark))
            return false;
        take(1);
        return true;
    }

    // Empty at the end.
    TextView nextWord() {
        skipBlanks();
        const auto end = std::find_if(rest_.begin(), rest_.end(),
                                      [](char16_t unit) { return isBlank(unit) || isMark(unit); });
        const TextView word = take(static_cast<std::size_t>(end - rest_.begin()));
        if (word.empty() && !rest_.empty())
            fail(u"unexpected '" + Text(rest_.substr(0, 20)) + u"'");
        return word;
    }

    void readType() {
        skipBlanks();
        if (rest_.empty())
            fail(u"a type is missing");
        const TextView word = nextWord();
        const auto field = typeOfName(word);
        if (!field)
            throw DatabaseError(ErrorCode::typeUnknown, u"The type '" + Text(word) + u"' of the field '" +
                                                            Text(fieldName_) + u"' is unknown.");
        result_.field = *field;
        result_.field.name = fieldName_;
    }

    void readSize() {
        if (!takeMark(u'('))
            return;
        const TextView word = nextWord();
        double size = 0;
        if (!parseNumber(word, size) || !takeMark(u')'))
            fail(u"the size in parentheses cannot be read");
        if (result_.field.type != FieldType::text)
            fail(u"this type has no size");
        setSize(result_.field, size);
    }

    void readProperty(TextView word) {
        if (sameName(word, u"REQUIRED"))
            result_.field.required = true;
        else if (sameName(word, u"NOT"))
            result_.field.required = expect(word, u"NULL");
        else if (sameName(word, u"PRIMARY"))
            result_.primary = expect(word, u"KEY");
        else if (sameName(word, u"UNIQUE"))
            result_.unique = true;
        else if (sameName(word, u"DEFAULT"))
            setDefault(result_.field, readLiteral());
        else if (!sameName(word, u"NULL"))  // nulls are allowed anyway
            fail(u"'" + Text(word) + u"' is not known");
    }

    bool expect(TextView after, TextView word) {
        if (!sameName(nextWord(), word))
            fail(u"'" + Text(word) + u"' is missing after '" + Text(after) + u"'");
        return true;
    }

    Value readLiteral() {
        skipBlanks();
        const char16_t first = rest_.empty() ? u'\0' : rest_.front();
        if (first == u'"' || first == u'\'')
            return readQuoted(first);
        if (first == u'#')
            return readDateLiteral();
        const TextView word = nextWord();
        double number = 0;
        if (parseNumber(word, number))
            return number;
        for (TextView yes : {u"TRUE", u"YES", u"ON"})
            if (sameName(word, yes))
                return true;
        for (TextView no : {u"FALSE", u"NO", u"OFF"})
            if (sameName(word, no))
                return false;
        if (!sameName(word, u"NULL"))
            fail(u"the default cannot be read");
        return Null{};
    }

    // A quote inside is written twice.
    Value readQuoted(char16_t quote) {
        Text text;
        take(1);
        while (true) {
            const std::size_t end = rest_.find(quote);
            if (end == TextView::npos)
                fail(u"the closing quote of the default is missing");
            text += take(end);
            take(1);
            if (!rest_.starts_with(quote))
                return text;
            text += take(1);
        }
    }

    Value readDateLiteral() {
        take(1);
        const std::size_t end = rest_.find(u'#');
        Date date;
        if (end == TextView::npos || !parseDate(take(end), date))
            fail(u"the default is not a date");
        take(1);
        return date;
    }

    TextView fieldName_;
    TextView rest_;
    TypedField result_;
};

Text quotedText(TextView text) {
    Text result = u"\"";
    for (const char16_t unit : text)
        result += unit == u'"' ? Text(u"\"\"") : Text(1, unit);
    return result + u"\"";
}

Text literalText(const Value& value) {
    if (const auto* text = std::get_if<Text>(&value))
        return quotedText(*text);
    if (const auto* truth = std::get_if<bool>(&value))
        return *truth ? u"YES" : u"NO";
    if (const auto* date = std::get_if<Date>(&value)) {
        // Parts of a second would be lost in a date.
        const bool whole = dateOf(partsOf(*date)) == *date;
        return whole ? u"#" + dateText(*date) + u"#" : textOf(date->days);
    }
    return textOf(value);
}

}  // namespace

TypedField parseFieldType(TextView fieldName, TextView typeText) {
    return TypeReader(fieldName, typeText).read();
}

bool beginsWithType(TextView typeText) {
    while (!typeText.empty() && isBlank(typeText.front()))
        typeText.remove_prefix(1);
    const auto end = std::find_if(typeText.begin(), typeText.end(),
                                  [](char16_t unit) { return isBlank(unit) || isMark(unit); });
    return typeOfName(typeText.substr(0, static_cast<std::size_t>(end - typeText.begin()))).has_value();
}

Text fieldTypeText(const FieldDefinition& field, bool primary) {
    Text text = field.autonumber ? Text(counterWord) : typeName(field.type);
    if (field.type == FieldType::text && field.size != 0)
        text += u"(" + textOf(field.size) + u")";
    if (field.required)
        text += u" REQUIRED";
    if (primary)
        text += u" PRIMARY KEY";
    if (field.defaultValue)
        text += u" DEFAULT " + literalText(*field.defaultValue);
    return text;
}

void setSize(FieldDefinition& field, double size) {
    if (!(size >= 1 && size <= largestTextSize) || size != std::floor(size))
        failType(field.name, u"the size must be a whole number from 1 to 255");
    field.size = static_cast<int>(size);
}

void setDefault(FieldDefinition& field, const Value& value) {
    field.defaultValue.reset();
    if (isNull(value))
        return;
    field.defaultValue = convertTo(field.type, value, field.name);
    const auto* text = std::get_if<Text>(&*field.defaultValue);
    const int size = field.size != 0 ? field.size : largestTextSize;
    if (text && field.type == FieldType::text && text->size() > static_cast<std::size_t>(size))
        throw DatabaseError(ErrorCode::fieldTooSmall,
                            u"The default of the field '" + field.name + u"' is longer than the field.");
}

void checkField(const FieldDefinition& field) {
    if (field.autonumber && field.defaultValue)
        failType(field.name, u"a counter has no default");
}

Text dateText(Date date) {
    const DateParts parts = partsOf(date);
    std::array<char, 80> text;
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02d %02d:%02d:%02d", parts.year, parts.month,
                  parts.day, parts.hour, parts.minute, parts.second);
    return toText(text.data());
}

Text typeName(FieldType type) {
    const auto* found = std::find_if(std::begin(typeWords), std::end(typeWords),
                                     [&](const TypeWord& entry) { return entry.type == type; });
    return Text(found->word);
}

std::optional<FieldDefinition> typeOfName(TextView word) {
    const auto* found = std::find_if(std::begin(typeWords), std::end(typeWords),
                                     [&](const TypeWord& entry) { return sameName(entry.word, word); });
    if (found == std::end(typeWords))
        return std::nullopt;
    FieldDefinition field;
    field.type = found->type;
    field.autonumber = found->autonumber;
    return field;
}

}  // namespace tessary::server
