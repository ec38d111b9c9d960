// A growable, 0-based list of shared objects. Out-of-range access yields no
// object (nullptr) and never fails; Free releases from the last to the first.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace toval {

template <class T>
class cObjectArray {
  public:
    using Item = std::shared_ptr<T>;

    cObjectArray() = default;
    cObjectArray(const cObjectArray&) = delete;
    cObjectArray& operator=(const cObjectArray&) = delete;
    cObjectArray(cObjectArray&&) noexcept = default;
    cObjectArray& operator=(cObjectArray&&) noexcept = default;
    ~cObjectArray() { Free(true); }

    int32_t Size() const { return static_cast<int32_t>(items_.size()); }

    // Stores the object itself (shared), at index Size() - 1.
    void Add(Item item) { items_.push_back(std::move(item)); }

    Item Element(int32_t index) const {
        if (!InRange(index)) return nullptr;
        return items_[static_cast<size_t>(index)];
    }

    void Swap(int32_t i, int32_t j) {
        if (InRange(i) && InRange(j))
            std::swap(items_[static_cast<size_t>(i)], items_[static_cast<size_t>(j)]);
    }

    // Releases the element and moves the later ones down by one.
    void Delete(int32_t index) {
        if (!InRange(index)) return;
        items_.erase(items_.begin() + index);
        if (items_.empty()) std::vector<Item>().swap(items_);
    }
    void Remove(int32_t index) { Delete(index); }

    void Insert(int32_t index, Item item) {
        if (index < 0) index = 0;
        if (index > Size()) index = Size();
        items_.insert(items_.begin() + index, std::move(item));
    }

    // Drops the storage.
    void Clear() { std::vector<Item>().swap(items_); }

    // Releases every element, last first, then clears. The flag is not consulted.
    void Free(bool /*flag*/ = true) {
        while (!items_.empty())
            items_.pop_back();
        Clear();
    }

    // Range-for over the elements (each a shared pointer).
    auto begin() const { return items_.begin(); }
    auto end() const { return items_.end(); }

  private:
    bool InRange(int32_t index) const { return index >= 0 && index < Size(); }

    std::vector<Item> items_;
};

}  // namespace toval
