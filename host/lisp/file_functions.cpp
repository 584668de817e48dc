// Text files: open, close and reading. Writing is in print_functions.cpp.

#include "host/lisp/file_object.h"
#include "host/lisp/heap.h"
#include "host/lisp/language_functions.h"

#include <optional>
#include <string>

namespace drafthost::lisp {

namespace {

std::optional<OpenMode> modeOf(const std::wstring& text) {
    static constexpr std::pair<wchar_t, OpenMode> modes[] = {
        {L'r', OpenMode::read}, {L'w', OpenMode::write}, {L'a', OpenMode::append}};
    for (const auto& [letter, mode] : modes) {
        if (!text.empty() && (text[0] | 0x20) == letter) {
            return mode;
        }
    }
    return std::nullopt;
}

// A third argument names an encoding; text is UTF-8 here whatever it says.
Value open(Interpreter& interpreter, Arguments arguments) {
    const std::optional<OpenMode> mode = modeOf(arguments.string(1));
    if (!mode) {
        raiseBadArgumentValue(L"file mode", arguments[1]);
    }
    auto stream = interpreter.files().open(arguments.string(0), *mode);
    if (!stream) {
        return Value();
    }
    return Value::object(interpreter.heap().make<FileObject>(0, arguments.string(0), std::move(stream)));
}

TextStream& openStream(Arguments arguments, std::size_t index) {
    FileObject& file = arguments.file(index);
    if (!file.stream) {
        raiseBadArgumentType(L"streamp", arguments[index]);
    }
    return *file.stream;
}

Value close(Interpreter&, Arguments arguments) {
    openStream(arguments, 0);
    arguments.file(0).stream.reset();
    return Value();
}

Value readLine(Interpreter& interpreter, Arguments arguments) {
    if (!arguments.has(0)) {
        return Value();
    }
    const auto line = openStream(arguments, 0).readLine();
    return line ? interpreter.string(*line) : Value();
}

Value readCharacter(Interpreter&, Arguments arguments) {
    if (!arguments.has(0)) {
        return Value();
    }
    const auto character = openStream(arguments, 0).readCharacter();
    return character ? Value::integer(static_cast<std::int32_t>(*character)) : Value();
}

constexpr BuiltinDefinition table[] = {
    {L"close", close, 1, 1, L"(close file) -> nil; closes an open file"},
    {L"open", open, 2, 3, L"(open name mode) -> file or nil; mode is \"r\", \"w\" or \"a\""},
    {L"read-char", readCharacter, 0, 1, L"(read-char [file]) -> code of the next character or nil"},
    {L"read-line", readLine, 0, 1, L"(read-line [file]) -> next line or nil"},
};

}  // namespace

std::span<const BuiltinDefinition> fileFunctions() {
    return table;
}

}  // namespace drafthost::lisp
