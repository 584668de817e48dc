#pragma once

// The data of AutoLISP: one 8-byte word per value.
//
// A Value is either a double stored as it is, or a word in the range of negative quiet NaNs whose
// upper 16 bits say what the lower 48 hold: a 32-bit integer, or the address of a pair, symbol,
// string or other heap object. Integers, reals and nil therefore never allocate, and copying a value
// is copying a word. What a word points to belongs to the interpreter that made it (heap.h) and
// lives as long as the garbage collector can reach it; see Root in interpreter.h.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

namespace drafthost::lisp {

class Heap;
class Interpreter;
struct Pair;
struct Symbol;
struct Object;
struct StringObject;

// What the function `type` distinguishes. `nothing` is nil, for which `type` answers nil.
enum class Type : std::uint8_t {
    nothing,
    integer,
    real,
    symbol,
    list,
    string,
    builtin,       // SUBR: a function of the language or the host
    external,      // EXRXSUBR: a function of a loaded add-in
    userFunction,  // USUBR: made by defun or lambda
    entityName,
    selectionSet,
    file,
    caughtError,  // what vl-catch-all-apply answers when the call failed
};

class Value {
public:
    // nil
    constexpr Value() = default;

    static constexpr Value integer(std::int32_t number) {
        return Value(integerTag | static_cast<std::uint32_t>(number));
    }
    static Value real(double number) { return number == number ? Value(bitsOf(number)) : Value(notANumber); }
    static Value pair(Pair* pair) { return Value(pairTag | addressOf(pair)); }
    static Value symbol(Symbol* symbol) { return Value(symbolTag | addressOf(symbol)); }
    static Value string(StringObject* string) { return Value(stringTag | addressOf(string)); }
    static Value object(Object* object) { return Value(objectTag | addressOf(object)); }

    bool isNil() const { return bits_ == nilBits; }
    explicit operator bool() const { return bits_ != nilBits; }
    bool isInteger() const { return (bits_ & tagMask) == integerTag; }
    bool isReal() const { return bits_ < integerTag; }
    bool isNumber() const { return bits_ < pairTag; }
    bool isPair() const { return (bits_ & tagMask) == pairTag; }
    // nil or a pair; the end of the list is not looked at
    bool isList() const { return isNil() || isPair(); }
    // a symbol other than nil
    bool isSymbol() const { return (bits_ & tagMask) == symbolTag; }
    bool isString() const { return (bits_ & tagMask) == stringTag; }
    // a heap object that is neither pair, symbol nor string
    bool isObject() const { return (bits_ & tagMask) == objectTag; }
    bool isFunction() const;
    bool isEntityName() const { return type() == Type::entityName; }
    bool isSelectionSet() const { return type() == Type::selectionSet; }
    bool isFile() const { return type() == Type::file; }
    bool isCaughtError() const { return type() == Type::caughtError; }
    Type type() const;

    // The accessors below do not check: ask the type first, or take arguments through Arguments.
    std::int32_t asInteger() const { return static_cast<std::int32_t>(bits_); }
    double asReal() const {
        double number;
        std::memcpy(&number, &bits_, sizeof number);
        return number;
    }
    // an integer or real as a double
    double asNumber() const { return isInteger() ? asInteger() : asReal(); }
    Pair* asPair() const { return static_cast<Pair*>(pointer()); }
    Symbol* asSymbol() const { return static_cast<Symbol*>(pointer()); }
    StringObject* asStringObject() const { return static_cast<StringObject*>(pointer()); }
    Object* asObject() const { return static_cast<Object*>(pointer()); }
    // stays valid while the value is reachable; strings never change
    const std::wstring& asString() const;
    inline Value car() const;
    inline Value cdr() const;

    // the identity of the word: same symbol, same integer, same object (not the `eq` of the
    // language, which also compares entity names by content)
    friend bool operator==(Value, Value) = default;
    std::uint64_t bits() const { return bits_; }
    static Value fromBits(std::uint64_t bits) { return Value(bits); }
    void* pointer() const {
        return reinterpret_cast<void*>(static_cast<std::uintptr_t>(bits_ & payloadMask));
    }

private:
    // 0xFFF8... is the NaN the processor itself makes, so tags begin behind it
    static constexpr std::uint64_t integerTag = 0xFFF9'0000'0000'0000;
    static constexpr std::uint64_t pairTag = 0xFFFA'0000'0000'0000;
    static constexpr std::uint64_t symbolTag = 0xFFFB'0000'0000'0000;
    static constexpr std::uint64_t stringTag = 0xFFFC'0000'0000'0000;
    static constexpr std::uint64_t objectTag = 0xFFFD'0000'0000'0000;
    static constexpr std::uint64_t nilBits = 0xFFFE'0000'0000'0000;
    static constexpr std::uint64_t tagMask = 0xFFFF'0000'0000'0000;
    static constexpr std::uint64_t payloadMask = 0x0000'FFFF'FFFF'FFFF;
    static constexpr std::uint64_t notANumber = 0x7FF8'0000'0000'0000;

    explicit constexpr Value(std::uint64_t bits) : bits_(bits) {}

    static std::uint64_t bitsOf(double number) {
        std::uint64_t bits;
        std::memcpy(&bits, &number, sizeof bits);
        return bits;
    }
    static std::uint64_t addressOf(const void* address) {
        return static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(address));
    }

    std::uint64_t bits_ = nilBits;
};
static_assert(sizeof(Value) == 8);

// A list node or dotted pair. Programs cannot change a pair, so lists are never circular.
struct Pair {
    Value car;
    Value cdr;
};

// An interned name with its one value. Local variables shadow by swapping `value` in and out, so
// reading a variable is one load. Symbols live as long as their interpreter.
struct Symbol {
    Value value;
    std::wstring name;  // upper case; empty only for the symbol that prints as nothing
};

// Base of everything on the heap except pairs and symbols.
struct Object {
    Type type;
    bool marked = false;  // of the collector

    explicit Object(Type kind) : type(kind) {}
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    virtual ~Object() = default;
    // Marks the values this object holds (Heap::mark), during a collection.
    virtual void trace(Heap&) const {}
};

struct StringObject final : Object {
    std::wstring text;

    explicit StringObject(std::wstring content) : Object(Type::string), text(std::move(content)) {}
};

// What the host's entity names carry: two words with a meaning of the host's own. Two entity names
// are eq when both words are equal.
struct EntityName {
    std::uint64_t first = 0;
    std::uint64_t second = 0;

    friend bool operator==(const EntityName&, const EntityName&) = default;
};

struct EntityNameObject final : Object {
    EntityName name;

    explicit EntityNameObject(EntityName words) : Object(Type::entityName), name(words) {}
};

// The host derives its selection sets from this; the last reference frees the set.
class SelectionSetBase {
public:
    virtual ~SelectionSetBase() = default;
    // shown when the set is printed: <Selection set: 1f> (hexadecimal)
    virtual int number() const = 0;
};

struct SelectionSetObject final : Object {
    std::shared_ptr<SelectionSetBase> set;

    explicit SelectionSetObject(std::shared_ptr<SelectionSetBase> members)
        : Object(Type::selectionSet), set(std::move(members)) {}
};

struct CaughtErrorObject final : Object {
    std::wstring message;

    explicit CaughtErrorObject(std::wstring text) : Object(Type::caughtError), message(std::move(text)) {}
};

inline Value Value::car() const {
    return asPair()->car;
}

inline Value Value::cdr() const {
    return asPair()->cdr;
}

inline const std::wstring& Value::asString() const {
    return asStringObject()->text;
}

inline bool Value::isFunction() const {
    if (!isObject()) {
        return false;
    }
    const Type kind = asObject()->type;
    return kind == Type::builtin || kind == Type::external || kind == Type::userFunction;
}

// Iterates over the elements of a list; stops at the first tail that is not a pair.
//     for (Value element : elements(list)) ...
class ListIterator {
public:
    explicit ListIterator(Value rest) : rest_(rest) {}
    Value operator*() const { return rest_.car(); }
    ListIterator& operator++() {
        rest_ = rest_.cdr();
        return *this;
    }
    // the tail still to come, ending with what the list ends with
    Value rest() const { return rest_; }
    friend bool operator==(const ListIterator& left, std::nullptr_t) { return !left.rest_.isPair(); }

private:
    Value rest_;
};

struct ListRange {
    Value list;
    ListIterator begin() const { return ListIterator(list); }
    std::nullptr_t end() const { return nullptr; }
};

inline ListRange elements(Value list) {
    return ListRange{list};
}

// Number of pairs along the list; a dotted tail is not counted.
std::size_t lengthOf(Value list);

// `eq`: same word, same real or same entity name.
bool isEq(Value left, Value right);

// `equal`: same structure; numbers may differ by up to fuzz (0: must be the same number; 1 equals 1.0).
// Structures that share parts can take very long to compare: with an interpreter the comparison ends
// when a cancel is requested.
bool isEqual(Value left, Value right, double fuzz = 0.0, Interpreter* pollCancel = nullptr);

// `INT`, `REAL`, `STR`...; empty for nil.
std::wstring_view typeName(Type type);

}  // namespace drafthost::lisp
