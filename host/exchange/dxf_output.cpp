#include "host/exchange/dxf_output.h"

#include <charconv>
#include <cmath>

#include "host/exchange/dxf_numbers.h"

namespace drafthost::exchange {
namespace {

void appendInteger(std::string& bytes, std::int64_t value) {
    char digits[24];
    const auto written = std::to_chars(digits, digits + sizeof digits, value);
    bytes.append(digits, written.ptr);
}

}  // namespace

void DxfOutput::code(int value) {
    // Codes are written right-aligned to three places.
    if (value >= 0 && value < 100)
        bytes_ += value < 10 ? "  " : " ";
    appendInteger(bytes_, value);
    endLine();
}

void DxfOutput::text(int groupCode, std::wstring_view value) {
    code(groupCode);
    bytes_ += encodeText(value, encoding_);
    endLine();
}

void DxfOutput::ascii(int groupCode, std::string_view value) {
    code(groupCode);
    bytes_ += value;
    endLine();
}

void DxfOutput::real(int groupCode, double value) {
    code(groupCode);
    // Files have no notation for what is not a number.
    appendReal(bytes_, std::isfinite(value) ? value : 0.0);
    endLine();
}

void DxfOutput::integer(int groupCode, std::int64_t value) {
    code(groupCode);
    appendInteger(bytes_, value);
    endLine();
}

void DxfOutput::handle(int groupCode, AcDbHandle value) {
    code(groupCode);
    appendHandle(bytes_, value.value());
    endLine();
}

void DxfOutput::point(int groupCode, const AcGePoint3d& value) {
    real(groupCode, value.x);
    real(groupCode + 10, value.y);
    real(groupCode + 20, value.z);
}

void DxfOutput::group(const DxfGroup& group) {
    struct Writer {
        DxfOutput& output;
        int code;
        void operator()(const std::wstring& value) const { output.text(code, value); }
        void operator()(double value) const { output.real(code, value); }
        void operator()(const AcGePoint3d& value) const { output.point(code, value); }
        void operator()(const AcGePoint2d& value) const {
            output.real(code, value.x);
            output.real(code + 10, value.y);
        }
        void operator()(std::int64_t value) const { output.integer(code, value); }
        void operator()(const ObjectReference& value) const {
            output.handle(code, value.id.isNull() ? value.handle : value.id.handle());
        }
        void operator()(const std::vector<std::uint8_t>& value) const {
            output.code(code);
            appendBinary(output.bytes_, value);
            output.endLine();
        }
    };
    std::visit(Writer{*this, group.code}, group.value);
}

void DxfOutput::groups(std::span<const DxfGroup> groups) {
    for (const DxfGroup& each : groups)
        group(each);
}

}  // namespace drafthost::exchange
