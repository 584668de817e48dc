// The part of the editor interface that connects modules with LISP: definitions, arguments, results, calls.

#include <algorithm>
#include <cwctype>

#include "host/api/editor.h"
#include "host/documents/host.h"
#include "host/editor/value_conversion.h"

using drafthost::Document;
using drafthost::ModuleFunction;
using drafthost::theHost;
using drafthost::editor::ExternalCalls;
using drafthost::lisp::Value;

namespace {

bool isReadableName(const ACHAR* name) {
    const std::wstring text = name ? name : L"";
    return !text.empty() && std::none_of(text.begin(), text.end(), [](wchar_t c) {
        return std::iswspace(c) || std::wcschr(L"()'\".;", c) != nullptr;
    });
}

drafthost::lisp::Interpreter* currentInterpreter() {
    Document* const document = theHost().documents().current();
    return document ? &document->interpreter() : nullptr;
}

int setResult(Value value) {
    ExternalCalls::Call* const call = theHost().calls().running();
    if (!call)
        return RTERROR;
    call->result.set(value);
    return RTNORM;
}

// Sets what make(interpreter) answers as the result of the running call.
template <class Make>
int setMadeResult(Make make) {
    ExternalCalls::Call* const call = theHost().calls().running();
    return call ? setResult(make(call->interpreter)) : RTERROR;
}

// One value as a list of its own; null for nil.
resbuf* listOfValue(Value value) {
    if (value.isNil())
        return nullptr;
    return drafthost::editor::toValueList({&value, 1}).release();
}

// The first value of a list: a sub-list when it begins one.
Value firstValue(drafthost::lisp::Interpreter& interpreter, const resbuf* list) {
    if (!list)
        return {};
    if (list->restype != RTLB)
        return drafthost::editor::fromNode(interpreter, *list);
    const Value values = drafthost::editor::fromValueList(interpreter, list);
    return values.isPair() ? values.car() : Value();
}

// True when the list is one RTLB ... RTLE and nothing else.
bool isOneList(const resbuf* list) {
    int depth = 0;
    for (; list; list = list->rbnext) {
        if (list->restype == RTLB)
            ++depth;
        if (list->restype == RTLE && --depth == 0)
            return list->rbnext == nullptr;
        if (depth == 0)
            return false;
    }
    return false;
}

}  // namespace

int acedDefun(const ACHAR* name, short number) {
    Document* const document = theHost().documents().current();
    if (!document || !isReadableName(name))
        return RTERROR;
    ModuleFunction& function = document->moduleFunction(theHost().modules().running(), number);
    function.name = name;
    document->interpreter().defineExternal(name, number,
                                           [document, &function](drafthost::lisp::Interpreter& interpreter,
                                                                 drafthost::lisp::Arguments arguments) {
                                               return theHost().calls().call(*document, function, interpreter,
                                                                             arguments);
                                           });
    return RTNORM;
}

int acedUndef(const ACHAR* name, short) {
    Document* const document = theHost().documents().current();
    return document && name && document->interpreter().undefineExternal(name) ? RTNORM : RTERROR;
}

int acedRegFunc(int (*function)(), short number) {
    Document* const document = theHost().documents().current();
    if (!document || !function)
        return RTERROR;
    ModuleFunction* const known = document->findModuleFunction(theHost().modules().running(), number);
    if (!known)
        return RTERROR;
    known->function = function;
    return RTNORM;
}

int acedGetFunCode() {
    const ExternalCalls::Call* const call = theHost().calls().running();
    return call ? static_cast<int>(call->number) : static_cast<int>(RTERROR);
}

resbuf* acedGetArgs() {
    ExternalCalls::Call* const call = theHost().calls().running();
    if (!call || call->arguments.empty())
        return nullptr;
    resbuf* const list = drafthost::editor::toValueList(call->arguments.values()).release();
    call->argumentList = list;
    return list;
}

int acedRetNil() {
    return setResult({});
}
int acedRetT() {
    return setMadeResult([](auto& interpreter) { return interpreter.t(); });
}
int acedRetVoid() {
    return setMadeResult([](auto& interpreter) { return interpreter.nullSymbol(); });
}
int acedRetInt(int value) {
    return setResult(Value::integer(value));
}
int acedRetReal(double value) {
    return setResult(Value::real(value));
}
int acedRetStr(const ACHAR* text) {
    return setMadeResult([&](auto& interpreter) { return interpreter.string(text ? text : L""); });
}
int acedRetPoint(const ads_point point) {
    return setMadeResult([&](auto& interpreter) { return interpreter.point(point[0], point[1], point[2]); });
}

int acedRetName(const ads_name name, int type) {
    if (type != RTENAME && type != RTPICKS)
        return RTERROR;
    resbuf node = {};
    node.restype = static_cast<short>(type);
    ads_name_set(name, node.resval.rlname);
    return setMadeResult([&](auto& interpreter) {
        return ads_name_nil(name) ? Value() : drafthost::editor::fromNode(interpreter, node);
    });
}

int acedRetVal(const resbuf* value) {
    return setMadeResult([&](auto& interpreter) { return firstValue(interpreter, value); });
}

int acedRetList(const resbuf* list) {
    return setMadeResult([&](auto& interpreter) {
        return isOneList(list) ? firstValue(interpreter, list)
                               : drafthost::editor::fromValueList(interpreter, list);
    });
}

int acedInvoke(const resbuf* call, resbuf** result) {
    if (result)
        *result = nullptr;
    auto* const interpreter = currentInterpreter();
    if (!interpreter || !call || call->restype != RTSTR)
        return RTERROR;
    const Value function = interpreter->findFunction(call->resval.rstring);
    if (function.isNil())
        return RTERROR;
    std::vector<Value> arguments;
    const Value list = drafthost::editor::fromValueList(*interpreter, call->rbnext);
    for (Value argument : drafthost::lisp::elements(list))
        arguments.push_back(argument);
    const auto outcome = interpreter->protectedCall(function, arguments);
    if (!outcome.succeeded) {
        // What cannot be caught goes on where the caller returns to LISP.
        if (outcome.error && outcome.error->kind() == drafthost::lisp::ErrorKind::cancelled)
            interpreter->requestCancel();
        return RTERROR;
    }
    if (result)
        *result = listOfValue(outcome.value);
    return RTNORM;
}

int acedGetSym(const ACHAR* name, resbuf** value) {
    auto* const interpreter = currentInterpreter();
    if (!interpreter || !name || !value)
        return RTERROR;
    const Value found = interpreter->symbolValue(name);
    *value = drafthost::editor::toValueList({&found, 1}).release();
    return RTNORM;
}

int acedPutSym(const ACHAR* name, const resbuf* value) {
    auto* const interpreter = currentInterpreter();
    if (!interpreter || !isReadableName(name))
        return RTERROR;
    interpreter->setSymbolValue(name, firstValue(*interpreter, value));
    return RTNORM;
}
