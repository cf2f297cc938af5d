#pragma once

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace varnholt {

/// A growable list whose positions run from 1 to `upperBound()`; an empty list has upper
/// bound 0. Every access is checked: a position outside 1..upperBound() throws
/// `std::out_of_range`. Iteration with a range-for visits positions 1 upwards.
template <typename T>
class List1
{
public:
    List1() = default;
    explicit List1(std::size_t count)
        : items_(count)
    {}

    [[nodiscard]] int upperBound() const { return static_cast<int>(items_.size()); }
    [[nodiscard]] bool isEmpty() const { return items_.empty(); }

    T& operator()(int position) { return items_[checked(position)]; }
    const T& operator()(int position) const { return items_[checked(position)]; }

    void clear() { items_.clear(); }
    void reserve(std::size_t count) { items_.reserve(count); }
    T& append(T item) { return items_.emplace_back(std::move(item)); }

    auto begin() { return items_.begin(); }
    auto end() { return items_.end(); }
    auto begin() const { return items_.begin(); }
    auto end() const { return items_.end(); }

private:
    [[nodiscard]] std::size_t checked(int position) const
    {
        if (position < 1 || position > upperBound()) {
            throw std::out_of_range("position " + std::to_string(position) + " of a list of " +
                                    std::to_string(items_.size()));
        }
        return static_cast<std::size_t>(position) - 1;
    }

    std::vector<T> items_;
};

} // namespace varnholt
