// The order of a grid's rows. Callers see the order that equal rows get, which is that of one particular
// quicksort; that one needs quadratic time for some rows that come from use, like two sorted lists one after
// the other. The rows are therefore ranked first, with few comparisons, and the quicksort compares ranks.

#include "module/grid/grid_model.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace tessary {
namespace {

// Two arrays, as the sort mostly runs over the ranks.
struct RankedRows {
    std::vector<int> rank;  // rows that compare equal have the same
    std::vector<int> from;  // where the row stood
};

struct Range {
    int low, high;
};

// The numbers of the cells in ascending order. A merge sort that stays inside its range whatever the compare
// function answers: functions of callers may contradict themselves, and the library's sorts may not bear it.
std::vector<int> ascendingOrder(const std::vector<const CGridCellBase*>& cells, GridCompare compare) {
    std::vector<int> order(cells.size()), merged(cells.size());
    std::iota(order.begin(), order.end(), 0);
    auto isBefore = [&](int a, int b) {
        return compare(cells[static_cast<std::size_t>(a)], cells[static_cast<std::size_t>(b)]) < 0;
    };
    auto count = static_cast<std::ptrdiff_t>(order.size());
    for (std::ptrdiff_t width = 1; width < count; width *= 2) {
        for (std::ptrdiff_t begin = 0; begin < count; begin += 2 * width) {
            auto first = order.begin() + begin;
            auto middle = order.begin() + std::min(begin + width, count);
            auto end = order.begin() + std::min(begin + 2 * width, count);
            std::merge(first, middle, middle, end, merged.begin() + begin, isBefore);
        }
        order.swap(merged);
    }
    return order;
}

RankedRows ranked(const std::vector<const CGridCellBase*>& cells, GridCompare compare, bool ascending) {
    std::vector<int> order = ascendingOrder(cells, compare);
    RankedRows rows{std::vector<int>(cells.size()), std::vector<int>(cells.size())};
    std::iota(rows.from.begin(), rows.from.end(), 0);
    int rank = 0;
    for (std::size_t i = 0; i < order.size(); ++i) {
        auto row = static_cast<std::size_t>(order[i]);
        if (i > 0 && compare(cells[static_cast<std::size_t>(order[i - 1])], cells[row]) != 0) {
            ++rank;
        }
        rows.rank[row] = ascending ? rank : -rank;
    }
    return rows;
}

// Blocks of ranks that the compiler compares at once.
constexpr int block = 16;

// From i up, the first rank that is not below the pivot's; there is one.
int firstNotBelow(const int* rank, int i, int high, int pivot) {
    for (; high - i >= block; i += block) {
        int stops = 0;
        for (int k = 0; k < block; ++k) {
            stops |= static_cast<int>(rank[i + k] >= pivot);
        }
        if (stops) {
            break;
        }
    }
    while (rank[i] < pivot) {
        ++i;
    }
    return i;
}

// From j down, the first rank that is not above the pivot's; there is one.
int firstNotAbove(const int* rank, int j, int low, int pivot) {
    for (; j - low >= block; j -= block) {
        int stops = 0;
        for (int k = 0; k < block; ++k) {
            stops |= static_cast<int>(rank[j - k] <= pivot);
        }
        if (stops) {
            break;
        }
    }
    while (rank[j] > pivot) {
        --j;
    }
    return j;
}

// One step of the quicksort: divides the range around the row that stands in its middle at the beginning.
// Rows i and j are exchanged only when they are unequal, and step on in either case. Neither leaves the
// range: the pivot stops them first, then what was exchanged.
std::pair<Range, Range> divide(RankedRows& rows, Range range) {
    int* const rank = rows.rank.data();
    int* const from = rows.from.data();
    const int pivot = rank[std::midpoint(range.low, range.high)];
    int i = range.low, j = range.high;
    while (i <= j) {
        i = firstNotBelow(rank, i, range.high, pivot);
        j = firstNotAbove(rank, j, range.low, pivot);
        if (i <= j) {
            if (rank[i] != rank[j]) {
                std::swap(rank[i], rank[j]);
                std::swap(from[i], from[j]);
            }
            ++i;
            --j;
        }
    }
    return {{range.low, j}, {i, range.high}};
}

// The two parts of a range share no row, so that they may be sorted in either order: the longer one waits,
// which keeps few of them waiting whatever the rows are.
void quicksort(RankedRows& rows) {
    std::vector<Range> waiting{{0, static_cast<int>(rows.rank.size()) - 1}};
    while (!waiting.empty()) {
        Range range = waiting.back();
        waiting.pop_back();
        while (range.low < range.high) {
            auto [shorter, longer] = divide(rows, range);
            if (shorter.high - shorter.low > longer.high - longer.low) {
                std::swap(shorter, longer);
            }
            waiting.push_back(longer);
            range = shorter;
        }
    }
}

}  // namespace

int compareGridTexts(const CGridCellBase* a, const CGridCellBase* b) {
    return a && b ? a->text().compare(b->text()) : 0;
}

void GridModel::sort(GridCompare compare, int column, bool ascending) {
    if (!compare) {
        return;
    }
    const int first = fixedRowCount();
    std::vector<const CGridCellBase*> cells;
    cells.reserve(rows_.size());
    for (int row = first; row < rowCount(); ++row) {
        cells.push_back(cell(row, column));
    }
    RankedRows order = ranked(cells, compare, ascending);
    quicksort(order);

    std::vector<Row> sorted;
    sorted.reserve(order.from.size());
    for (int from : order.from) {
        sorted.push_back(std::move(rows_[static_cast<std::size_t>(first + from)]));
    }
    std::ranges::move(sorted, rows_.begin() + first);
    rowsChanged(first);
}

}  // namespace tessary
