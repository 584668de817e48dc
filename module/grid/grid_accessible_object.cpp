#include "module/grid/grid_accessible_object.h"

#include <algorithm>

#include "module/grid/grid_accessible_objects.h"

namespace tessary {

namespace {

// The selected children of an object, made as they are asked for. rows: they are rows of the table and not
// cells of a row.
class Selection final : public IEnumVARIANT {
public:
    Selection(std::shared_ptr<GridAccessible> link, std::vector<int> numbers, bool rows)
        : link_(std::move(link)), numbers_(std::move(numbers)), rows_(rows) {}
    virtual ~Selection() = default;

    [[gnu::no_sanitize("alignment")]] STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
        if (!object)
            return E_POINTER;
        const bool known = sameId(&iid, __uuidof(IUnknown)) || sameId(&iid, __uuidof(IEnumVARIANT));
        *object = known ? static_cast<IEnumVARIANT*>(this) : nullptr;
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
    STDMETHODIMP Next(ULONG count, VARIANT* results, ULONG* fetched) override {
        if (!results)
            return E_POINTER;
        ULONG taken = 0;
        for (; taken < count && position_ < numbers_.size(); ++taken, ++position_)
            give(numbers_[position_], &results[taken]);
        if (fetched)
            *fetched = taken;
        return taken == count ? S_OK : S_FALSE;
    }
    STDMETHODIMP Skip(ULONG count) override {
        const std::size_t left = numbers_.size() - position_;
        position_ += std::min<std::size_t>(count, left);
        return count <= left ? S_OK : S_FALSE;
    }
    STDMETHODIMP Reset() override {
        position_ = 0;
        return S_OK;
    }
    STDMETHODIMP Clone(IEnumVARIANT** result) override {
        if (!result)
            return E_POINTER;
        auto* const copy = new Selection(link_, numbers_, rows_);
        copy->position_ = position_;
        *result = copy;
        return S_OK;
    }

private:
    void give(int number, VARIANT* result) const {
        if (rows_) {
            returnObject(makeRowObject(link_, number), result);
        } else {
            returnChild(number + 1, result);
        }
    }

    std::atomic<ULONG> references_ = 1;
    std::shared_ptr<GridAccessible> link_;
    std::vector<int> numbers_;
    bool rows_;
    std::size_t position_ = 0;
};

}  // namespace

HRESULT returnText(const std::wstring& text, BSTR* result) {
    *result = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    return *result ? S_OK : E_OUTOFMEMORY;
}

void returnChild(long child, VARIANT* result) {
    result->vt = VT_I4;
    result->lVal = child;
}

void returnObject(IDispatch* object, VARIANT* result) {
    result->vt = VT_DISPATCH;
    result->pdispVal = object;
}

HRESULT returnSelection(const std::shared_ptr<GridAccessible>& link, std::vector<int> numbers, bool rows,
                        VARIANT* result) {
    if (numbers.empty())
        return S_OK;
    if (numbers.size() == 1) {
        if (rows) {
            returnObject(makeRowObject(link, numbers.front()), result);
        } else {
            returnChild(numbers.front() + 1, result);
        }
        return S_OK;
    }
    result->vt = VT_UNKNOWN;
    result->punkVal = new Selection(link, std::move(numbers), rows);
    return S_OK;
}

}  // namespace tessary
