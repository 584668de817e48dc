#pragma once

// What the objects that screen readers hold of a grid have in common.

#include <windows.h>

#include <oleacc.h>

#include <atomic>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "module/grid/grid_accessible.h"
#include "module/grid/grid_control.h"

namespace tessary {

// id: where an id lies, at any address.
inline bool sameId(const void* id, const IID& known) {
    return std::memcmp(id, &known, sizeof known) == 0;
}

// Results; the VARIANT is empty before.
HRESULT returnText(const std::wstring& text, BSTR* result);
void returnChild(long child, VARIANT* result);
// Takes over the reference.
void returnObject(IDispatch* object, VARIANT* result);
// The selected rows of the table, or columns of a row. None: empty. One: itself. Several: an enumerator.
HRESULT returnSelection(const std::shared_ptr<GridAccessible>& link, std::vector<int> numbers, bool rows,
                        VARIANT* result);

// Of table and rows: checking the arguments and whether the grid is still there. The derived
// classes answer for a child, or for themselves when it is CHILDID_SELF.
class GridObject : public IAccessible {
public:
    explicit GridObject(std::shared_ptr<GridAccessible> link) : link_(std::move(link)) {}
    virtual ~GridObject() = default;

    // Calls from other processes bring ids that lie at odd addresses, in tables of their own layout.
    [[gnu::no_sanitize("alignment")]] STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
        if (!object)
            return E_POINTER;
        const bool known = sameId(&iid, __uuidof(IUnknown)) || sameId(&iid, __uuidof(IDispatch)) ||
                           sameId(&iid, __uuidof(IAccessible));
        *object = known ? static_cast<IAccessible*>(this) : nullptr;
        if (known)
            AddRef();
        return known ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
    STDMETHODIMP_(ULONG) Release() override {
        const ULONG left = --references_;
        if (left == 0)
            delete this;
        return left;
    }

    // Screen readers use the virtual table.
    STDMETHODIMP GetTypeInfoCount(UINT* count) override {
        if (!count)
            return E_POINTER;
        *count = 0;
        return S_OK;
    }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return E_NOTIMPL;
    }

    STDMETHODIMP get_accChildCount(long* count) override {
        if (!count)
            return E_POINTER;
        *count = 0;
        if (!connected())
            return CO_E_OBJNOTCONNECTED;
        *count = childCount();
        return S_OK;
    }
    STDMETHODIMP get_accParent(IDispatch** parent) override {
        if (!parent)
            return E_POINTER;
        *parent = nullptr;
        return connected() ? parentObject(parent) : CO_E_OBJNOTCONNECTED;
    }
    STDMETHODIMP get_accChild(VARIANT which, IDispatch** child) override {
        if (child)
            *child = nullptr;
        const HRESULT valid = check(which, child);
        if (FAILED(valid) || which.lVal == CHILDID_SELF)
            return FAILED(valid) ? valid : E_INVALIDARG;
        *child = childObject(which.lVal);
        return *child ? S_OK : S_FALSE;  // not an object of its own
    }
    STDMETHODIMP get_accName(VARIANT which, BSTR* result) override {
        return text(which, result, &GridObject::name);
    }
    STDMETHODIMP get_accValue(VARIANT which, BSTR* result) override {
        return text(which, result, &GridObject::value);
    }
    STDMETHODIMP get_accDefaultAction(VARIANT which, BSTR* result) override {
        return text(which, result, &GridObject::action);
    }
    STDMETHODIMP get_accDescription(VARIANT, BSTR* result) override { return noText(result); }
    STDMETHODIMP get_accHelp(VARIANT, BSTR* result) override { return noText(result); }
    STDMETHODIMP get_accHelpTopic(BSTR* file, VARIANT, long*) override { return noText(file); }
    STDMETHODIMP get_accKeyboardShortcut(VARIANT, BSTR* result) override { return noText(result); }

    STDMETHODIMP get_accRole(VARIANT which, VARIANT* result) override {
        return number(which, result, &GridObject::role);
    }
    STDMETHODIMP get_accState(VARIANT which, VARIANT* result) override {
        return number(which, result, &GridObject::state);
    }
    STDMETHODIMP get_accFocus(VARIANT* result) override {
        const HRESULT valid = check(result);
        return FAILED(valid) ? valid : focus(result);
    }
    STDMETHODIMP get_accSelection(VARIANT* result) override {
        const HRESULT valid = check(result);
        return FAILED(valid) ? valid : selection(result);
    }
    STDMETHODIMP accLocation(long* left, long* top, long* width, long* height, VARIANT which) override {
        if (!left || !top || !width || !height)
            return E_POINTER;
        *left = *top = *width = *height = 0;
        const HRESULT valid = check(which, left);
        RECT area{};
        if (FAILED(valid) || !location(which.lVal, area))
            return FAILED(valid) ? valid : S_FALSE;
        *left = area.left;
        *top = area.top;
        *width = area.right - area.left;
        *height = area.bottom - area.top;
        return S_OK;
    }
    STDMETHODIMP accHitTest(long left, long top, VARIANT* result) override {
        const HRESULT valid = check(result);
        if (FAILED(valid))
            return valid;
        POINT point{left, top};
        ScreenToClient(grid().handle(), &point);
        RECT client{};
        GetClientRect(grid().handle(), &client);
        return PtInRect(&client, point) ? hit(grid().cellAt(point), result) : S_FALSE;
    }
    STDMETHODIMP accNavigate(long direction, VARIANT from, VARIANT* result) override {
        const HRESULT valid = check(result);
        const HRESULT validFrom = check(from, result);
        if (FAILED(valid) || FAILED(validFrom))
            return FAILED(valid) ? valid : validFrom;
        return navigate(direction, from.lVal, result);
    }
    STDMETHODIMP accSelect(long flags, VARIANT which) override {
        const HRESULT valid = check(which, this);
        return FAILED(valid) ? valid : select(flags, which.lVal);
    }
    STDMETHODIMP accDoDefaultAction(VARIANT which) override {
        const HRESULT valid = check(which, this);
        if (FAILED(valid))
            return valid;
        return act(which.lVal) ? S_OK : DISP_E_MEMBERNOTFOUND;
    }
    STDMETHODIMP put_accName(VARIANT, BSTR) override { return DISP_E_MEMBERNOTFOUND; }
    STDMETHODIMP put_accValue(VARIANT which, BSTR text) override {
        const HRESULT valid = check(which, this);
        if (FAILED(valid))
            return valid;
        return setValue(which.lVal, text ? std::wstring(text, SysStringLen(text)) : std::wstring());
    }

protected:
    using Text = std::optional<std::wstring>;

    CGridCtrl& grid() const { return *link_->grid(); }
    const GridAccessible& link() const { return *link_; }
    const std::shared_ptr<GridAccessible>& sharedLink() const { return link_; }

    virtual bool connected() const { return link_->grid() && link_->grid()->handle(); }
    virtual long childCount() const = 0;
    virtual HRESULT parentObject(IDispatch** parent) const = 0;
    virtual IDispatch* childObject(long) const { return nullptr; }
    virtual Text name(long child) const = 0;
    virtual Text value(long child) const = 0;
    virtual Text action(long child) const = 0;
    virtual long role(long child) const = 0;
    virtual long state(long child) const = 0;
    virtual bool location(long child, RECT& area) const = 0;
    virtual HRESULT focus(VARIANT* result) const = 0;
    virtual HRESULT selection(VARIANT* result) const = 0;
    virtual HRESULT hit(const GridPosition& cell, VARIANT* result) const = 0;
    virtual HRESULT navigate(long direction, long from, VARIANT* result) const = 0;
    virtual HRESULT select(long flags, long child) const = 0;
    virtual bool act(long child) const = 0;
    virtual HRESULT setValue(long child, const std::wstring& text) const = 0;

private:
    // result: only looked at for null.
    HRESULT check(const VARIANT& which, const void* result) const {
        if (!result)
            return E_POINTER;
        if (!connected())
            return CO_E_OBJNOTCONNECTED;
        const bool valid = which.vt == VT_I4 && which.lVal >= CHILDID_SELF && which.lVal <= childCount();
        return valid ? S_OK : E_INVALIDARG;
    }
    HRESULT check(VARIANT* result) const {
        if (!result)
            return E_POINTER;
        VariantInit(result);
        return connected() ? S_OK : CO_E_OBJNOTCONNECTED;
    }
    HRESULT text(const VARIANT& which, BSTR* result, Text (GridObject::*get)(long) const) const {
        if (result)
            *result = nullptr;
        const HRESULT valid = check(which, result);
        if (FAILED(valid))
            return valid;
        const Text found = (this->*get)(which.lVal);
        return found ? returnText(*found, result) : S_FALSE;
    }
    HRESULT number(const VARIANT& which, VARIANT* result, long (GridObject::*get)(long) const) const {
        if (result)
            VariantInit(result);
        const HRESULT valid = check(which, result);
        if (SUCCEEDED(valid))
            returnChild((this->*get)(which.lVal), result);
        return valid;
    }
    static HRESULT noText(BSTR* result) {
        if (!result)
            return E_POINTER;
        *result = nullptr;
        return S_FALSE;
    }

    std::atomic<ULONG> references_ = 1;
    std::shared_ptr<GridAccessible> link_;
};

}  // namespace tessary
