#include "host/lisp/interpreter.h"

#include "host/lisp/compiler.h"
#include "host/lisp/functions.h"
#include "host/lisp/heap.h"
#include "host/lisp/language_functions.h"
#include "host/lisp/machine.h"
#include "host/lisp/printer.h"
#include "host/lisp/symbol_table.h"

#include <algorithm>
#include <numbers>
#include <stdexcept>
#include <utility>

namespace drafthost::lisp {

void UserFunctionObject::trace(Heap& heap) const {
    for (const Value constant : constants) {
        heap.mark(constant);
    }
    heap.mark(definition);
}

Interpreter::Interpreter(Console& console, const Limits& limits)
    : console_(console), ownFiles_(std::make_unique<FileAccess>()), files_(ownFiles_.get()), limits_(limits) {
    defineLanguage();
}

Interpreter::Interpreter(Console& console, FileAccess& files, const Limits& limits)
    : console_(console), files_(&files), limits_(limits) {
    defineLanguage();
}

Interpreter::~Interpreter() = default;

void Interpreter::defineLanguage() {
    heap_ = std::make_unique<Heap>(pollFlags_, collectFlag);
    symbols_ = std::make_unique<SymbolTable>();
    machine_ = std::make_unique<Machine>(*this, limits_);
    t_ = Value::symbol(symbols_->intern(L"T"));
    t_.asSymbol()->value = t_;
    nullSymbol_ = Value::symbol(symbols_->intern(L""));
    setSymbolValue(L"PI", Value::real(std::numbers::pi));
    const Value pause = string(L"\\");  // what `command` takes for the drafter's input
    setSymbolValue(L"PAUSE", pause);
    for (const SpecialForm& row : specialForms()) {
        builtins_.push_back(row.definition);
        Symbol* name = symbols_->intern(row.definition.name);
        auto* builtin = heap_->make<BuiltinObject>(0, row.definition, row.compile);
        name->value = Value::object(builtin);
        machine_->addBuiltin(name, builtin);
    }
    for (const auto table : {controlFunctions(), symbolFunctions(), listFunctions(), listAccessFunctions(),
                             listMappingFunctions(), numberFunctions(), comparisonFunctions(),
                             stringFunctions(), stringSearchFunctions(), conversionFunctions(),
                             printFunctions(), fileFunctions(), fileSystemFunctions(), geometryFunctions()}) {
        defineBuiltins(table);
    }
}

// --- making values -----------------------------------------------------------------------------------

Value Interpreter::cons(Value car, Value cdr) {
    return heap_->cons(car, cdr);
}

Value Interpreter::string(std::wstring text) {
    if (text.size() > limits_.stringLength) {
        throw LispError(L"string too long");
    }
    return heap_->makeString(std::move(text));
}

Value Interpreter::list(std::span<const Value> elements) {
    Value result;
    for (std::size_t index = elements.size(); index-- > 0;) {
        result = cons(elements[index], result);
    }
    return result;
}

Value Interpreter::point(double x, double y) {
    return list({Value::real(x), Value::real(y)});
}

Value Interpreter::point(double x, double y, double z) {
    return list({Value::real(x), Value::real(y), Value::real(z)});
}

Value Interpreter::entityName(std::uint64_t first, std::uint64_t second) {
    return Value::object(heap_->make<EntityNameObject>(0, EntityName{first, second}));
}

Value Interpreter::selectionSet(std::shared_ptr<SelectionSetBase> set) {
    return Value::object(heap_->make<SelectionSetObject>(0, std::move(set)));
}

Value Interpreter::caughtError(std::wstring message) {
    return Value::object(heap_->make<CaughtErrorObject>(0, std::move(message)));
}

Value Interpreter::symbol(std::wstring_view name) {
    Symbol* found = symbols_->intern(name);
    return found->name == L"NIL" ? Value() : Value::symbol(found);
}

// --- names and functions -----------------------------------------------------------------------------

void Interpreter::defineBuiltin(const wchar_t* name, BuiltinFunction function, int minimumArguments,
                                int maximumArguments, const wchar_t* documentation) {
    builtins_.push_back({name, function, minimumArguments, maximumArguments, documentation});
    Symbol* symbol = symbols_->intern(name);
    auto* builtin = heap_->make<BuiltinObject>(0, builtins_.back());
    symbol->value = Value::object(builtin);
    machine_->addBuiltin(symbol, builtin);
}

void Interpreter::defineBuiltins(std::span<const BuiltinDefinition> table) {
    for (const BuiltinDefinition& row : table) {
        defineBuiltin(row.name, row.function, row.minimumArguments, row.maximumArguments, row.documentation);
    }
}

void Interpreter::defineExternal(std::wstring_view name, int identifier, ExternalFunction function) {
    Symbol* symbol = symbols_->intern(name);
    symbol->value =
        Value::object(heap_->make<ExternalObject>(0, symbol->name, identifier, std::move(function)));
}

bool Interpreter::undefineExternal(std::wstring_view name) {
    Symbol* symbol = symbols_->find(name);
    if (!symbol || symbol->value.type() != Type::external) {
        return false;
    }
    symbol->value = Value();
    return true;
}

std::optional<int> Interpreter::externalIdentifier(Value function) const {
    if (function.type() != Type::external) {
        return std::nullopt;
    }
    return static_cast<const ExternalObject*>(function.asObject())->identifier;
}

std::vector<BuiltinDefinition> Interpreter::builtins() const {
    return builtins_;
}

Value Interpreter::symbolValue(std::wstring_view name) {
    const Symbol* symbol = symbols_->find(name);
    return symbol ? symbol->value : Value();
}

void Interpreter::setSymbolValue(std::wstring_view name, Value value) {
    symbols_->intern(name)->value = value;
}

Value Interpreter::findFunction(std::wstring_view name) {
    const Value value = symbolValue(name);
    if (value.isPair()) {
        const bool callable = value.car().isList() || value.car() == symbol(L"LAMBDA");
        return callable ? value : Value();
    }
    return value.isFunction() ? value : Value();
}

std::vector<std::wstring> Interpreter::boundNames() const {
    std::vector<std::wstring> names;
    for (const Symbol& symbol : symbols_->all()) {
        if (symbol.value && !symbol.name.empty()) {
            names.push_back(symbol.name);
        }
    }
    std::ranges::sort(names);
    return names;
}

// --- output ------------------------------------------------------------------------------------------

void Interpreter::print(std::wstring_view text) {
    if (!text.empty()) {
        console_.write(text);
    }
}

void Interpreter::freshLine() {
    if (!console_.atLineStart()) {
        print(L"\n");
    }
}

namespace {

std::wstring printed(Value value, PrintStyle style, std::size_t limit) {
    std::wstring text;
    if (!printValue(value, style, text, limit)) {
        throw LispError(L"string too long");
    }
    return text;
}

}  // namespace

std::wstring Interpreter::prin1ToString(Value value) {
    return printed(value, PrintStyle::readable, limits_.stringLength);
}

std::wstring Interpreter::princToString(Value value) {
    return printed(value, PrintStyle::plain, limits_.stringLength);
}

// --- surroundings ------------------------------------------------------------------------------------

void Interpreter::setVariableReader(std::function<std::optional<int>(std::wstring_view name)> reader) {
    variableReader_ = std::move(reader);
}

int Interpreter::integerVariable(std::wstring_view name, int fallback) const {
    return variableReader_ ? variableReader_(name).value_or(fallback) : fallback;
}

void* Interpreter::findAttached(std::type_index type) const {
    const auto found = attached_.find(type);
    if (found == attached_.end()) {
        throw std::logic_error(std::string("no state attached of class ") + type.name());
    }
    return found->second;
}

// --- memory ------------------------------------------------------------------------------------------

AllocationStatistics Interpreter::statistics() const {
    return heap_->statistics();
}

void Interpreter::collect() {
    const auto markRoots = [this] {
        for (const Symbol& symbol : symbols_->all()) {
            heap_->mark(symbol.value);
        }
        for (const Root* root = roots_; root; root = root->next()) {
            heap_->mark(root->get());
        }
        machine_->markRoots(*heap_);
    };
    heap_->collect(markRoots, [this] { machine_->markCompiledLists(*heap_); });
}

void Interpreter::setCollectAtEverySafePoint(bool everySafePoint) {
    collectAtEverySafePoint_ = everySafePoint;
    if (everySafePoint) {
        pollFlags_.fetch_or(collectFlag, std::memory_order_relaxed);
    }
}

}  // namespace drafthost::lisp
