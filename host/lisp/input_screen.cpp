// What concerns the screen: the host draws no view, so most of this only answers as programs expect.

#include "host/api/editor.h"
#include "host/documents/host.h"
#include "host/lisp/drawing_functions.h"

namespace drafthost::lisp {

namespace {

Value nothing(Interpreter&, Arguments) {
    return {};
}
Value firstArgument(Interpreter&, Arguments arguments) {
    return arguments[0];
}

Value alert(Interpreter&, Arguments arguments) {
    acedAlert(arguments.string(0).c_str());
    return {};
}

// Starting other programs is refused: a drawing's program must not run anything on the drafter's machine
// unseen.
Value startapp(Interpreter&, Arguments arguments) {
    theHost().warn(L"startapp \"" + arguments.string(0) + L"\" was refused");
    return {};
}

constexpr BuiltinDefinition kTable[] = {
    {L"alert", alert, 1, 1, L"(alert text) -> nil; shows a message box"},
    {L"startapp", startapp, 1, 2, L"(startapp program [file]) -> nil: this host starts no programs"},
    {L"textscr", nothing, 0, 0, L"(textscr) -> nil"},
    {L"graphscr", nothing, 0, 0, L"(graphscr) -> nil"},
    {L"textpage", nothing, 0, 0, L"(textpage) -> nil"},
    {L"redraw", nothing, 0, 2, L"(redraw [name [mode]]) -> nil"},
    {L"grclear", nothing, 0, 0, L"(grclear) -> nil"},
    {L"grdraw", nothing, 3, 4, L"(grdraw from to color [highlight]) -> nil"},
    {L"grvecs", nothing, 1, 2, L"(grvecs vectors [matrix]) -> nil"},
    {L"grtext", nothing, 0, 3, L"(grtext [box text [highlight]]) -> nil"},
    {L"menucmd", nothing, 1, 1, L"(menucmd text) -> nil: there are no menus"},
    {L"setfunhelp", firstArgument, 1, 4, L"(setfunhelp name [file [topic [command]]]) -> name"},
};

}  // namespace

std::span<const BuiltinDefinition> inputScreenFunctions() {
    return kTable;
}

}  // namespace drafthost::lisp
