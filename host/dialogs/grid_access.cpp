#include "host/dialogs/grid_access.h"

namespace drafthost::dialogs {

namespace {

VARIANT child(int number) {
    VARIANT which;
    VariantInit(&which);
    which.vt = VT_I4;
    which.lVal = number;
    return which;
}

using Getter = HRESULT (STDMETHODCALLTYPE IAccessible::*)(VARIANT, VARIANT*);

// otherwise: what counts where the object does not answer with a number.
long number(IAccessible* object, Getter get, int of, long otherwise) {
    VARIANT result;
    VariantInit(&result);
    if (!object || FAILED((object->*get)(child(of), &result)))
        return otherwise;
    const long value = result.vt == VT_I4 ? result.lVal : otherwise;
    VariantClear(&result);
    return value;
}

}  // namespace

std::optional<GridAccess> GridAccess::of(HWND window) {
    void* object = nullptr;
    if (FAILED(AccessibleObjectFromWindow(window, static_cast<DWORD>(OBJID_CLIENT), __uuidof(IAccessible),
                                          &object)))
        return std::nullopt;
    ComObject<IAccessible> table(static_cast<IAccessible*>(object));
    if (number(table.get(), &IAccessible::get_accRole, CHILDID_SELF, 0) != ROLE_SYSTEM_TABLE)
        return std::nullopt;
    return GridAccess(window, std::move(table));
}

int GridAccess::rows() const {
    long count = 0;
    return SUCCEEDED(table_->get_accChildCount(&count)) ? static_cast<int>(count) : 0;
}

ComObject<IAccessible> GridAccess::rowObject(int row) const {
    IDispatch* found = nullptr;
    if (row < 0 || FAILED(table_->get_accChild(child(row + 1), &found)) || !found)
        return nullptr;
    const ComObject<IDispatch> dispatch(found);
    void* object = nullptr;
    dispatch->QueryInterface(__uuidof(IAccessible), &object);
    return ComObject<IAccessible>(static_cast<IAccessible*>(object));
}

int GridAccess::columns(int row) const {
    const auto object = rowObject(row);
    long count = 0;
    return object && SUCCEEDED(object->get_accChildCount(&count)) ? static_cast<int>(count) : 0;
}

long GridAccess::role(const GridPlace& place) const {
    return number(rowObject(place.row).get(), &IAccessible::get_accRole, place.column + 1, 0);
}

long GridAccess::state(const GridPlace& place) const {
    return number(rowObject(place.row).get(), &IAccessible::get_accState, place.column + 1,
                  STATE_SYSTEM_INVISIBLE);
}

std::wstring GridAccess::text(const GridPlace& place) const {
    const auto object = rowObject(place.row);
    BSTR value = nullptr;
    if (!object || FAILED(object->get_accValue(child(place.column + 1), &value)) || !value)
        return {};
    std::wstring text(value, SysStringLen(value));
    SysFreeString(value);
    return text;
}

RECT GridAccess::area(const GridPlace& place) const {
    const auto object = rowObject(place.row);
    long left = 0, top = 0, width = 0, height = 0;
    if (!object || object->accLocation(&left, &top, &width, &height, child(place.column + 1)) != S_OK)
        return {};
    RECT area{left, top, left + width, top + height};
    MapWindowPoints(nullptr, window_, reinterpret_cast<POINT*>(&area), 2);
    return area;
}

}  // namespace drafthost::dialogs
