#include "host/text/mtext_parser.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <numbers>
#include <optional>

#include "host/text/text_codes.h"

namespace drafthost::text {

namespace {

// Limits of what codes can set; wide enough for drawings, narrow enough that no measure overflows.
constexpr double kLargestHeightRatio = 1e6;  // to the entity's text height, either way
constexpr double kSmallestWidth = 0.1, kLargestWidth = 10;
constexpr double kSmallestTracking = 0.75, kLargestTracking = 4;
constexpr double kLargestSlant = 85;  // degrees
constexpr double kLargestIndent = 1e6;
constexpr std::size_t kMostTabs = 64;

// The number at the front of the text, which is shortened by it; nothing when there is none.
std::optional<double> takeNumber(std::wstring_view& text) {
    constexpr std::size_t kLongestNumber = 32;
    char digits[kLongestNumber];
    std::size_t length = 0;
    for (; length < std::min(text.size(), kLongestNumber); ++length) {
        const wchar_t unit = text[length];
        const bool isPart = (unit >= L'0' && unit <= L'9') || unit == L'.' || unit == L'-' || unit == L'+';
        if (!isPart) {
            break;
        }
        digits[length] = static_cast<char>(unit);
    }
    const char* start = digits + (length > 0 && digits[0] == '+' ? 1 : 0);
    double value = 0;
    const auto [end, error] = std::from_chars(start, digits + length, value, std::chars_format::fixed);
    if (error != std::errc()) {
        return std::nullopt;
    }
    text.remove_prefix(static_cast<std::size_t>(end - digits));
    return value;
}

class MTextParser {
public:
    MTextParser(std::wstring_view text, const MTextFormat& initial, const TextFont& font)
        : rest_(text), lastSemicolon_(text.rfind(L';')), whole_(text), baseHeight_(initial.height) {
        contents_.fonts.push_back(font);
        contents_.formats.push_back(initial);
        contents_.paragraphs.emplace_back();
    }

    MTextContents parse() {
        if (rest_.empty()) {
            return std::move(contents_);
        }
        while (!rest_.empty()) {
            parseNext();
        }
        endParagraph();
        return std::move(contents_);
    }

private:
    using CodeReader = void (MTextParser::*)();
    struct CodeRow {
        wchar_t letter;
        CodeReader read;
    };
    static const CodeRow kCodes[];

    void parseNext() {
        const wchar_t unit = rest_[0];
        if (unit == L'\\') {
            parseEscape();
        } else if (unit == L'{' || unit == L'}') {
            rest_.remove_prefix(1);
            unit == L'{' ? openGroup() : closeGroup();
        } else if (unit == L'^' && rest_.size() > 1) {
            parseCaret();
        } else if (unit == L'%') {
            parsePercent();
        } else {
            rest_.remove_prefix(1);
            addCharacter(unit);
        }
    }

    void addCharacter(wchar_t unit) {
        if (unit == L' ') {
            addTo(MTextToken::Blanks, unit);
        } else if (unit == L'\t') {
            addToken(MTextToken::Tab);
        } else if (unit == L'\n') {
            endParagraph();
        } else if (unit > L' ') {
            addTo(MTextToken::Word, unit);
        }
    }

    // Control characters are written as a caret and a letter, and the caret as caret and blank.
    void parseCaret() {
        constexpr std::wstring_view kLetters = L"IJM ";
        constexpr std::wstring_view kMeanings = L"\t\n\r^";
        const std::size_t index = kLetters.find(rest_[1]);
        if (index == std::wstring_view::npos) {
            addCharacter(L'^');
            rest_.remove_prefix(1);
            return;
        }
        rest_.remove_prefix(2);
        addCharacter(kMeanings[index]);
    }

    void parsePercent() {
        const std::optional<TextCode> code = percentCode(rest_);
        if (!code) {
            addCharacter(L'%');
            rest_.remove_prefix(1);
            return;
        }
        rest_.remove_prefix(code->length);
        apply(*code);
    }

    void apply(const TextCode& code) {
        switch (code.kind) {
            case TextCode::Character: addCharacter(code.character); break;
            case TextCode::Underline: toggle(&MTextFormat::underlined); break;
            case TextCode::Overline: toggle(&MTextFormat::overlined); break;
            case TextCode::Strike: toggle(&MTextFormat::struck); break;
            case TextCode::Nothing: break;
        }
    }

    void parseEscape() {
        if (const std::optional<TextCode> code = escapedCharacter(rest_)) {
            rest_.remove_prefix(code->length);
            apply(*code);
            return;
        }
        rest_.remove_prefix(1);
        if (rest_.empty()) {
            return;
        }
        const wchar_t letter = rest_[0];
        rest_.remove_prefix(1);
        if (letter == L'\\' || letter == L'{' || letter == L'}') {
            addTo(MTextToken::Word, letter);
            return;
        }
        const CodeRow* row = findCode(letter);
        if (row) {
            (this->*row->read)();
        }
    }

    static const CodeRow* findCode(wchar_t letter);

    // ---- Codes without a value ----

    void endParagraph() {
        MTextToken& token = addToken(MTextToken::ParagraphEnd);
        token.paragraph = static_cast<std::uint32_t>(contents_.paragraphs.size() - 1);
    }
    void addHardBlank() { addTo(MTextToken::Word, L'\u00A0'); }
    void underlineOn() { change().underlined = true; }
    void underlineOff() { change().underlined = false; }
    void overlineOn() { change().overlined = true; }
    void overlineOff() { change().overlined = false; }
    void strikeOn() { change().struck = true; }
    void strikeOff() { change().struck = false; }
    void toggle(bool MTextFormat::*flag) {
        MTextFormat& format = change();
        format.*flag = !(format.*flag);
    }

    // ---- Codes with a number, ended by a semicolon that careless programs leave out ----

    std::optional<double> takeValue() {
        const std::optional<double> value = takeNumber(rest_);
        endValue();
        return value;
    }
    void endValue() {
        if (rest_.starts_with(L';')) {
            rest_.remove_prefix(1);
        }
    }

    void setHeight() {
        const std::optional<double> value = takeNumber(rest_);
        const bool isFactor = rest_.starts_with(L'x') || rest_.starts_with(L'X');
        if (isFactor) {
            rest_.remove_prefix(1);
        }
        endValue();
        if (value && *value > 0) {
            const double wanted = isFactor ? *value * current().height : *value;
            change().height =
                std::clamp(wanted, baseHeight_ / kLargestHeightRatio, baseHeight_ * kLargestHeightRatio);
        }
    }
    // A factor on the style's width, or with "x" on the present one.
    void setWidth() {
        const std::optional<double> value = takeNumber(rest_);
        const bool isFactor = rest_.starts_with(L'x') || rest_.starts_with(L'X');
        if (isFactor) {
            rest_.remove_prefix(1);
        }
        endValue();
        if (value && *value > 0) {
            const double wanted = isFactor ? *value * current().widthFactor : *value;
            change().widthFactor = std::clamp(wanted, kSmallestWidth, kLargestWidth);
        }
    }
    void setOblique() {
        if (const std::optional<double> degrees = takeValue()) {
            change().oblique = std::clamp(*degrees, -kLargestSlant, kLargestSlant) * std::numbers::pi / 180;
        }
    }
    void setTracking() {
        if (const std::optional<double> value = takeValue()) {
            change().tracking = std::clamp(*value, kSmallestTracking, kLargestTracking);
        }
    }
    void setAlignment() {
        const std::optional<double> value = takeValue();
        if (value && *value >= 0 && *value <= 2) {
            change().alignment = static_cast<MTextFormat::Alignment>(static_cast<int>(*value));
        }
    }
    void setColor() {
        constexpr double kByLayer = 256;
        const std::optional<double> value = takeValue();
        if (value && *value >= 0 && *value <= kByLayer) {
            MTextFormat& format = change();
            format.color = static_cast<int>(*value);
            format.trueColor = -1;
        }
    }
    // The number has the blue byte highest.
    void setTrueColor() {
        constexpr double kWhite = 0xFFFFFF;
        const std::optional<double> value = takeValue();
        if (value && *value >= 0 && *value <= kWhite) {
            const int bgr = static_cast<int>(*value);
            change().trueColor = (bgr & 0xFF) << 16 | (bgr & 0xFF00) | (bgr >> 16 & 0xFF);
        }
    }

    // ---- Codes with a text ----

    // The text up to a semicolon; nothing when a code or brace comes first.
    std::optional<std::wstring_view> takeParameters() {
        const std::size_t end = rest_.find_first_of(L";\\{}");
        if (end == std::wstring_view::npos || rest_[end] != L';') {
            return std::nullopt;
        }
        const std::wstring_view parameters = rest_.substr(0, end);
        rest_.remove_prefix(end + 1);
        return parameters;
    }

    // "Arial|b1|i0|c0|p34": family, bold, italic; character set and pitch do not matter here.
    void setFont() {
        if (const auto parameters = takeParameters()) {
            TextFont font = fontOf(*parameters);
            const bool isFile = font.family.ends_with(L".shx") || font.family.ends_with(L".SHX");
            if (isFile) {
                font = {font.family, {}, false, false};
            }
            useFont(font);
        }
    }
    void setFontFile() {
        if (const auto parameters = takeParameters()) {
            TextFont font = fontOf(*parameters);
            font.file.swap(font.family);
            useFont(font);
        }
    }
    static TextFont fontOf(std::wstring_view parameters) {
        const std::size_t end = std::min(parameters.find(L'|'), parameters.size());
        const auto isSet = [&](std::wstring_view flag) {
            return parameters.find(flag, end) != parameters.npos;
        };
        return {{}, std::wstring(parameters.substr(0, end)), isSet(L"|b1"), isSet(L"|i1")};
    }
    void useFont(const TextFont& font) {
        // Texts change between few fonts, so the last ones are where the search finds them.
        constexpr std::ptrdiff_t kRemembered = 16;
        std::vector<TextFont>& fonts = contents_.fonts;
        const auto first = fonts.size() > kRemembered ? fonts.end() - kRemembered : fonts.begin();
        auto found = std::find(first, fonts.end(), font);
        if (found == fonts.end()) {
            found = fonts.insert(fonts.end(), font);
        }
        change().font = static_cast<std::uint32_t>(found - fonts.begin());
    }

    void addStack() {
        const std::size_t here = whole_.size() - rest_.size();
        if (lastSemicolon_ == std::wstring_view::npos || here > lastSemicolon_) {
            return;  // never ended: the text itself is kept
        }
        std::wstring upper, lower;
        wchar_t type = 0;
        while (!rest_.empty() && rest_[0] != L';') {
            wchar_t unit = rest_[0];
            rest_.remove_prefix(1);
            const bool isEscape = unit == L'\\' && !rest_.empty();
            if (isEscape) {
                unit = rest_[0];
                rest_.remove_prefix(1);
            }
            if (!isEscape && type == 0 && (unit == L'/' || unit == L'#' || unit == L'^')) {
                type = unit;
            } else if (unit >= L' ') {
                (type ? lower : upper).push_back(unit);
            }
        }
        endValue();
        MTextToken& token = addToken(MTextToken::Stack);
        token.text = std::move(upper);
        token.lower = std::move(lower);
        token.stackType = type ? type : L'^';
    }

    // "i1,l2,r0.5,qc,t4,8": indent, left and right margin, alignment, tab stops to the end.
    void setParagraph() {
        const auto parameters = takeParameters();
        if (!parameters) {
            return;
        }
        ParagraphFormat format = contents_.paragraphs.back();
        std::wstring_view list = *parameters;
        bool inTabs = false;
        while (!list.empty()) {
            const std::size_t end = std::min(list.find(L','), list.size());
            setParagraphItem(format, list.substr(0, end), inTabs);
            list.remove_prefix(std::min(end + 1, list.size()));
        }
        std::sort(format.tabs.begin(), format.tabs.end());
        contents_.paragraphs.push_back(std::move(format));
    }

    static void setParagraphItem(ParagraphFormat& format, std::wstring_view item, bool& inTabs) {
        if (item.starts_with(L'x')) {
            item.remove_prefix(1);
        }
        if (item.empty()) {
            return;
        }
        const wchar_t letter = item[0];
        if (letter == L't') {
            inTabs = true;
            format.tabs.clear();
        }
        if (inTabs) {
            addTab(format, item);
            return;
        }
        item.remove_prefix(1);
        if (letter == L'q') {
            format.alignment = alignmentOf(item);
        } else if (double* length = lengthOf(format, letter)) {
            const double value = takeNumber(item).value_or(0);  // "*": the default, none
            *length = std::clamp(value, -kLargestIndent, kLargestIndent);
        }
    }
    static double* lengthOf(ParagraphFormat& format, wchar_t letter) {
        return letter == L'i'   ? &format.indent
               : letter == L'l' ? &format.left
               : letter == L'r' ? &format.right
                                : nullptr;
    }
    static ParagraphFormat::Alignment alignmentOf(std::wstring_view letter) {
        constexpr std::wstring_view kLetters = L"*lcrjd";
        constexpr ParagraphFormat::Alignment kAlignments[] = {
            ParagraphFormat::Default, ParagraphFormat::Left,      ParagraphFormat::Center,
            ParagraphFormat::Right,   ParagraphFormat::Justified, ParagraphFormat::Justified};
        const std::size_t index = letter.empty() ? letter.npos : kLetters.find(letter[0]);
        return index == letter.npos ? ParagraphFormat::Default : kAlignments[index];
    }
    // Letters before the number say how text meets the stop; all stops here are left ones.
    static void addTab(ParagraphFormat& format, std::wstring_view item) {
        while (!item.empty() && ((item[0] >= L'a' && item[0] <= L'z') || item[0] == L'*')) {
            item.remove_prefix(1);
        }
        const std::optional<double> stop = takeNumber(item);
        if (stop && *stop > 0 && *stop <= kLargestIndent && format.tabs.size() < kMostTabs) {
            format.tabs.push_back(*stop);
        }
    }

    // ---- Formats and tokens ----

    void openGroup() { groups_.push_back(format_); }
    void closeGroup() {
        if (!groups_.empty()) {
            format_ = groups_.back();
            groups_.pop_back();
        }
    }

    const MTextFormat& current() const { return contents_.formats[format_]; }
    // The format for what follows, a copy of the present one.
    MTextFormat& change() {
        MTextFormat copy = current();
        contents_.formats.push_back(copy);
        format_ = static_cast<std::uint32_t>(contents_.formats.size() - 1);
        return contents_.formats.back();
    }

    MTextToken& addToken(MTextToken::Kind kind) {
        MTextToken& token = contents_.tokens.emplace_back();
        token.kind = kind;
        token.format = format_;
        return token;
    }
    void addTo(MTextToken::Kind kind, wchar_t unit) {
        std::vector<MTextToken>& tokens = contents_.tokens;
        const bool continues =
            !tokens.empty() && tokens.back().kind == kind && tokens.back().format == format_;
        (continues ? tokens.back() : addToken(kind)).text.push_back(unit);
    }

    std::wstring_view rest_;
    std::size_t lastSemicolon_;
    std::wstring_view whole_;
    double baseHeight_;
    MTextContents contents_;
    std::uint32_t format_ = 0;
    std::vector<std::uint32_t> groups_;  // formats before the open braces
};

const MTextParser::CodeRow MTextParser::kCodes[] = {
    {L'P', &MTextParser::endParagraph}, {L'X', &MTextParser::endParagraph},
    {L'N', &MTextParser::endParagraph}, {L'~', &MTextParser::addHardBlank},
    {L'L', &MTextParser::underlineOn},  {L'l', &MTextParser::underlineOff},
    {L'O', &MTextParser::overlineOn},   {L'o', &MTextParser::overlineOff},
    {L'K', &MTextParser::strikeOn},     {L'k', &MTextParser::strikeOff},
    {L'H', &MTextParser::setHeight},    {L'W', &MTextParser::setWidth},
    {L'Q', &MTextParser::setOblique},   {L'T', &MTextParser::setTracking},
    {L'A', &MTextParser::setAlignment}, {L'C', &MTextParser::setColor},
    {L'c', &MTextParser::setTrueColor}, {L'f', &MTextParser::setFont},
    {L'F', &MTextParser::setFontFile},  {L'S', &MTextParser::addStack},
    {L'p', &MTextParser::setParagraph},
};

const MTextParser::CodeRow* MTextParser::findCode(wchar_t letter) {
    const auto* found = std::find_if(std::begin(kCodes), std::end(kCodes),
                                     [letter](const CodeRow& row) { return row.letter == letter; });
    return found == std::end(kCodes) ? nullptr : found;
}

}  // namespace

MTextContents parseMText(std::wstring_view text, const MTextFormat& initial, const TextFont& font) {
    return MTextParser(text, initial, font).parse();
}

std::wstring scaleHeightCodes(std::wstring_view text, double factor) {
    std::wstring result;
    while (!text.empty()) {
        const std::size_t codeLength = text[0] == L'\\' && text.size() > 1 ? 2 : 1;
        const bool isHeight = codeLength == 2 && text[1] == L'H';
        result += text.substr(0, codeLength);
        text.remove_prefix(codeLength);
        if (!isHeight) {
            continue;
        }
        const std::wstring_view before = text;
        const std::optional<double> value = takeNumber(text);
        const bool isFactor = text.starts_with(L'x') || text.starts_with(L'X');
        if (!value || isFactor) {
            result += before.substr(0, before.size() - text.size());
            continue;
        }
        char digits[32];
        const auto end =
            std::to_chars(digits, std::end(digits), *value * factor, std::chars_format::fixed, 8).ptr;
        result.append(digits, end);
    }
    return result;
}

}  // namespace drafthost::text
