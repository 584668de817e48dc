#pragma once

#include <algorithm>
#include <vector>

// The host's growable array. Indices run from 0 to length() - 1 and are not checked in release builds.
template <class T>
class AcArray {
public:
    AcArray() = default;
    int length() const { return static_cast<int>(items_.size()); }
    bool isEmpty() const { return items_.empty(); }
    // Appends a copy and returns its index.
    int append(const T& value) {
        items_.push_back(value);
        return length() - 1;
    }
    AcArray& append(const AcArray& other) {
        items_.insert(items_.end(), other.items_.begin(), other.items_.end());
        return *this;
    }
    T& at(int index) { return items_[static_cast<std::size_t>(index)]; }
    const T& at(int index) const { return items_[static_cast<std::size_t>(index)]; }
    T& operator[](int index) { return at(index); }
    const T& operator[](int index) const { return at(index); }
    T& first() { return items_.front(); }
    T& last() { return items_.back(); }
    const T& first() const { return items_.front(); }
    const T& last() const { return items_.back(); }
    void removeAt(int index) { items_.erase(items_.begin() + index); }
    // Shrinks or grows to count elements; new ones are value-initialised.
    AcArray& setLogicalLength(int count) {
        items_.resize(static_cast<std::size_t>(count));
        return *this;
    }
    bool contains(const T& value) const { return std::find(begin(), end(), value) != end(); }
    void removeAll() { items_.clear(); }
    T* asArrayPtr() { return items_.data(); }
    const T* asArrayPtr() const { return items_.data(); }
    auto begin() { return items_.begin(); }
    auto end() { return items_.end(); }
    auto begin() const { return items_.begin(); }
    auto end() const { return items_.end(); }

private:
    std::vector<T> items_;
};
