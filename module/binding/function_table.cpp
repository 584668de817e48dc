#include "module/binding/function_table.h"

#include "host/api/editor.h"
#include "module/binding/thunk.h"

namespace tessary {

namespace {

void registerFunctions(std::span<const FunctionEntry> functions, short base) {
    short number = base;
    for (const FunctionEntry& function : functions) {
        acedDefun(function.name, number);
        acedRegFunc(function.thunk, number);
        ++number;
    }
}

const wchar_t* nameOf(int number) {
    const int drawingNumber = number - drawingFunctionBase();
    const std::span<const FunctionEntry> table = drawingNumber < 0 ? databaseFunctions() : drawingFunctions();
    return table[static_cast<std::size_t>(drawingNumber < 0 ? number : drawingNumber)].name;
}

}  // namespace

short databaseFunctionBase() {
    return 0;
}

short drawingFunctionBase() {
    return static_cast<short>(databaseFunctionBase() + databaseFunctions().size());
}

void registerDatabaseFunctions() {
    registerFunctions(databaseFunctions(), databaseFunctionBase());
}

void registerDrawingFunctions() {
    registerFunctions(drawingFunctions(), drawingFunctionBase());
}

int unavailableThunk() {
    acutPrintf(L"\n%s is not part of this version yet.", nameOf(acedGetFunCode()));
    return RSERR;
}

}  // namespace tessary
