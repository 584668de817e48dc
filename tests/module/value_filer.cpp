#include "tests/module/value_filer.h"

#include <sstream>

namespace tessary::testing {

namespace {

struct Shower {
    std::ostringstream& text;
    void operator()(bool value) const { text << "bool " << value; }
    void operator()(std::int32_t value) const { text << "int32 " << value; }
    void operator()(double value) const { text << "double " << value; }
    void operator()(const AcGePoint3d& point) const {
        text << "point " << point.x << " " << point.y << " " << point.z;
    }
    void operator()(const FiledId& filed) const {
        constexpr const char* kinds[] = {"soft owner ", "hard owner ", "soft pointer ", "hard pointer "};
        text << kinds[filed.kind] << std::hex << std::uppercase << filed.id.handle().value();
    }
    template <class T>
    void operator()(const T&) const {
        text << "other " << FiledValue(T()).index();
    }
};

}  // namespace

std::string shown(const FiledValue& value) {
    std::ostringstream text;
    std::visit(Shower{text}, value);
    return text.str();
}

std::vector<std::string> shown(const FiledValues& values) {
    std::vector<std::string> texts;
    for (const FiledValue& value : values) {
        texts.push_back(shown(value));
    }
    return texts;
}

AcDb::FilerType ValueFiler::filerType() const {
    ++typeQuestions;
    return type_;
}

Acad::ErrorStatus ValueFiler::dwgVersion(int& version, int& maintenanceVersion) const {
    version = maintenanceVersion = 1;
    return Acad::eOk;
}

Acad::ErrorStatus ValueFiler::readString(ACHAR** text) {
    std::wstring found;
    const Acad::ErrorStatus result = read(&found);
    if (result == Acad::eOk) {
        acutNewString(found.c_str(), *text);
    }
    return result;
}

Acad::ErrorStatus ValueFiler::readBytes(void* bytes, std::uint32_t size) {
    std::vector<std::uint8_t> found;
    const Acad::ErrorStatus result = read(&found);
    if (result != Acad::eOk || found.size() != size) {
        return result != Acad::eOk ? result : Acad::eFilerError;
    }
    std::copy(found.begin(), found.end(), static_cast<std::uint8_t*>(bytes));
    return Acad::eOk;
}

Acad::ErrorStatus ValueFiler::writeBytes(const void* bytes, std::uint32_t size) {
    const auto* const first = static_cast<const std::uint8_t*>(bytes);
    return write(std::vector<std::uint8_t>(first, first + size));
}

Acad::ErrorStatus ValueFiler::readId(AcDbObjectId* id) {
    FiledId found{};
    const Acad::ErrorStatus result = read(&found);
    if (result == Acad::eOk) {
        *id = found.id;
    }
    return result;
}

}  // namespace tessary::testing
