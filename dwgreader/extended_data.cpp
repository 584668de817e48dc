#include "dwgreader/extended_data.h"

#include <cstring>
#include <optional>

namespace dwgreader {
namespace {

class ByteReader {
public:
    explicit ByteReader(std::string_view bytes) : rest_(bytes) {}

    bool atEnd() const { return rest_.empty(); }

    template <class Value>
    std::optional<Value> value() {
        const auto bytes = take(sizeof(Value));
        if (!bytes)
            return std::nullopt;
        Value result;
        std::memcpy(&result, bytes->data(), sizeof result);
        return result;
    }
    std::optional<std::string_view> take(std::size_t count) {
        if (count > rest_.size())
            return std::nullopt;
        const std::string_view taken = rest_.substr(0, count);
        rest_.remove_prefix(count);
        return taken;
    }

private:
    std::string_view rest_;
};

void appendUtf8(std::string& text, char32_t character) {
    const auto tail = [&](int shift) { text += static_cast<char>(0x80 | ((character >> shift) & 0x3F)); };
    if (character < 0x80) {
        text += static_cast<char>(character);
    } else if (character < 0x800) {
        text += static_cast<char>(0xC0 | (character >> 6));
        tail(0);
    } else if (character < 0x10000) {
        text += static_cast<char>(0xE0 | (character >> 12));
        tail(6);
        tail(0);
    } else {
        text += static_cast<char>(0xF0 | (character >> 18));
        tail(12);
        tail(6);
        tail(0);
    }
}

std::string fromUtf16(std::string_view bytes) {
    std::string text;
    ByteReader units(bytes);
    while (const auto unit = units.value<std::uint16_t>()) {
        char32_t character = *unit;
        if (character >= 0xD800 && character < 0xDC00)
            if (const auto low = units.value<std::uint16_t>())
                character = 0x10000 + ((character - 0xD800) << 10) + ((*low - 0xDC00) & 0x3FF);
        appendUtf8(text, character);
    }
    return text;
}

// Texts before 2007 have a code page of their own; beyond ASCII they are taken for Latin-1.
std::string fromLatin1(std::string_view bytes) {
    std::string text;
    for (const char c : bytes)
        appendUtf8(text, static_cast<unsigned char>(c));
    return text;
}

std::optional<std::string> readText(ByteReader& reader, bool wide) {
    if (wide) {
        const auto length = reader.value<std::uint16_t>();
        const auto bytes = length ? reader.take(std::size_t{2} * *length) : std::nullopt;
        return bytes ? std::optional(fromUtf16(*bytes)) : std::nullopt;
    }
    const auto length = reader.value<std::uint8_t>();
    const auto codePage = reader.value<std::uint16_t>();
    const auto bytes = length && codePage ? reader.take(*length) : std::nullopt;
    return bytes ? std::optional(fromLatin1(*bytes)) : std::nullopt;
}

// References are eight bytes, the highest first.
std::optional<Handle> readHandle(ByteReader& reader) {
    const auto bytes = reader.take(8);
    if (!bytes)
        return std::nullopt;
    Handle handle = 0;
    for (const char c : *bytes)
        handle = (handle << 8) | static_cast<unsigned char>(c);
    return handle;
}

std::string hexadecimal(std::string_view bytes) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    for (const char c : bytes) {
        text += kDigits[static_cast<unsigned char>(c) >> 4];
        text += kDigits[c & 15];
    }
    return text;
}

// One value; false when it is cut off or of an unknown kind.
bool readValue(ByteReader& reader, bool wide, const Records& layers, DxfText& groups) {
    const auto kind = reader.value<std::uint8_t>();
    if (!kind)
        return false;
    const int code = 1000 + *kind;
    switch (*kind) {
        case 0: {
            const auto text = readText(reader, wide);
            if (text)
                groups.text(code, *text);
            return text.has_value();
        }
        case 2: {
            const auto closing = reader.value<std::uint8_t>();
            if (closing)
                groups.text(code, *closing ? "}" : "{");
            return closing.has_value();
        }
        case 3: {
            const auto layer = readHandle(reader);
            const auto found = layer ? layers.find(*layer) : layers.end();
            if (found != layers.end())
                groups.text(code, found->second.name);
            return layer.has_value();
        }
        case 4: {
            const auto length = reader.value<std::uint8_t>();
            const auto bytes = length ? reader.take(*length) : std::nullopt;
            if (bytes)
                groups.text(code, hexadecimal(*bytes));
            return bytes.has_value();
        }
        case 5: {
            const auto handle = readHandle(reader);
            if (handle)
                groups.handle(code, *handle);
            return handle.has_value();
        }
        case 10:
        case 11:
        case 12:
        case 13: {
            const auto x = reader.value<double>(), y = reader.value<double>(), z = reader.value<double>();
            if (z)
                groups.point(code, DRW_Coord(*x, *y, *z));
            return z.has_value();
        }
        case 40:
        case 41:
        case 42: {
            const auto number = reader.value<double>();
            if (number)
                groups.real(code, *number);
            return number.has_value();
        }
        case 70: {
            const auto number = reader.value<std::int16_t>();
            if (number)
                groups.integer(code, *number);
            return number.has_value();
        }
        case 71: {
            const auto number = reader.value<std::int32_t>();
            if (number)
                groups.integer(code, *number);
            return number.has_value();
        }
        default: return false;
    }
}

}  // namespace

DxfText extendedDataGroups(std::string_view bytes, bool wide, const Records& layers) {
    DxfText groups;
    ByteReader reader(bytes);
    while (!reader.atEnd() && readValue(reader, wide, layers, groups)) {
    }
    return groups;
}

}  // namespace dwgreader
