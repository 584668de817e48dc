#include "host/text/mtext_layout.h"

#include <algorithm>
#include <cmath>

namespace drafthost::text {

namespace {

constexpr double kStackGap = 0.4;       // between the parts of a stack, in text heights
constexpr double kLooseStackGap = 0.2;  // without a bar
constexpr double kSlashRise = 0.5;      // of the upper part of a diagonal fraction
constexpr double kSlashWidth = 0.6;

// What stands on a line, in its order: part of a token with its measures.
struct Atom {
    const MTextToken* token = nullptr;
    double x = 0;  // from the line's start
    double advance = 0;
    double height = 0;  // above its own base line
};

double stackHeight(const MTextToken& token, double height) {
    switch (token.stackType) {
        case L'/': return (2 + kStackGap) * height;
        case L'#': return (1 + kSlashRise) * height;
        default: return (2 + kLooseStackGap) * height;
    }
}

class MTextComposer {
public:
    explicit MTextComposer(const MTextSpec& spec) : spec_(spec) {
        MTextContents parsed = parseMText(spec.contents, spec.format, spec.font);
        layout_.fonts = std::move(parsed.fonts);
        layout_.formats = std::move(parsed.formats);
        paragraphs_ = std::move(parsed.paragraphs);
        tokens_ = std::move(parsed.tokens);
        for (const TextFont& font : layout_.fonts) {
            fonts_.push_back(resolveFont(font));
        }
    }

    MTextLayout compose() {
        auto token = tokens_.begin();
        while (token != tokens_.end()) {
            const auto end = std::find_if(token, tokens_.end(), [](const MTextToken& candidate) {
                return candidate.kind == MTextToken::ParagraphEnd;
            });
            breakParagraph(&*token, &*end);
            token = end + 1;
        }
        placeLines();
        measure();
        return std::move(layout_);
    }

private:
    // A line with its atoms, before it is placed.
    struct DraftLine {
        std::vector<Atom> atoms;
        const ParagraphFormat* paragraph = nullptr;
        double start = 0;  // of the first atom, from the left edge of the box
        double width = 0;  // of the atoms
        bool endsParagraph = false;
        std::uint32_t format = 0;  // that an empty line takes its height from
    };

    double baseHeight() const { return spec_.format.height; }
    const MTextFormat& formatOf(const MTextToken& token) const { return layout_.formats[token.format]; }

    RunMeasure measureText(std::uint32_t format, std::wstring_view text) const {
        const MTextFormat& look = layout_.formats[format];
        return measureRun(fonts_[look.font], text, look.height, look.widthFactor, look.oblique,
                          look.tracking);
    }

    // ---- Breaking into lines ----

    void breakParagraph(const MTextToken* first, const MTextToken* end) {
        paragraph_ = &paragraphs_[end->paragraph];
        startLine(end->format, paragraph_->indent);
        for (const MTextToken* token = first; token != end; ++token) {
            if (token->kind == MTextToken::Blanks || token->kind == MTextToken::Tab) {
                takeWord();
                blanks_.push_back(atomOf(*token));
            } else {
                word_.push_back(atomOf(*token));
            }
        }
        takeWord();
        append(blanks_);
        line_.endsParagraph = true;
        drafts_.push_back(std::move(line_));
    }

    void startLine(std::uint32_t format, double indent) {
        line_ = DraftLine();
        line_.paragraph = paragraph_;
        line_.start = (paragraph_->left + indent) * baseHeight();
        line_.format = format;
        lineHasWord_ = false;
    }

    Atom atomOf(const MTextToken& token) const {
        const double height = formatOf(token).height;
        switch (token.kind) {
            case MTextToken::Stack: return {&token, 0, stackWidth(token), stackHeight(token, height)};
            case MTextToken::Tab: return {&token, 0, 0, height};
            default: return {&token, 0, measureText(token.format, token.text).advance, height};
        }
    }

    double stackWidth(const MTextToken& token) const {
        const double upper = measureText(token.format, token.text).advance;
        const double lower = measureText(token.format, token.lower).advance;
        return token.stackType == L'#' ? upper + lower + kSlashWidth * formatOf(token).height
                                       : std::max(upper, lower);
    }

    // Moves the finished word to the line, with the blanks before it, or to a new line when it does not fit.
    void takeWord() {
        if (word_.empty()) {
            return;
        }
        double end = line_.width;
        for (Atom& blank : blanks_) {
            end += advanceAt(blank, end);
        }
        for (const Atom& part : word_) {
            end += part.advance;
        }
        if (spec_.width > 0 && lineHasWord_ && line_.start + end > availableWidth()) {
            const std::uint32_t format = word_.front().token->format;
            blanks_.clear();
            drafts_.push_back(std::move(line_));
            startLine(format, 0);
        }
        append(blanks_);
        append(word_);
        lineHasWord_ = true;
    }

    // Right edge of the paragraph; a hair is given, so that text measured at its own width is not broken.
    double availableWidth() const { return spec_.width * (1 + 1e-9) - paragraph_->right * baseHeight(); }

    // A tab's advance depends on where it stands.
    double advanceAt(const Atom& atom, double x) const {
        if (atom.token->kind != MTextToken::Tab) {
            return atom.advance;
        }
        const double unit = baseHeight();
        const double position = (line_.start + x) / unit;
        const auto stop = std::upper_bound(paragraph_->tabs.begin(), paragraph_->tabs.end(), position + 1e-9);
        const double next = stop != paragraph_->tabs.end()
                                ? *stop
                                : (std::floor(position / kTabDistance + 1e-9) + 1) * kTabDistance;
        return (next - position) * unit;
    }

    void append(std::vector<Atom>& atoms) {
        for (Atom& atom : atoms) {
            atom.advance = advanceAt(atom, line_.width);
            atom.x = line_.width;
            line_.width += atom.advance;
            line_.atoms.push_back(atom);
        }
        atoms.clear();
    }

    // ---- Placing ----

    void placeLines() {
        for (const DraftLine& draft : drafts_) {
            layout_.actualWidth = std::max(layout_.actualWidth, draft.start + draft.width);
        }
        layout_.boxWidth = spec_.width > 0 ? spec_.width : layout_.actualWidth;
        const int column = (spec_.attachment - 1) % 3;
        layout_.boxLeft = -0.5 * column * layout_.boxWidth;
        double base = 0;
        for (std::size_t i = 0; i < drafts_.size(); ++i) {
            const double textHeight = tallestText(drafts_[i]);
            const double height = tallestAtom(drafts_[i], textHeight);
            base -= i == 0 ? height : pitch(textHeight, height);
            placeLine(drafts_[i], base, textHeight, height);
        }
        layout_.actualHeight = -base;
        const int row = (spec_.attachment - 1) / 3;
        layout_.boxTop = 0.5 * row * layout_.actualHeight;
        moveUp(layout_.boxTop);
    }

    double tallestText(const DraftLine& line) const {
        double tallest = 0;
        for (const Atom& atom : line.atoms) {
            tallest = std::max(tallest, formatOf(*atom.token).height);
        }
        return line.atoms.empty() ? layout_.formats[line.format].height : tallest;
    }

    double tallestAtom(const DraftLine& line, double textHeight) const {
        double tallest = textHeight;
        for (const Atom& atom : line.atoms) {
            tallest = std::max(tallest, rise(atom, textHeight) + atom.height);
        }
        return tallest;
    }

    // Of the atom's base line above the line's, by its vertical alignment.
    double rise(const Atom& atom, double textHeight) const {
        return 0.5 * static_cast<int>(formatOf(*atom.token).alignment) * (textHeight - atom.height);
    }

    double pitch(double textHeight, double height) const {
        if (spec_.exactSpacing) {
            return kLinePitch * spec_.spacingFactor * baseHeight();
        }
        return kLinePitch * spec_.spacingFactor * textHeight + (height - textHeight);
    }

    void placeLine(const DraftLine& draft, double base, double textHeight, double height) {
        MTextLine line;
        const Spread spread = spreadOf(draft);
        line.left = layout_.boxLeft + spread.left;
        line.right = line.left + draft.width + spread.perBlank * spread.blanks;
        line.base = base;
        line.height = height;
        line.firstPiece = layout_.pieces.size();
        double moved = 0;
        for (const Atom& atom : draft.atoms) {
            const AcGePoint2d start{line.left + atom.x + moved, base + rise(atom, textHeight)};
            placeAtom(atom, start, line.firstPiece);
            if (isBlanks(atom)) {
                moved += spread.perBlank * static_cast<double>(atom.token->text.size());
            }
        }
        line.pieceCount = layout_.pieces.size() - line.firstPiece;
        layout_.lines.push_back(line);
    }

    static bool isBlanks(const Atom& atom) { return atom.token->kind == MTextToken::Blanks; }

    struct Spread {
        double left = 0;  // from the left edge of the box
        double perBlank = 0;
        double blanks = 0;
    };

    Spread spreadOf(const DraftLine& draft) const {
        const int column = (spec_.attachment - 1) % 3;
        ParagraphFormat::Alignment alignment = draft.paragraph->alignment;
        if (alignment == ParagraphFormat::Default) {
            alignment = static_cast<ParagraphFormat::Alignment>(ParagraphFormat::Left + column);
        }
        const double room =
            layout_.boxWidth - draft.paragraph->right * baseHeight() - draft.start - draft.width;
        Spread spread{draft.start, 0, 0};
        if (alignment == ParagraphFormat::Center) {
            spread.left += room / 2;
        } else if (alignment == ParagraphFormat::Right) {
            spread.left += room;
        } else if (alignment == ParagraphFormat::Justified && !draft.endsParagraph && room > 0) {
            for (const Atom& atom : draft.atoms) {
                spread.blanks += isBlanks(atom) ? static_cast<double>(atom.token->text.size()) : 0;
            }
            spread.perBlank = spread.blanks > 0 ? room / spread.blanks : 0;
        }
        return spread;
    }

    void placeAtom(const Atom& atom, AcGePoint2d start, std::size_t firstPieceOfLine) {
        const MTextToken& token = *atom.token;
        if (token.kind == MTextToken::Stack) {
            placeStack(token, start, atom.advance);
        } else if (token.kind != MTextToken::Tab) {
            placeText(token.format, token.text, start, firstPieceOfLine);
        }
        addRules(token, start, atom.advance);
    }

    // Joins the text to the piece before it where that is the same look without a gap, so that lines draw in
    // few runs.
    void placeText(std::uint32_t format, const std::wstring& text, AcGePoint2d start,
                   std::size_t firstPieceOfLine) {
        if (text.empty()) {
            return;
        }
        const RunMeasure run = measureText(format, text);
        InkBox ink;
        if (!run.ink.empty) {
            ink.add(run.ink.minX + start.x, run.ink.minY + start.y);
            ink.add(run.ink.maxX + start.x, run.ink.maxY + start.y);
        }
        std::vector<MTextPiece>& pieces = layout_.pieces;
        if (pieces.size() > firstPieceOfLine) {
            MTextPiece& last = pieces.back();
            const double gap = start.x - (last.start.x + last.advance);
            if (last.format == format && last.start.y == start.y && std::abs(gap) < 1e-9 * last.height) {
                last.text += text;
                last.advance += run.advance;
                last.ink.add(ink);
                return;
            }
        }
        pieces.push_back({start, text, format, layout_.formats[format].height, run.advance, ink});
    }

    void placeStack(const MTextToken& token, AcGePoint2d start, double width) {
        const double height = formatOf(token).height;
        const double total = stackHeight(token, height);
        const double upper = measureText(token.format, token.text).advance;
        const double lower = measureText(token.format, token.lower).advance;
        const std::size_t none = layout_.pieces.size();  // parts of a stack are never joined to other text
        if (token.stackType == L'#') {
            placeText(token.format, token.text, {start.x, start.y + kSlashRise * height}, none);
            placeText(token.format, token.lower, {start.x + width - lower, start.y}, layout_.pieces.size());
            layout_.rules.push_back(
                {{start.x + upper, start.y}, {start.x + width - lower, start.y + total}, token.format, true});
            return;
        }
        const double centred = token.stackType == L'/' ? 0.5 : 0;
        placeText(token.format, token.text, {start.x + centred * (width - upper), start.y + total - height},
                  none);
        placeText(token.format, token.lower, {start.x + centred * (width - lower), start.y},
                  layout_.pieces.size());
        if (token.stackType == L'/') {
            const double bar = start.y + height * (1 + kStackGap / 2);
            layout_.rules.push_back({{start.x, bar}, {start.x + width, bar}, token.format, true});
        }
    }

    void addRules(const MTextToken& token, AcGePoint2d start, double advance) {
        const MTextFormat& format = formatOf(token);
        const auto addRule = [&](bool wanted, double height) {
            if (wanted) {
                const double y = start.y + height * format.height;
                layout_.rules.push_back({{start.x, y}, {start.x + advance, y}, token.format, false});
            }
        };
        addRule(format.underlined, kUnderline);
        addRule(format.overlined, kOverline);
        addRule(format.struck, kStrikeLine);
    }

    void moveUp(double distance) {
        for (MTextPiece& piece : layout_.pieces) {
            piece.start.y += distance;
            piece.ink.minY += distance;
            piece.ink.maxY += distance;
        }
        for (MTextRule& rule : layout_.rules) {
            rule.start.y += distance;
            rule.end.y += distance;
        }
        for (MTextLine& line : layout_.lines) {
            line.base += distance;
        }
    }

    // ---- Measures ----

    void measure() {
        for (const MTextLine& line : layout_.lines) {
            layout_.extents.add(line.left, line.base);
            layout_.extents.add(line.right, line.base + line.height);
        }
        for (const MTextPiece& piece : layout_.pieces) {
            layout_.extents.add(piece.ink);
        }
        for (const MTextRule& rule : layout_.rules) {
            layout_.extents.add(rule.start.x, rule.start.y);
            layout_.extents.add(rule.end.x, rule.end.y);
        }
        if (!layout_.lines.empty()) {
            layout_.ascent = highestInk(layout_.lines.front());
            layout_.descent = lowestInk(layout_.lines.back());
        }
    }

    double highestInk(const MTextLine& line) const {
        double highest = line.height;
        for (std::size_t i = line.firstPiece; i < line.firstPiece + line.pieceCount; ++i) {
            const MTextPiece& piece = layout_.pieces[i];
            const double top = piece.ink.maxY - line.base;
            const bool rises =
                !piece.ink.empty && piece.ink.maxY - piece.start.y > (1 + kOvershoot) * piece.height;
            if (rises) {
                highest = std::max(highest, top);
            }
        }
        return highest;
    }

    double lowestInk(const MTextLine& line) const {
        double lowest = 0;
        for (std::size_t i = line.firstPiece; i < line.firstPiece + line.pieceCount; ++i) {
            const MTextPiece& piece = layout_.pieces[i];
            const bool sinks = !piece.ink.empty && piece.start.y - piece.ink.minY > kOvershoot * piece.height;
            if (sinks) {
                lowest = std::max(lowest, line.base - piece.ink.minY);
            }
        }
        return lowest;
    }

    const MTextSpec& spec_;
    MTextLayout layout_;
    std::vector<ParagraphFormat> paragraphs_;
    std::vector<MTextToken> tokens_;
    std::vector<FontRef> fonts_;
    std::vector<DraftLine> drafts_;
    DraftLine line_;
    const ParagraphFormat* paragraph_ = nullptr;
    bool lineHasWord_ = false;
    std::vector<Atom> blanks_;  // before the word
    std::vector<Atom> word_;    // parts of the word being read; it ends at a blank
};

}  // namespace

MTextLayout layoutMText(const MTextSpec& spec) {
    return MTextComposer(spec).compose();
}

}  // namespace drafthost::text
