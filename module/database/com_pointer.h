#pragma once

// Ownership of COM objects and of the texts that travel between them.

#include "module/binding/variant.h"

#include <windows.h>

#include <oleauto.h>
#include <unknwn.h>

#include <cstddef>
#include <new>
#include <string>
#include <utility>

namespace tessary {

// One reference to an object, released with this pointer; null for none.
template <class Interface>
class ComPointer {
public:
    ComPointer() = default;
    ComPointer(std::nullptr_t) {}
    // Takes a reference of its own.
    explicit ComPointer(Interface* object) : object_(object) {
        if (object_) {
            object_->AddRef();
        }
    }
    ComPointer(const ComPointer& other) : ComPointer(other.object_) {}
    ComPointer(ComPointer&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    ComPointer& operator=(ComPointer other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~ComPointer() { reset(); }

    Interface* get() const { return object_; }
    Interface* operator->() const { return object_; }
    Interface& operator*() const { return *object_; }
    explicit operator bool() const { return object_ != nullptr; }

    void reset() {
        if (Interface* const released = std::exchange(object_, nullptr)) {
            released->Release();
        }
    }
    // The place for a reference that a callee hands over.
    Interface** receive() {
        reset();
        return &object_;
    }

private:
    Interface* object_ = nullptr;
};

// Whether both stand for one object, which may have several interface pointers. Null is no object.
template <class Interface>
bool isSameObject(const ComPointer<Interface>& one, const ComPointer<Interface>& other) {
    if (!one || !other) {
        return false;
    }
    const auto identity = [](Interface& object) {
        ComPointer<IUnknown> unknown;
        object.QueryInterface(IID_IUnknown, reinterpret_cast<void**>(unknown.receive()));
        return unknown;
    };
    return one.get() == other.get() || identity(*one).get() == identity(*other).get();
}

class Bstr {
public:
    Bstr() = default;
    explicit Bstr(const std::wstring& text)
        : text_(SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {
        if (!text_) {
            throw std::bad_alloc();
        }
    }
    ~Bstr() { SysFreeString(text_); }
    Bstr(const Bstr&) = delete;
    Bstr& operator=(const Bstr&) = delete;

    BSTR get() const { return text_; }
    std::wstring text() const { return textOf(text_); }
    // The place for a text that a callee hands over.
    BSTR* receive() {
        SysFreeString(std::exchange(text_, nullptr));
        return &text_;
    }

private:
    BSTR text_ = nullptr;
};

}  // namespace tessary
