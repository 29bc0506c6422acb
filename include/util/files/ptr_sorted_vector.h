/// @file
/// `extstl::ExtPtrSortedVector`: owned objects kept in order.
#ifndef UTIL_FILES_PTR_SORTED_VECTOR_H
#define UTIL_FILES_PTR_SORTED_VECTOR_H

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace extstl {

/// Pointers to `T` in ascending order of `operator<` of `Cmp`. `T` is `Cmp` or derives from it.
///
/// The vector owns the objects: clear() and the destructor delete them. Elements that compare equal
/// all stay, in the order of their insertion. Not synchronised. Raises std::bad_alloc. The objects
/// that were to be inserted then still belong to the caller.
///
///     ExtPtrSortedVector<XrDirectoryEntry, XrDirectoryEntry> list;
///     list.insert(new XrDirectoryEntry("b", 0, 0));
///     list.insert(new XrDirectoryEntry("a", 0, 0));
///     list[0]->getName()   // "a"
template <typename T, typename Cmp>
class ExtPtrSortedVector {
  public:
    /// Iterates over pointers to the elements.
    using const_iterator = typename std::vector<T*>::const_iterator;

    ExtPtrSortedVector() = default;  ///< Empty.
    ~ExtPtrSortedVector() { clear(); }
    ExtPtrSortedVector(const ExtPtrSortedVector&) = delete;
    ExtPtrSortedVector& operator=(const ExtPtrSortedVector&) = delete;

    /// Inserts `element` after those that are not greater and returns true. Returns false and does
    /// nothing for null.
    bool insert(T* element) {
        if (!element) return false;
        m_elements.insert(
            std::upper_bound(m_elements.begin(), m_elements.end(), element, is_before), element);
        return true;
    }

    /// Inserts each of `elements` in turn, in the time of one sort. None of them may be null.
    void insert(std::vector<std::unique_ptr<T>>&& elements) {
        m_elements.reserve(m_elements.size() + elements.size());
        const auto old_size = static_cast<std::ptrdiff_t>(m_elements.size());
        for (auto& element : elements) {
            assert(element);
            m_elements.push_back(element.release());
        }
        elements.clear();
        const auto added = m_elements.begin() + old_size;
        if (!std::is_sorted(added, m_elements.end(), is_before)) {
            std::stable_sort(added, m_elements.end(), is_before);
        }
        std::inplace_merge(m_elements.begin(), added, m_elements.end(), is_before);
    }

    /// Deletes every element.
    void clear() {
        for (T* element : m_elements)
            delete element;
        m_elements.clear();
    }

    /// Returns the number of elements.
    std::uint64_t size() const { return m_elements.size(); }

    /// Returns the element at `index`, which must be below size(). It stays owned by the vector.
    T* operator[](std::uint64_t index) const {
        assert(index < m_elements.size());
        return m_elements[index];
    }

    /// @{
    /// Iterates over the elements in their order.
    const_iterator begin() const { return m_elements.begin(); }
    const_iterator end() const { return m_elements.end(); }
    /// @}

  private:
    static bool is_before(const T* a, const T* b) {
        return static_cast<const Cmp&>(*a) < static_cast<const Cmp&>(*b);
    }

    std::vector<T*> m_elements;
};

}  // namespace extstl

#endif
