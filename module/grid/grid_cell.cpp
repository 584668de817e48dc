#include "module/grid/grid_cell.h"

#include <algorithm>
#include <charconv>
#include <cwchar>
#include <limits>
#include <numeric>
#include <optional>

namespace tessary {
namespace {

// Shorter lists are searched from the beginning.
constexpr std::size_t shortList = 16;

const std::wstring noText;

// The numbers of the values in ascending order of the values; equal ones stay in their order.
template <class Value>
std::vector<std::uint32_t> ascendingOrder(const std::vector<Value>& values) {
    std::vector<std::uint32_t> order(values.size());
    std::iota(order.begin(), order.end(), 0U);
    std::ranges::stable_sort(order, {}, [&](std::uint32_t i) -> const Value& { return values[i]; });
    return order;
}

template <class Value, class Sought>
int findFirst(const std::vector<Value>& values, std::vector<std::uint32_t>& order, const Sought& sought) {
    if (values.size() <= shortList) {
        auto found = std::ranges::find(values, sought);
        return found == values.end() ? -1 : static_cast<int>(found - values.begin());
    }
    if (order.size() != values.size()) {
        order = ascendingOrder(values);
    }
    auto at = std::lower_bound(order.begin(), order.end(), sought,
                               [&](std::uint32_t i, const Sought& value) { return values[i] < value; });
    return at != order.end() && values[*at] == sought ? static_cast<int>(*at) : -1;
}

// The whole text as a decimal integer.
std::optional<int> integerOf(const std::wstring& text) {
    char digits[16] = {};
    if (text.empty() || text.size() > std::size(digits) ||
        !std::ranges::all_of(text, [](wchar_t c) { return c == L'-' || (c >= L'0' && c <= L'9'); })) {
        return std::nullopt;
    }
    std::ranges::transform(text, digits, [](wchar_t c) { return static_cast<char>(c); });
    const char* end = digits + text.size();
    int value = 0;
    auto [stop, error] = std::from_chars(digits, end, value);
    return error == std::errc() && stop == end ? std::optional(value) : std::nullopt;
}

}  // namespace

int GridChoices::find(std::wstring_view text) const {
    return findFirst(texts, textOrder, text);
}

int GridChoices::findDatum(int datum) const {
    int choice = findFirst(data, datumOrder, datum);
    return choice < static_cast<int>(texts.size()) ? choice : -1;
}

int GridChoices::datumOf(int choice) const {
    return choice >= 0 && choice < static_cast<int>(data.size()) ? data[static_cast<std::size_t>(choice)] : 0;
}

int CGridCellCombo::selectedChoice() const {
    if (!choices_) {
        return -1;
    }
    if (lookedUp_) {
        std::optional<int> datum = integerOf(text());
        int choice = !datum                                              ? -1
                     : !choices_->data.empty()                           ? choices_->findDatum(*datum)
                     : *datum < static_cast<int>(choices_->texts.size()) ? *datum
                                                                         : -1;
        if (choice >= 0) {
            return choice;
        }
    }
    return choices_->find(text());
}

int CGridCellCombo::selectedData() const {
    return choices_ ? choices_->datumOf(selectedChoice()) : 0;
}

const std::wstring& CGridCellCombo::shownText() const {
    int choice = lookedUp_ ? selectedChoice() : -1;
    return choice >= 0 ? choices_->texts[static_cast<std::size_t>(choice)] : text();
}

void CGridCellCombo::setShownText(std::wstring_view text) {
    int choice = lookedUp_ && choices_ ? choices_->find(text) : -1;
    if (choice < 0) {
        setText(text);
    } else {
        setText(std::to_wstring(choices_->data.empty() ? choice : choices_->datumOf(choice)));
    }
}

const std::wstring& CGridBtnCell::text() const {
    static const std::wstring checked = L"1", unchecked = L"0";
    return checked_ ? checked : unchecked;
}

const std::wstring& CGridBtnCell::shownText() const {
    return noText;
}

}  // namespace tessary
