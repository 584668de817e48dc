#pragma once

// Text of a DXF file, put together group by group.

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include "drw_base.h"

namespace dwgreader {

// The DWG file holds what no drawing can hold.
class DamagedDrawing : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class DxfText {
public:
    // text: UTF-8. Ends at a zero byte; control characters and carets are written as DXF writes them.
    DxfText& text(int code, std::string_view text);
    // A text of any length: pieces in groups 3 and the rest in group 1.
    DxfText& longText(std::string_view text);
    DxfText& integer(int code, std::int64_t value);
    // Throws DamagedDrawing for what is no number.
    DxfText& real(int code, double value);
    DxfText& degrees(int code, double radians);
    DxfText& handle(int code, std::uint32_t value);
    // Groups code, code + 10 and code + 20.
    DxfText& point(int code, const DRW_Coord& point);
    DxfText& point2d(int code, double x, double y);
    // Group 210 unless it is the z axis.
    DxfText& normal(const DRW_Coord& direction);
    DxfText& append(const DxfText& other);

    const std::string& str() const { return text_; }
    bool empty() const { return text_.empty(); }

private:
    void line(int code, std::string_view value);

    std::string text_;
};

}  // namespace dwgreader
