#pragma once

// A file of the C library that is closed with its handle. Writers that must know whether closing succeeded
// release it and close it themselves.

#include <cstdio>
#include <memory>

namespace drafthost::exchange {

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

}  // namespace drafthost::exchange
