// LIKE. A pattern is read into steps once for all records of a statement. Only the last * is ever tried
// again, so that no pattern takes longer than its length times that of the text.

#include "server/sqlite/functions_support.h"

#include <sqlite3.h>

#include <algorithm>
#include <memory>
#include <utility>

namespace tessary::server::functions {

namespace {

struct Step {
    enum class Kind { character, anyCharacter, digit, anyText, set } kind;
    char16_t character = 0;                             // folded
    std::vector<std::pair<char16_t, char16_t>> ranges;  // of a set, first and last
    bool excluded = false;                              // the set is what must not stand there
};

char16_t foldedUnit(char16_t unit) {
    return folded(TextView(&unit, 1))[0];
}

// A range means its letters in either case.
bool isInRange(char16_t unit, const std::pair<char16_t, char16_t>& range) {
    if (unit >= range.first && unit <= range.second)
        return true;
    const char16_t low = foldedUnit(unit);
    return low >= foldedUnit(range.first) && low <= foldedUnit(range.second);
}

class Pattern {
public:
    explicit Pattern(Text text) : text_(std::move(text)) {
        for (std::size_t at = 0; at < text_.size();)
            at = read(at);
    }

    const Text& text() const { return text_; }

    bool matches(TextView text) const {
        std::size_t step = 0, at = 0;
        std::size_t star = steps_.size(), starAt = 0;
        while (at < text.size()) {
            if (step < steps_.size() && steps_[step].kind == Step::Kind::anyText) {
                star = step++;
                starAt = at;
            } else if (step < steps_.size() && fits(steps_[step], text[at])) {
                ++step;
                ++at;
            } else if (star < steps_.size()) {
                step = star + 1;
                at = ++starAt;
            } else {
                return false;
            }
        }
        while (step < steps_.size() && steps_[step].kind == Step::Kind::anyText)
            ++step;
        return step == steps_.size();
    }

private:
    std::size_t read(std::size_t at) {
        switch (text_[at]) {
            case u'*': steps_.push_back({Step::Kind::anyText, 0, {}}); return at + 1;
            case u'?': steps_.push_back({Step::Kind::anyCharacter, 0, {}}); return at + 1;
            case u'#': steps_.push_back({Step::Kind::digit, 0, {}}); return at + 1;
            case u'[': return readSet(at + 1);
            default: steps_.push_back({Step::Kind::character, foldedUnit(text_[at]), {}}); return at + 1;
        }
    }

    std::size_t readSet(std::size_t at) {
        const std::size_t end = text_.find(u']', at);
        if (end == Text::npos)
            raise(ErrorCode::syntax, u"LIKE: the pattern '" + text_ + u"' has a [ without its ].");
        // [] stands for nothing at all.
        if (end == at)
            return end + 1;
        Step step{Step::Kind::set, 0, {}};
        // A single [!] is the character itself.
        step.excluded = text_[at] == u'!' && end > at + 1;
        for (at += step.excluded ? 1 : 0; at < end; ++at) {
            const bool range = at + 2 < end && text_[at + 1] == u'-';
            const char16_t last = text_[range ? at + 2 : at];
            if (last < text_[at])
                raise(ErrorCode::syntax, u"LIKE: a range in the pattern '" + text_ + u"' runs backwards.");
            step.ranges.emplace_back(text_[at], last);
            at += range ? 2 : 0;
        }
        steps_.push_back(std::move(step));
        return end + 1;
    }

    static bool fits(const Step& step, char16_t unit) {
        switch (step.kind) {
            case Step::Kind::anyCharacter: return true;
            case Step::Kind::digit: return unit >= u'0' && unit <= u'9';
            case Step::Kind::set:
                return step.excluded != std::ranges::any_of(step.ranges, [&](const auto& range) {
                           return isInRange(unit, range);
                       });
            default: return step.character == unit || step.character == foldedUnit(unit);
        }
    }

    Text text_;
    std::vector<Step> steps_;
};

void like(sqlite3_context* context, int, sqlite3_value** given) {
    guarded(context, [&] {
        const Value text = valueOf(given[0]);
        const Value pattern = valueOf(given[1]);
        if (isNull(text) || isNull(pattern))
            return sqlite3_result_null(context);
        auto* known = static_cast<const Pattern*>(sqlite3_get_auxdata(context, 1));
        std::unique_ptr<const Pattern> made;
        Text patternText = textOf(pattern);
        if (!known || known->text() != patternText)
            made = std::make_unique<const Pattern>(std::move(patternText));
        sqlite3_result_int(context, (made ? *made : *known).matches(textOf(text)) ? 1 : 0);
        if (made)
            sqlite3_set_auxdata(context, 1, const_cast<Pattern*>(made.release()),
                                [](void* pointer) { delete static_cast<const Pattern*>(pointer); });
    });
}

}  // namespace

void registerLike(sqlite3* connection) {
    if (sqlite3_create_function_v2(connection, "ts_like", 2,
                                   SQLITE_UTF16 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS, nullptr, like,
                                   nullptr, nullptr, nullptr))
        throw std::bad_alloc();
}

}  // namespace tessary::server::functions
