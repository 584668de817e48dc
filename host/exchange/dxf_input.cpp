#include "host/exchange/dxf_input.h"

#include <array>
#include <limits>
#include <utility>

#include "host/exchange/dxf_numbers.h"

namespace drafthost::exchange {
namespace {

// Texts of more than 250 characters: pieces, and the last one.
constexpr short kPiece = 3;
constexpr short kLastPiece = 1;

[[noreturn]] void failValue(const DxfTag& tag, const char* expected) {
    throw DxfError(tag.line + std::size_t{1}, "group " + std::to_string(tag.code) + ": " + expected +
                                                  " expected, found " + quotedForMessage(tag.text));
}

// Range of whole numbers that a kind holds, signed and unsigned: files have both ("65535" and "-1").
struct IntegerRange {
    std::int64_t lowest, highest;
};
IntegerRange rangeOf(DxfKind kind) {
    switch (kind) {
        case DxfKind::Int16:
            return {std::numeric_limits<std::int16_t>::min(), std::numeric_limits<std::uint16_t>::max()};
        case DxfKind::Int32:
            return {std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::uint32_t>::max()};
        default: return {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()};
    }
}

}  // namespace

double realOf(const DxfTag& tag) {
    const auto value = parseReal(tag.text);
    if (!value)
        failValue(tag, "real number");
    return *value;
}

std::int64_t integerOf(const DxfTag& tag) {
    const auto value = parseInteger(tag.text);
    const DxfKind kind = dxfKind(tag.code);
    const IntegerRange range = rangeOf(kind);
    if (!value || *value < range.lowest || *value > range.highest)
        failValue(tag, "whole number");
    return kind == DxfKind::Int32 ? static_cast<std::int32_t>(*value) : *value;
}

AcDbHandle handleOf(const DxfTag& tag) {
    const auto value = parseHandle(tag.text);
    if (!value)
        failValue(tag, "handle");
    return AcDbHandle(*value);
}

std::wstring DxfInput::text(std::string_view bytes) {
    bool damaged = false;
    std::wstring decoded = decodeText(bytes, encoding_, damaged);
    if (damaged)
        ++damagedTexts_;
    return decoded;
}

namespace {

// Kinds by code, looked up once for each line of a file.
const std::array<DxfKind, 1072>& kinds() {
    static const auto table = [] {
        std::array<DxfKind, 1072> all{};
        for (int code = 0; code < 1072; ++code)
            all[static_cast<std::size_t>(code)] = dxfKind(code);
        return all;
    }();
    return table;
}

}  // namespace

DxfGroup DxfInput::group(std::span<const DxfTag> tags, std::size_t& at) {
    const DxfTag& tag = tags[at++];
    const auto code = static_cast<short>(tag.code);
    const auto follows = [&](std::int32_t next) { return at < tags.size() && tags[at].code == next; };
    switch (code < 0 ? dxfKind(code) : kinds()[static_cast<std::size_t>(code)]) {
        case DxfKind::Real: return {code, realOf(tag)};
        case DxfKind::Int16:
        case DxfKind::Int32:
        case DxfKind::Int64:
        case DxfKind::Bool: return {code, integerOf(tag)};
        case DxfKind::Handle:
        case DxfKind::Reference: return reference(tag);
        case DxfKind::Binary: {
            auto data = parseBinary(tag.text);
            if (!data)
                failValue(tag, "pairs of hexadecimal digits");
            return {code, std::move(*data)};
        }
        case DxfKind::Point: {
            if (!follows(code + 10))
                return {code, realOf(tag)};
            const double x = realOf(tag);
            const double y = realOf(tags[at++]);
            if (!follows(code + 20))
                return {code, AcGePoint2d(x, y)};
            return {code, AcGePoint3d(x, y, realOf(tags[at++]))};
        }
        case DxfKind::Text: break;
    }
    if (code == kPiece || code == kLastPiece)
        return {code, piece(tags, at - 1)};
    return {code, text(tag.text)};
}

DxfGroup DxfInput::reference(const DxfTag& tag) {
    const auto code = static_cast<short>(tag.code);
    const auto value = parseHandle(tag.text);
    // Handles in extended data are the business of their application, and dimension styles of old files have
    // a name here.
    if (!value && (code == 1005 || code == 5))
        return {code, text(tag.text)};
    const bool empty = trimmed(tag.text).empty();
    AcDbHandle handle = empty ? AcDbHandle() : handleOf(tag);
    if (handle.value() > kHighestHandle) {
        handle = AcDbHandle();
        ++unusableReferences_;
    }
    return {code, ObjectReference{handle, {}}};
}

std::wstring DxfInput::piece(std::span<const DxfTag> tags, std::size_t at) {
    std::string bytes = std::exchange(carried_, {});
    bytes += tags[at].text;
    const bool goesOn = tags[at].code == kPiece && at + 1 < tags.size() &&
                        (tags[at + 1].code == kPiece || tags[at + 1].code == kLastPiece);
    if (goesOn) {
        const std::size_t whole = bytes.size() - cutCharacterLength(bytes, encoding_);
        carried_ = bytes.substr(whole);
        bytes.resize(whole);
    }
    return text(bytes);
}

std::vector<DxfGroup> DxfInput::groups(std::span<const DxfTag> tags) {
    std::vector<DxfGroup> groups;
    groups.reserve(tags.size());
    for (std::size_t at = 0; at < tags.size();)
        groups.push_back(group(tags, at));
    return groups;
}

}  // namespace drafthost::exchange
