// "name(field, field desc)": an index in one text.

#include "server/schema/definition.h"
#include "server/values/error.h"

#include <algorithm>

namespace tessary::server {
namespace {

constexpr std::size_t mostIndexFields = 10;

class IndexReader {
public:
    explicit IndexReader(TextView text) : text_(text), rest_(text) {}

    IndexDefinition read() {
        IndexDefinition index;
        index.name = readName(u"(");
        if (rest_.empty())
            index.fields.push_back({index.name});
        else
            readFields(index);
        return index;
    }

private:
    [[noreturn]] void fail(TextView what) const {
        throw DatabaseError(ErrorCode::syntaxInDefinition, u"Syntax error in the index '" +
                                                               Text(text_.substr(0, 200)) + u"': " +
                                                               Text(what));
    }

    static TextView trimmed(TextView text) {
        while (text.starts_with(u' '))
            text.remove_prefix(1);
        while (text.ends_with(u' '))
            text.remove_suffix(1);
        return text;
    }

    // Up to one of the characters, or bracketed, in which case anything may be in it.
    Text readName(TextView ends) {
        rest_ = trimmed(rest_);
        TextView name;
        if (rest_.starts_with(u'[')) {
            const std::size_t close = rest_.find(u']');
            if (close == TextView::npos)
                fail(u"a bracket is not closed.");
            name = rest_.substr(1, close - 1);
            rest_ = trimmed(rest_.substr(close + 1));
        } else {
            const std::size_t end = std::min(rest_.find_first_of(ends), rest_.size());
            name = trimmed(rest_.substr(0, end));
            rest_ = trimmed(rest_.substr(end));
        }
        checkName(name);
        return Text(name);
    }

    void readFields(IndexDefinition& index) {
        if (!rest_.starts_with(u'('))
            fail(u"the fields are not in parentheses.");
        while (!rest_.starts_with(u')')) {
            rest_.remove_prefix(1);  // the parenthesis or the comma
            index.fields.push_back(readField(index));
            if (!rest_.starts_with(u',') && !rest_.starts_with(u')'))
                fail(u"the closing parenthesis is missing.");
        }
        if (rest_.size() != 1)
            fail(u"something stands behind the closing parenthesis.");
        if (index.fields.size() > mostIndexFields)
            fail(u"an index has at most ten fields.");
    }

    IndexField readField(const IndexDefinition& index) {
        const bool isBracketed = trimmed(rest_).starts_with(u'[');
        IndexField field{readName(u",)")};
        if (isBracketed) {
            const std::size_t end = std::min(rest_.find_first_of(u",)"), rest_.size());
            readOrder(field, trimmed(rest_.substr(0, end)));
            rest_.remove_prefix(end);
        } else if (const std::size_t blank = field.name.rfind(u' '); blank != Text::npos) {
            // Of a name with blanks the last word is the order, or else a part of the name.
            const Text last = field.name.substr(blank + 1);
            if (sameName(last, u"ASC") || sameName(last, u"DESC")) {
                readOrder(field, last);
                field.name = trimmed(field.name.substr(0, blank));
            }
        }
        for (const IndexField& other : index.fields)
            if (sameName(other.name, field.name))
                throw DatabaseError(ErrorCode::duplicateField, u"The field '" + field.name +
                                                                   u"' is twice in the index '" + index.name +
                                                                   u"'.");
        return field;
    }

    void readOrder(IndexField& field, TextView order) const {
        field.descending = sameName(order, u"DESC");
        if (!order.empty() && !field.descending && !sameName(order, u"ASC"))
            fail(u"the order of a field is ASC or DESC.");
    }

    TextView text_;
    TextView rest_;
};

}  // namespace

IndexDefinition parseIndexDefinition(TextView index, bool unique, bool primary) {
    IndexDefinition definition = IndexReader(index).read();
    definition.unique = unique || primary;
    definition.primary = primary;
    return definition;
}

}  // namespace tessary::server
