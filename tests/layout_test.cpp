// What programs have compiled in: the sizes of classes that they embed or derive from, and the
// places within records that they hand over. For MinGW-w64 x86-64, where classes are promised. A
// number that changes here breaks programs that are already built. XrFile, email, ksl_uint64_c,
// FileAttr, Poll's constants and the mount record are asserted where they are defined.
#include <cstddef>
#include <type_traits>

#include "util/util.h"

namespace {

template <typename T, std::size_t size>
constexpr bool has_size = sizeof(T) == size && alignof(T) == 8;

static_assert(has_size<extstl::ExtString, 40>);
static_assert(has_size<String, 40>);
static_assert(has_size<extstl::ExtDate, 56>);
static_assert(has_size<extstl::ExtTime, 96>);
static_assert(has_size<XrDirectory, 64>);
static_assert(has_size<XrDirectoryEntry, 48>);
static_assert(has_size<XrDirectory::List, 24>);
static_assert(has_size<Poll, 24>);
static_assert(has_size<Poll::Callback, 8>);

// Constants that are folded into programs.
static_assert(extstl::ExtString::npos == ~std::uint64_t{0});
static_assert(extstl::ExtString::SCOPE_FIRST == 0 && extstl::ExtString::SCOPE_ALL == 1);

// Values, copied bit by bit.
template <typename T, std::size_t size, std::size_t alignment>
constexpr bool is_record =
    sizeof(T) == size &&
    alignof(T) == alignment&& std::is_trivially_copyable_v<T>&& std::is_standard_layout_v<T>;

static_assert(is_record<u_hyper, 8, 4> && offsetof(u_hyper, high) == 0 &&
              offsetof(u_hyper, low) == 4);
static_assert(is_record<UTIL_TimeOfDay, 8, 4> && offsetof(UTIL_TimeOfDay, seconds) == 0 &&
              offsetof(UTIL_TimeOfDay, microseconds) == 4);

// Which classes have a table of virtual functions, and so an address in front of their members.
static_assert(std::has_virtual_destructor_v<extstl::ExtString> &&
              std::has_virtual_destructor_v<extstl::ExtDate> &&
              std::has_virtual_destructor_v<XrFile> && std::has_virtual_destructor_v<XrDirectory> &&
              std::has_virtual_destructor_v<Poll::Callback>);
static_assert(!std::is_polymorphic_v<email> && !std::is_polymorphic_v<Poll> &&
              !std::is_polymorphic_v<Tools::FileAttr> && !std::is_polymorphic_v<ksl_uint64_c> &&
              !std::is_polymorphic_v<XrDirectory::List>);

}  // namespace
