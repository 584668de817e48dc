#include <cmath>

#include "host/database/class_registry.h"
#include "host/database/database_impl.h"
#include "host/database/table_states.h"

using namespace drafthost;

DRAFTHOST_DEFINE_CLASS(AcDbLinetypeTableRecord, AcDbSymbolTableRecord, L"LTYPE",
                       &drafthost::constructObject<AcDbLinetypeTableRecord>)

namespace {

constexpr int kMaxDashes = 12;

// The count is written from the elements, behind which each element's groups follow.
void writeElements(const ObjectState& state, const DxfField&, GroupFiler& filer) {
    const auto& linetype = static_cast<const LinetypeState&>(state);
    filer.writeInt16(73, static_cast<std::int16_t>(linetype.elements.size()));
    filer.writeItem(40, linetype.patternLength);
    for (const LinetypeElement& element : linetype.elements) {
        filer.writeItem(49, element.length);
        if (element.embedded.empty())
            filer.writeInt16(74, 0);
        for (const DxfGroup& group : element.embedded)
            filer.add(group);
    }
}

bool ignore(ObjectState&, const DxfField&, const DxfGroup&, AcDbDatabase*) {
    return true;
}
void writeNothing(const ObjectState&, const DxfField&, GroupFiler&) {}

constexpr DxfField kFields[] = {
    dxfField<&LinetypeState::name>(2),
    dxfField<&LinetypeState::flags>(70),
    {3,
     [](const ObjectState& state, const DxfField&, GroupFiler& filer) {
         filer.writeItem(3, static_cast<const LinetypeState&>(state).comments.c_str());
     },
     [](ObjectState& state, const DxfField&, const DxfGroup& group, AcDbDatabase*) {
         return detail::readValue(group, static_cast<LinetypeState&>(state).comments);
     }},
    dxfField<&LinetypeState::alignment>(72),
    {73, writeElements, ignore},
    {40, writeNothing,
     [](ObjectState& state, const DxfField&, const DxfGroup& group, AcDbDatabase*) {
         return detail::readValue(group, static_cast<LinetypeState&>(state).patternLength);
     }},
};

bool takeElement(ObjectState& state, const DxfGroup& group, AcDbDatabase*) {
    auto& elements = static_cast<LinetypeState&>(state).elements;
    if (group.code == 49) {
        LinetypeElement element;
        if (!detail::readValue(group, element.length))
            return false;
        elements.push_back(std::move(element));
        return true;
    }
    const bool embedded = group.code == 74 || group.code == 75 || group.code == 340 || group.code == 46 ||
                          group.code == 50 || group.code == 44 || group.code == 45 || group.code == 9;
    if (!embedded || elements.empty())
        return false;
    elements.back().embedded.push_back(group);
    return true;
}

}  // namespace

AcDbLinetypeTableRecord::AcDbLinetypeTableRecord() : AcDbSymbolTableRecord(newImp<LinetypeState>()) {}

const ACHAR* AcDbLinetypeTableRecord::comments() const {
    return readState<LinetypeState>(this).comments.c_str();
}

int AcDbLinetypeTableRecord::numDashes() const {
    return static_cast<int>(readState<LinetypeState>(this).elements.size());
}

double AcDbLinetypeTableRecord::dashLengthAt(int index) const {
    return index < 0 || index >= numDashes()
               ? 0
               : readState<LinetypeState>(this).elements[static_cast<std::size_t>(index)].length;
}

double AcDbLinetypeTableRecord::patternLength() const {
    return readState<LinetypeState>(this).patternLength;
}

Acad::ErrorStatus AcDbLinetypeTableRecord::setPattern(const ACHAR* comments, const double* lengths,
                                                      int count) {
    if (count < 0 || count > kMaxDashes || (count > 0 && !lengths))
        return Acad::eInvalidInput;
    for (int i = 0; i < count; ++i) {
        if (!std::isfinite(lengths[i]))
            return Acad::eInvalidInput;
    }
    auto* const state = writeState<LinetypeState>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    state->comments = comments ? comments : L"";
    state->elements.clear();
    state->patternLength = 0;
    for (int i = 0; i < count; ++i) {
        state->elements.push_back({lengths[i], {}});
        state->patternLength += std::abs(lengths[i]);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLinetypeTableRecord::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const auto status = AcDbSymbolTableRecord::dxfOutFields(filer); status != Acad::eOk)
        return status;
    return writeSubclass(filer, L"AcDbLinetypeTableRecord", readState<LinetypeState>(this), kFields);
}

Acad::ErrorStatus AcDbLinetypeTableRecord::dxfInFields(AcDbDxfFiler* filer) {
    if (const auto status = AcDbSymbolTableRecord::dxfInFields(filer); status != Acad::eOk)
        return status;
    auto* const state = writeState<LinetypeState>(this);
    state->elements.clear();
    return readSubclass(filer, L"AcDbLinetypeTableRecord", *state, kFields, takeElement);
}
