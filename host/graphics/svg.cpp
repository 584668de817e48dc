#include <charconv>
#include <cmath>
#include <numbers>

#include "host/graphics/picture.h"

namespace drafthost::graphics {

namespace {

class SvgWriter {
public:
    explicit SvgWriter(const PictureFrame& frame) : frame_(frame) {
        text_ = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + std::to_string(frame.width) +
                "\" height=\"" + std::to_string(frame.height) + "\" viewBox=\"0 0 " +
                std::to_string(frame.width) + ' ' + std::to_string(frame.height) +
                "\">\n<rect width=\"100%\" height=\"100%\" fill=\"" + colorText(kBackground) +
                "\"/>\n<g fill=\"none\" stroke-linecap=\"round\" stroke-linejoin=\"round\">\n";
    }
    std::string finish() {
        closePath();
        return std::move(text_) + "</g>\n</svg>\n";
    }
    void add(const DisplayItem& item) {
        const std::string style = std::holds_alternative<Area2d>(item.shape)
                                      ? areaStyle(item.color, std::get<Area2d>(item.shape).evenOdd)
                                      : lineStyle(item.color, item.weight);
        if (style != style_) {
            closePath();
            style_ = style;
            text_ += "<path " + style + " d=\"";
        }
        std::visit([this](const auto& shape) { addShape(shape); }, item.shape);
    }

private:
    static std::string colorText(Rgb color) {
        constexpr char kDigits[] = "0123456789abcdef";
        std::string text = "#";
        for (const int part : {color.red, color.green, color.blue}) {
            text += kDigits[part >> 4];
            text += kDigits[part & 15];
        }
        return text;
    }
    static std::string number(double value) {
        char buffer[40];
        const auto end =
            std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, 2).ptr;
        std::string text(buffer, end);
        while (text.back() == '0')
            text.pop_back();
        if (text.back() == '.')
            text.pop_back();
        return text == "-0" ? "0" : text;
    }
    static std::string lineStyle(Rgb color, float weight) {
        return "stroke=\"" + colorText(color) + "\" stroke-width=\"" + number(strokePixels(weight)) + '"';
    }
    static std::string areaStyle(Rgb color, bool evenOdd) {
        return "fill=\"" + colorText(color) + (evenOdd ? "\" fill-rule=\"evenodd\"" : "\"");
    }
    void closePath() {
        if (!style_.empty())
            text_ += "\"/>\n";
        style_.clear();
    }
    void point(char command, const AcGePoint2d& plan) {
        const AcGePoint2d pixel = frame_.toPixel(plan);
        text_ += command;
        text_ += number(pixel.x) + ' ' + number(pixel.y);
    }
    void addPoints(const std::vector<AcGePoint2d>& points) {
        for (std::size_t i = 0; i < points.size(); ++i)
            point(i ? 'L' : 'M', points[i]);
    }
    void addShape(const Polyline2d& line) {
        addPoints(line.points);
        // A dot is a line of no length: round caps make it visible, but only for a path that moves.
        if (line.points.size() == 1)
            point('L', line.points[0]);
    }
    void addShape(const Area2d& area) {
        for (const auto& contour : area.contours) {
            if (contour.size() < 3)
                continue;
            addPoints(contour);
            text_ += 'Z';
        }
    }
    void addShape(const Arc2d& arc) {
        point('M', arc.at(0));
        // In parts, since one arc command cannot draw a full turn.
        const int parts = std::fabs(arc.sweep) > 0.9 * std::numbers::pi ? 3 : 1;
        const std::string radius = number(arc.radius * frame_.scale);
        for (int i = 1; i <= parts; ++i) {
            text_ += 'A' + radius + ' ' + radius + " 0 0 " + (arc.sweep > 0 ? '0' : '1') + ' ';
            const AcGePoint2d pixel = frame_.toPixel(arc.at(double(i) / parts));
            text_ += number(pixel.x) + ' ' + number(pixel.y);
        }
    }

    const PictureFrame& frame_;
    std::string text_;
    std::string style_;
};

}  // namespace

std::string svgText(const DisplayList& list, const PictureFrame& frame) {
    SvgWriter writer(frame);
    for (const DisplayItem& item : list.items)
        writer.add(item);
    return writer.finish();
}

}  // namespace drafthost::graphics
