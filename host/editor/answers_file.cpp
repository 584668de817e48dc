#include "host/editor/answers_file.h"

#include <algorithm>
#include <cwctype>
#include <numbers>
#include <optional>
#include <sstream>

#include "host/editor/key_names.h"

namespace drafthost::editor {

namespace {

using Kind = Answer::Kind;

// One line behind its action's name: takes words from the front.
class Words {
public:
    explicit Words(std::wstring_view rest) : rest_(rest) { skipBlanks(); }

    bool empty() const { return rest_.empty(); }
    std::wstring all() {
        std::wstring text(rest_);
        while (!text.empty() && std::iswspace(text.back()))
            text.pop_back();
        rest_ = {};
        return text;
    }
    std::wstring word() {
        const auto end =
            std::find_if(rest_.begin(), rest_.end(), [](wchar_t c) { return std::iswspace(c) != 0; });
        std::wstring text(rest_.begin(), end);
        rest_.remove_prefix(text.size());
        skipBlanks();
        return text;
    }
    std::optional<double> real() {
        const std::wstring text = word();
        wchar_t* end = nullptr;
        const double value = std::wcstod(text.c_str(), &end);
        if (text.empty() || *end != 0 || !std::isfinite(value))
            return std::nullopt;
        return value;
    }
    std::optional<int> integer() {
        const std::wstring text = word();
        wchar_t* end = nullptr;
        errno = 0;
        const long value = std::wcstol(text.c_str(), &end, 10);
        if (text.empty() || *end != 0 || errno != 0)
            return std::nullopt;
        return static_cast<int>(value);
    }
    // "#123"
    std::optional<int> control() {
        if (rest_.size() < 2 || rest_.front() != L'#')
            return std::nullopt;
        rest_.remove_prefix(1);
        return integer();
    }

private:
    void skipBlanks() {
        while (!rest_.empty() && std::iswspace(rest_.front()))
            rest_.remove_prefix(1);
    }
    std::wstring_view rest_;
};

bool readPoint(Words& words, AcGePoint3d& point) {
    const auto x = words.real();
    const auto y = words.real();
    if (!x || !y)
        return false;
    point = {*x, *y, 0};
    return true;
}

bool readPoint2(Words& words, Answer& answer) {
    answer.dimension = 2;
    return readPoint(words, answer.point);
}

bool readPoint3(Words& words, Answer& answer) {
    if (!readPoint2(words, answer))
        return false;
    if (words.empty())
        return true;
    const auto z = words.real();
    if (!z)
        return false;
    answer.point.z = *z;
    answer.dimension = 3;
    return true;
}

bool readCorners(Words& words, Answer& answer) {
    return readPoint(words, answer.point) && readPoint(words, answer.second);
}

bool readAngle(Words& words, Answer& answer) {
    const auto degrees = words.real();
    answer.number = degrees.value_or(0) * std::numbers::pi / 180;
    return degrees.has_value();
}

bool readReal(Words& words, Answer& answer) {
    const auto value = words.real();
    answer.number = value.value_or(0);
    return value.has_value();
}

bool readInteger(Words& words, Answer& answer) {
    const auto value = words.integer();
    answer.integer = value.value_or(0);
    return value.has_value();
}

bool readText(Words& words, Answer& answer) {
    answer.text = words.all();
    return true;
}

bool readKeyword(Words& words, Answer& answer) {
    answer.text = words.all();
    return !answer.text.empty();
}

bool readNothing(Words&, Answer&) {
    return true;
}

bool readControl(Words& words, Answer& answer) {
    const auto control = words.control();
    answer.control = control.value_or(0);
    return control.has_value();
}

bool readControlOrNothing(Words& words, Answer& answer) {
    return words.empty() || readControl(words, answer);
}

bool readButton(Words& words, Answer& answer) {
    if (readControl(words, answer))
        return true;
    answer.text = words.all();
    return !answer.text.empty() && answer.text[0] != L'#';
}

bool readControlText(Words& words, Answer& answer) {
    return readControl(words, answer) && readText(words, answer);
}

bool readCheck(Words& words, Answer& answer) {
    if (!readControl(words, answer))
        return false;
    const std::wstring state = words.word();
    answer.on = state == L"on";
    return answer.on || state == L"off";
}

bool readRow(Words& words, Answer& answer) {
    if (!readControl(words, answer))
        return false;
    const auto row = words.integer();
    answer.row = row.value_or(0);
    return row.has_value();
}

bool readCell(Words& words, Answer& answer) {
    if (!readRow(words, answer))
        return false;
    const auto column = words.integer();
    answer.column = column.value_or(0);
    return column.has_value() && readText(words, answer);
}

bool readDoubleClick(Words& words, Answer& answer) {
    return readCell(words, answer) && answer.text.empty();
}

bool readKey(Words& words, Answer& answer) {
    answer.text = words.word();
    return parseKey(answer.text).has_value();
}

bool readSize(Words& words, Answer& answer) {
    const auto width = words.integer();
    const auto height = words.integer();
    answer.width = width.value_or(0);
    answer.height = height.value_or(0);
    return answer.width > 0 && answer.height > 0;
}

struct Action {
    const wchar_t* name;
    Kind kind;
    bool (*read)(Words& words, Answer& answer);
    const wchar_t* usage;
};
constexpr Action kActions[] = {
    {L"point", Kind::Point, readPoint3, L"point X Y [Z]"},
    {L"move", Kind::Move, readPoint2, L"move X Y"},
    {L"angle", Kind::Angle, readAngle, L"angle DEGREES"},
    {L"real", Kind::Real, readReal, L"real NUMBER"},
    {L"int", Kind::Integer, readInteger, L"int NUMBER"},
    {L"string", Kind::Text, readText, L"string TEXT"},
    {L"pick", Kind::Pick, readPoint2, L"pick X Y"},
    {L"keyword", Kind::Keyword, readKeyword, L"keyword NAME"},
    {L"enter", Kind::Enter, readNothing, L"enter"},
    {L"cancel", Kind::Cancel, readNothing, L"cancel"},
    {L"window", Kind::Window, readCorners, L"window X1 Y1 X2 Y2"},
    {L"crossing", Kind::Crossing, readCorners, L"crossing X1 Y1 X2 Y2"},
    {L"add", Kind::Add, readPoint2, L"add X Y"},
    {L"all", Kind::All, readNothing, L"all"},
    {L"done", Kind::Done, readNothing, L"done"},
    {L"press", Kind::Press, readButton, L"press TEXT or press #ID"},
    {L"type", Kind::Type, readControlText, L"type #ID TEXT"},
    {L"check", Kind::Check, readCheck, L"check #ID on or check #ID off"},
    {L"choose", Kind::Choose, readControlText, L"choose #ID TEXT"},
    {L"row", Kind::GridRow, readRow, L"row #ID ROW"},
    {L"cell", Kind::GridCell, readCell, L"cell #ID ROW COLUMN TEXT"},
    {L"double", Kind::GridDoubleClick, readDoubleClick, L"double #ID ROW COLUMN"},
    {L"key", Kind::Key, readKey, L"key NAME, a key like Tab or Control+Left"},
    {L"screenshot", Kind::Screenshot, readKeyword, L"screenshot FILE"},
    {L"show", Kind::Show, readControlOrNothing, L"show #ID, or show"},
    {L"resize", Kind::Resize, readSize, L"resize WIDTH HEIGHT"},
};

// The action's name as written; empty for answers that did not come from a file.
const Action* actionOf(Kind kind) {
    const auto found = std::find_if(std::begin(kActions), std::end(kActions),
                                    [&](const Action& action) { return action.kind == kind; });
    return found == std::end(kActions) ? nullptr : found;
}

}  // namespace

std::wstring parseAction(std::wstring_view line, Answer& answer) {
    Words words(line);
    const std::wstring name = words.word();
    const auto action = std::find_if(std::begin(kActions), std::end(kActions),
                                     [&](const Action& row) { return name == row.name; });
    if (action == std::end(kActions))
        return L"there is no action \"" + name + L"\"";
    answer.kind = action->kind;
    if (!action->read(words, answer) || !words.empty())
        return std::wstring(L"the action is written: ") + action->usage;
    return {};
}

std::vector<Answer> parseAnswers(std::wstring_view text, const std::wstring& name,
                                 AnswersFileError& problem) {
    std::vector<Answer> actions;
    if (text.starts_with(L'\xFEFF'))
        text.remove_prefix(1);
    std::wistringstream lines{std::wstring(text)};
    int number = 0;
    for (std::wstring line; std::getline(lines, line);) {
        ++number;
        const std::size_t first = line.find_first_not_of(L" \t\r");
        if (first == std::wstring::npos || line[first] == L'#')
            continue;
        Answer answer;
        answer.origin = name + L" line " + std::to_wstring(number);
        const std::wstring complaint = parseAction(line, answer);
        if (!complaint.empty()) {
            problem = {number, complaint};
            return actions;
        }
        actions.push_back(std::move(answer));
    }
    return actions;
}

ScriptedDrafter::ScriptedDrafter(std::vector<Answer> actions, std::wstring name,
                                 std::function<void(const std::wstring&)> warn,
                                 std::function<void(const std::wstring&)> fail)
    : actions_(std::move(actions)), name_(std::move(name)), warn_(std::move(warn)), fail_(std::move(fail)) {}

Answer ScriptedDrafter::take(const std::wstring& waitedFor) {
    if (position_ < actions_.size())
        return actions_[position_++];
    if (!warned_)
        warn_(name_ + L" is used up: the host waits for " + waitedFor +
              (dialogWaits_ ? L", which is cancelled" : L" and gets an empty response"));
    warned_ = true;
    return Answer::of(Kind::Exhausted);
}

Answer ScriptedDrafter::next(const InputRequest& request) {
    dialogWaits_ = false;
    return take(describe(request));
}

Answer ScriptedDrafter::nextForBox(const BoxRequest& box) {
    dialogWaits_ = true;
    return take(L"the dialog \"" + box.caption + L"\"");
}

bool ScriptedDrafter::refuse(const Answer& answer, const std::wstring& waitedFor,
                             const std::wstring& complaint) {
    const Action* action = actionOf(answer.kind);
    std::wstring message = answer.origin + L": ";
    message += action ? L"the action \"" + std::wstring(action->name) + L"\"" : L"the answer";
    message += isForDialog(answer.kind) && !dialogWaits_
                   ? L" needs a dialog, and no dialog is waiting: the host waits for "
                   : L" does not fit: the host waits for ";
    message += waitedFor;
    if (!complaint.empty())
        message += L" (" + complaint + L")";
    fail_(message);
    return false;
}

}  // namespace drafthost::editor
