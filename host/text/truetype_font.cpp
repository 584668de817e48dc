#include <windows.h>

#include <algorithm>
#include <array>
#include <cwchar>
#include <optional>

#include "host/text/font.h"
#include "host/text/font_file.h"

namespace drafthost::text {

namespace {

// A memory device context with the face selected at one pixel for a design unit, where grid fitting cannot
// move anything.
class FaceContext {
public:
    FaceContext() : dc_(CreateCompatibleDC(nullptr)) {}
    ~FaceContext() {
        select(nullptr);
        if (dc_) {
            DeleteDC(dc_);
        }
    }
    FaceContext(const FaceContext&) = delete;
    FaceContext& operator=(const FaceContext&) = delete;

    HDC dc() const { return dc_; }

    // False: there is no such outline face, nor one in its place.
    bool open(const std::wstring& family, bool bold, bool italic) {
        constexpr int kFirstSize = 1000;  // any size: only to learn the design units
        LOGFONTW wanted{};
        wanted.lfWeight = bold ? FW_BOLD : FW_NORMAL;
        wanted.lfItalic = italic ? 1 : 0;
        wanted.lfCharSet = DEFAULT_CHARSET;
        wanted.lfOutPrecision = OUT_TT_ONLY_PRECIS;
        wanted.lfQuality = PROOF_QUALITY;
        const std::size_t length = std::min<std::size_t>(family.size(), LF_FACESIZE - 1);
        std::copy_n(family.begin(), length, wanted.lfFaceName);
        if (!selectAt(wanted, kFirstSize)) {
            return false;
        }
        const std::optional<UINT> em = designUnits();
        return em && selectAt(wanted, static_cast<int>(*em));
    }

    std::wstring faceName() const {
        std::array<wchar_t, LF_FACESIZE> name{};
        GetTextFaceW(dc_, LF_FACESIZE, name.data());
        return name.data();
    }

private:
    bool selectAt(LOGFONTW wanted, int em) {
        wanted.lfHeight = -em;
        return dc_ && select(CreateFontIndirectW(&wanted));
    }

    // Takes the font; null: goes back to the context's own.
    bool select(HFONT font) {
        if (dc_ && previous_) {
            SelectObject(dc_, previous_);
        }
        if (font_) {
            DeleteObject(font_);
        }
        font_ = font;
        previous_ = font ? SelectObject(dc_, font) : nullptr;
        return previous_ != nullptr;
    }

    std::optional<UINT> designUnits() const {
        const UINT size = GetOutlineTextMetricsW(dc_, 0, nullptr);
        if (size < sizeof(OUTLINETEXTMETRICW)) {
            return std::nullopt;
        }
        std::vector<std::byte> buffer(size);
        auto* metrics = reinterpret_cast<OUTLINETEXTMETRICW*>(buffer.data());
        metrics->otmSize = size;
        if (GetOutlineTextMetricsW(dc_, size, metrics) == 0 || metrics->otmEMSquare == 0) {
            return std::nullopt;
        }
        return metrics->otmEMSquare;
    }

    HDC dc_;
    HFONT font_ = nullptr;
    HGDIOBJ previous_ = nullptr;
};

AcGePoint2d toPoint(const POINTFX& point) {
    const auto toReal = [](const FIXED& value) { return value.value + value.fract / 65536.0; };
    return {toReal(point.x), toReal(point.y)};
}

// Flattens quadratic curves by halving the parameter until the chord is close enough.
class ContourBuilder {
public:
    ContourBuilder(AcGePoint2d start, double tolerance) : tolerance_(tolerance) { points_.push_back(start); }

    void lineTo(AcGePoint2d end) { points_.push_back(end); }

    // A parabola's distance from its chord is a quarter of the control triangle's height; n pieces divide it
    // by n².
    void quadraticTo(AcGePoint2d control, AcGePoint2d end) {
        const AcGePoint2d start = points_.back();
        const AcGeVector2d bend = (control - start) - (end - control);
        const int pieces = pieceCount(bend.length() / 4);
        for (int i = 1; i <= pieces; ++i) {
            const double t = static_cast<double>(i) / pieces;
            const double s = 1 - t;
            points_.push_back({s * s * start.x + 2 * s * t * control.x + t * t * end.x,
                               s * s * start.y + 2 * s * t * control.y + t * t * end.y});
        }
    }

    void cubicTo(AcGePoint2d first, AcGePoint2d second, AcGePoint2d end) {
        const AcGePoint2d start = points_.back();
        const double bend = std::max(((first - start) - (second - first)).length(),
                                     ((second - first) - (end - second)).length());
        const int pieces = pieceCount(bend * 0.75);
        for (int i = 1; i <= pieces; ++i) {
            const double t = static_cast<double>(i) / pieces;
            const double s = 1 - t;
            const double a = s * s * s, b = 3 * s * s * t, c = 3 * s * t * t, d = t * t * t;
            points_.push_back({a * start.x + b * first.x + c * second.x + d * end.x,
                               a * start.y + b * first.y + c * second.y + d * end.y});
        }
    }

    Contour finish() {
        while (points_.size() > 1 && points_.back().x == points_.front().x &&
               points_.back().y == points_.front().y) {
            points_.pop_back();
        }
        return std::move(points_);
    }

private:
    int pieceCount(double chordDistance) const {
        return std::clamp(static_cast<int>(std::ceil(std::sqrt(chordDistance / tolerance_))), 1, 64);
    }

    Contour points_;
    double tolerance_;
};

// The curve's points are control points of quadratic splines, with the on-curve points between them left out.
void addQuadraticSpline(ContourBuilder& contour, const TTPOLYCURVE& curve) {
    for (int i = 0; i + 1 < curve.cpfx; ++i) {
        const AcGePoint2d control = toPoint(curve.apfx[i]);
        const AcGePoint2d next = toPoint(curve.apfx[i + 1]);
        const bool last = i + 2 == curve.cpfx;
        contour.quadraticTo(control,
                            last ? next : AcGePoint2d{(control.x + next.x) / 2, (control.y + next.y) / 2});
    }
}

void addCurve(ContourBuilder& contour, const TTPOLYCURVE& curve) {
    if (curve.wType == TT_PRIM_QSPLINE) {
        addQuadraticSpline(contour, curve);
    } else if (curve.wType == TT_PRIM_CSPLINE) {
        for (int i = 0; i + 2 < curve.cpfx; i += 3) {
            contour.cubicTo(toPoint(curve.apfx[i]), toPoint(curve.apfx[i + 1]), toPoint(curve.apfx[i + 2]));
        }
    } else {
        for (int i = 0; i < curve.cpfx; ++i) {
            contour.lineTo(toPoint(curve.apfx[i]));
        }
    }
}

// data: what GetGlyphOutline gives for GGO_NATIVE, a chain of polygons, each a chain of curves.
std::vector<Contour> readPolygons(const std::vector<std::byte>& data, double tolerance) {
    std::vector<Contour> contours;
    std::size_t at = 0;
    while (at + sizeof(TTPOLYGONHEADER) <= data.size()) {
        const auto* polygon = reinterpret_cast<const TTPOLYGONHEADER*>(data.data() + at);
        const std::size_t end = std::min(data.size(), at + polygon->cb);
        if (polygon->cb < sizeof(TTPOLYGONHEADER)) {
            break;
        }
        ContourBuilder contour(toPoint(polygon->pfxStart), tolerance);
        at += sizeof(TTPOLYGONHEADER);
        while (at + offsetof(TTPOLYCURVE, apfx) < end) {
            const auto* curve = reinterpret_cast<const TTPOLYCURVE*>(data.data() + at);
            const std::size_t size = offsetof(TTPOLYCURVE, apfx) + curve->cpfx * sizeof(POINTFX);
            if (at + size > end) {
                break;
            }
            addCurve(contour, *curve);
            at += size;
        }
        at = end;
        contours.push_back(contour.finish());
    }
    return contours;
}

class TrueTypeFont : public Font {
public:
    TrueTypeFont(std::wstring familyName, std::unique_ptr<FaceContext> face)
        : Font(std::move(familyName)), face_(std::move(face)) {
        const double capHeight = readGlyph(U'H', 1).ink.maxY;
        if (capHeight > 0) {
            unit_ = 1 / capHeight;
        }
    }

protected:
    Glyph makeGlyph(char32_t character) const override { return readGlyph(standIn(character), unit_); }

private:
    static constexpr MAT2 kIdentity = {{0, 1}, {0, 0}, {0, 0}, {0, 1}};

    // The diameter sign is in few faces; the letter that looks like it is in most.
    char32_t standIn(char32_t character) const {
        constexpr char32_t kDiameter = 0x2300, kSlashedO = 0xD8;
        return character == kDiameter && !has(kDiameter) && has(kSlashedO) ? kSlashedO : character;
    }

    bool has(char32_t character) const {
        const wchar_t unit = static_cast<wchar_t>(character);
        WORD index = 0;
        return GetGlyphIndicesW(face_->dc(), &unit, 1, &index, GGI_MARK_NONEXISTING_GLYPHS) == 1 &&
               index != 0xFFFF;
    }

    // Design units times scale. Characters beyond the first plane show the face's sign for missing ones
    // (index 0).
    Glyph readGlyph(char32_t character, double scale) const {
        const bool reachable = character < 0x10000;
        const UINT code = reachable ? static_cast<UINT>(character) : 0;
        const UINT format = GGO_NATIVE | GGO_UNHINTED | (reachable ? 0u : static_cast<UINT>(GGO_GLYPH_INDEX));
        Glyph glyph;
        if (character < L' ') {
            return glyph;
        }
        GLYPHMETRICS metrics{};
        const DWORD size = GetGlyphOutlineW(face_->dc(), code, format, &metrics, 0, nullptr, &kIdentity);
        if (size == GDI_ERROR) {
            return glyph;
        }
        glyph.advance = metrics.gmCellIncX * scale;
        glyph.outline.filled = true;
        std::vector<std::byte> data(size);
        if (size > 0 && GetGlyphOutlineW(face_->dc(), code, format, &metrics, size, data.data(),
                                         &kIdentity) != GDI_ERROR) {
            glyph.outline.contours = readPolygons(data, kFlatness / unit_);
        }
        for (Contour& contour : glyph.outline.contours) {
            for (AcGePoint2d& point : contour) {
                point = {point.x * scale, point.y * scale};
            }
        }
        if (scale == 1) {
            measureInk(glyph);
        }
        return glyph;
    }

    std::unique_ptr<FaceContext> face_;
    double unit_ = 1.0 / 1400;  // of a design unit; the usual height of capitals, for faces without an H
};

struct FileFace {
    std::wstring_view file;
    std::wstring_view family;
    bool bold = false, italic = false;
};

// The files that drawings name most, so that they mean the same whatever is installed.
constexpr FileFace kUsualFiles[] = {
    {L"arial.ttf", L"Arial"},
    {L"arialbd.ttf", L"Arial", true},
    {L"ariali.ttf", L"Arial", false, true},
    {L"arialbi.ttf", L"Arial", true, true},
    {L"arialn.ttf", L"Arial Narrow"},
    {L"calibri.ttf", L"Calibri"},
    {L"cour.ttf", L"Courier New"},
    {L"courbd.ttf", L"Courier New", true},
    {L"tahoma.ttf", L"Tahoma"},
    {L"times.ttf", L"Times New Roman"},
    {L"timesbd.ttf", L"Times New Roman", true},
    {L"timesi.ttf", L"Times New Roman", false, true},
    {L"timesbi.ttf", L"Times New Roman", true, true},
    {L"verdana.ttf", L"Verdana"},
    {L"verdanab.ttf", L"Verdana", true},
};

bool sameName(std::wstring_view a, std::wstring_view b) {
    return CompareStringOrdinal(a.data(), static_cast<int>(a.size()), b.data(), static_cast<int>(b.size()),
                                TRUE) == CSTR_EQUAL;
}

std::optional<TextFont> installedFace(std::wstring_view fileName) {
    std::array<wchar_t, MAX_PATH> windows{};
    const UINT length = GetWindowsDirectoryW(windows.data(), MAX_PATH);
    if (length == 0 || length >= MAX_PATH) {
        return std::nullopt;
    }
    return readFontFile(std::filesystem::path(windows.data()) / L"Fonts" / fileName);
}

}  // namespace

std::unique_ptr<Font> openTrueTypeFont(const std::wstring& family, bool bold, bool italic) {
    auto face = std::make_unique<FaceContext>();
    if (!face->open(family, bold, italic)) {
        return nullptr;
    }
    std::wstring name = face->faceName();
    return std::make_unique<TrueTypeFont>(name.empty() ? family : std::move(name), std::move(face));
}

TextFont faceOfFile(std::wstring_view fileName) {
    for (const FileFace& usual : kUsualFiles) {
        if (sameName(usual.file, fileName)) {
            return {{}, std::wstring(usual.family), usual.bold, usual.italic};
        }
    }
    if (std::optional<TextFont> installed = installedFace(fileName)) {
        return *installed;
    }
    return {{}, std::wstring(fileName.substr(0, fileName.rfind(L'.'))), false, false};
}

}  // namespace drafthost::text
