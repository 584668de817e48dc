#pragma once

// Tags of a file turned into groups with typed values.

#include <span>
#include <vector>

#include "host/database/dxf_group.h"
#include "host/exchange/dxf_tags.h"
#include "host/exchange/text_encoding.h"

namespace drafthost::exchange {

// Larger handles are damage; up to here there is room to count on.
constexpr std::uint64_t kHighestHandle = std::uint64_t{1} << 60;

class DxfInput {
public:
    explicit DxfInput(TextEncoding encoding) : encoding_(encoding) {}

    // The groups of a record. Coordinates that follow each other (10, 20, 30) become one point group.
    // Long texts come in pieces (groups 3 and then 1); a character that was cut in two by that is put
    // together in the later piece. A null reference stands for an empty one. Throws DxfError when a value is
    // not of its group's kind: "group 40: real number expected, found "abc"".
    std::vector<DxfGroup> groups(std::span<const DxfTag> tags);
    // One group; at moves behind it. A point takes up to three tags.
    DxfGroup group(std::span<const DxfTag> tags, std::size_t& at);
    std::wstring text(std::string_view bytes);
    std::wstring name(std::string_view bytes) { return text(trimmed(bytes)); }

    TextEncoding encoding() const { return encoding_; }
    // How many texts were not in the file's encoding.
    int damagedTexts() const { return damagedTexts_; }
    // How many references held a handle beyond kHighestHandle; they are null now.
    int unusableReferences() const { return unusableReferences_; }

private:
    std::wstring piece(std::span<const DxfTag> tags, std::size_t at);
    DxfGroup reference(const DxfTag& tag);

    std::string carried_;  // beginning of a cut character, from the piece before
    TextEncoding encoding_;
    int damagedTexts_ = 0;
    int unusableReferences_ = 0;
};

// The number of a tag. Throws DxfError.
double realOf(const DxfTag& tag);
std::int64_t integerOf(const DxfTag& tag);
AcDbHandle handleOf(const DxfTag& tag);

}  // namespace drafthost::exchange
