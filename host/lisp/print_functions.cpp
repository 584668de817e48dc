// Printing to the console or an open file.

#include "host/lisp/file_object.h"
#include "host/lisp/language_functions.h"

#include <string>

namespace drafthost::lisp {

namespace {

// To the file given as argument `index`, or to the console.
void put(Interpreter& interpreter, Arguments arguments, std::size_t index, const std::wstring& text) {
    if (!arguments.has(index)) {
        interpreter.print(text);
        return;
    }
    FileObject& file = arguments.file(index);
    if (!file.stream) {
        raiseBadArgumentType(L"streamp", arguments[index]);
    }
    if (!file.stream->write(text)) {
        throw LispError(L"cannot write to file: " + interpreter.prin1ToString(interpreter.string(file.name)));
    }
}

// (princ) answers the symbol without a name, so that a program can end without printing a value.
Value plain(Interpreter& interpreter, Arguments arguments) {
    if (arguments.empty()) {
        return interpreter.nullSymbol();
    }
    put(interpreter, arguments, 1, interpreter.princToString(arguments[0]));
    return arguments[0];
}

Value readable(Interpreter& interpreter, Arguments arguments) {
    if (arguments.empty()) {
        return interpreter.nullSymbol();
    }
    put(interpreter, arguments, 1, interpreter.prin1ToString(arguments[0]));
    return arguments[0];
}

Value onNewLine(Interpreter& interpreter, Arguments arguments) {
    if (arguments.empty()) {
        return interpreter.nullSymbol();
    }
    put(interpreter, arguments, 1, L"\n" + interpreter.prin1ToString(arguments[0]) + L" ");
    return arguments[0];
}

Value prompt(Interpreter& interpreter, Arguments arguments) {
    interpreter.print(arguments.string(0));
    return Value();
}

Value newLine(Interpreter& interpreter, Arguments) {
    interpreter.print(L"\n");
    return Value();
}

Value writeLine(Interpreter& interpreter, Arguments arguments) {
    put(interpreter, arguments, 1, arguments.string(0) + L"\n");
    return arguments[0];
}

Value writeCharacter(Interpreter& interpreter, Arguments arguments) {
    const std::int32_t code = arguments.integer(0);
    if (code < 0 || code > 0xFFFF) {
        raiseBadArgumentValue(L"character code", arguments[0]);
    }
    put(interpreter, arguments, 1, std::wstring(1, static_cast<wchar_t>(code)));
    return arguments[0];
}

Value plainToString(Interpreter& interpreter, Arguments arguments) {
    return interpreter.string(interpreter.princToString(arguments[0]));
}

Value readableToString(Interpreter& interpreter, Arguments arguments) {
    return interpreter.string(interpreter.prin1ToString(arguments[0]));
}

constexpr BuiltinDefinition table[] = {
    {L"prin1", readable, 0, 2, L"(prin1 [value [file]]) -> value; prints it so that it can be read again"},
    {L"princ", plain, 0, 2, L"(princ [value [file]]) -> value; prints it, strings without quotes"},
    {L"print", onNewLine, 0, 2, L"(print [value [file]]) -> value; prin1 between a new line and a space"},
    {L"prompt", prompt, 1, 1, L"(prompt text) -> nil; prints the text"},
    {L"terpri", newLine, 0, 0, L"(terpri) -> nil; ends the line"},
    {L"vl-prin1-to-string", readableToString, 1, 1, L"(vl-prin1-to-string value) -> what prin1 prints"},
    {L"vl-princ-to-string", plainToString, 1, 1, L"(vl-princ-to-string value) -> what princ prints"},
    {L"write-char", writeCharacter, 1, 2, L"(write-char code [file]) -> code; prints one character"},
    {L"write-line", writeLine, 1, 2, L"(write-line text [file]) -> text; prints it as a line"},
};

}  // namespace

std::span<const BuiltinDefinition> printFunctions() {
    return table;
}

}  // namespace drafthost::lisp
