#pragma once

// The handle that `open` answers.

#include "host/lisp/console.h"
#include "host/lisp/value.h"

#include <memory>
#include <string>
#include <utility>

namespace drafthost::lisp {

// Dropping the last reference closes the file.
struct FileObject final : Object {
    std::wstring name;                   // as given to open
    std::unique_ptr<TextStream> stream;  // null once closed

    FileObject(std::wstring fileName, std::unique_ptr<TextStream> opened)
        : Object(Type::file), name(std::move(fileName)), stream(std::move(opened)) {}
};

}  // namespace drafthost::lisp
