#pragma once

// Groups written as the lines of a DXF file.

#include <span>
#include <string>

#include "host/database/dxf_group.h"
#include "host/exchange/text_encoding.h"

namespace drafthost::exchange {

class DxfOutput {
public:
    explicit DxfOutput(TextEncoding encoding) : encoding_(encoding) {}

    void text(int code, std::wstring_view value);
    void ascii(int code, std::string_view value);  // names of the format itself
    void real(int code, double value);
    void integer(int code, std::int64_t value);
    void handle(int code, AcDbHandle value);
    // Coordinates at code, code + 10 and code + 20.
    void point(int code, const AcGePoint3d& value);
    void group(const DxfGroup& group);
    void groups(std::span<const DxfGroup> groups);

    std::string& bytes() { return bytes_; }

private:
    void code(int value);
    void endLine() { bytes_ += "\r\n"; }
    TextEncoding encoding_;
    std::string bytes_;
};

}  // namespace drafthost::exchange
