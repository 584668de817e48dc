// Running the host's commands from programs.

#include "host/documents/document.h"
#include "host/editor/commands.h"
#include "host/editor/value_conversion.h"
#include "host/lisp/drawing_functions.h"

namespace drafthost::lisp {

namespace {

using editor::Answer;
using editor::CommandWord;

// Text at which a program hands over to the drafter for one answer.
constexpr const wchar_t* kPause = L"\\";

CommandWord wordOf(Value value) {
    CommandWord word;
    if (value.isNil()) {
        word.answer = Answer::of(Answer::Kind::Cancel);
    } else if (value.isString() && value.asString() == kPause) {
        word.pause = true;
    } else if (auto answer = editor::answerFromValue(value)) {
        word.answer = std::move(*answer);
        const bool empty = word.answer.kind == Answer::Kind::Typed && word.answer.text.empty();
        if (empty)
            word.answer.kind = Answer::Kind::Enter;
    } else {
        raiseBadArgumentType(L"command argument:", value);
    }
    return word;
}

bool runWords(Interpreter& interpreter, Arguments arguments) {
    editor::CommandRunner& commands = interpreter.attached<Document>().commands();
    if (commands.busy())
        throw LispError(L"a command is waiting for an answer");
    if (arguments.empty()) {
        commands.cancel();
        return true;
    }
    std::vector<CommandWord> words;
    for (Value value : arguments)
        words.push_back(wordOf(value));
    const bool known = commands.feed(std::move(words));
    interpreter.pollCancel();
    return known;
}

Value command(Interpreter& interpreter, Arguments arguments) {
    runWords(interpreter, arguments);
    return {};
}

Value vlCmdf(Interpreter& interpreter, Arguments arguments) {
    return interpreter.boolean(runWords(interpreter, arguments));
}

// The whole command at once: what is unfinished is cancelled.
Value commandS(Interpreter& interpreter, Arguments arguments) {
    const bool known = runWords(interpreter, arguments);
    editor::CommandRunner& commands = interpreter.attached<Document>().commands();
    const bool unfinished = commands.active();
    commands.cancel();
    if (!known || unfinished)
        throw LispError(L"invalid command-s");
    return {};
}

constexpr BuiltinDefinition kTable[] = {
    {L"command", command, 0, anyNumber,
     L"(command [word ...]) -> nil; \"\" is Return, \"\\\\\" lets the drafter answer"},
    {L"vl-cmdf", vlCmdf, 0, anyNumber, L"(vl-cmdf [word ...]) -> T, or nil for an unknown command"},
    {L"command-s", commandS, 1, anyNumber,
     L"(command-s word ...) -> nil; the command must end with the words"},
};

}  // namespace

std::span<const BuiltinDefinition> inputCommandFunctions() {
    return kTable;
}

}  // namespace drafthost::lisp
