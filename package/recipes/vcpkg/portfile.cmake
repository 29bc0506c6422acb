# An overlay port that builds the tree it lies in:
#     vcpkg install util --triplet x64-mingw-dynamic --overlay-ports=package/recipes/vcpkg --no-binarycaching
# On Windows also: --host-triplet x64-mingw-dynamic
# vcpkg's cache does not see a change of the sources, because they lie outside the port's folder.
# The compiler must be the one of MSYS2's MINGW64 environment. The tests run this file on Debian, with
# stand-ins for vcpkg's functions. vcpkg itself has not been run.
vcpkg_check_linkage(ONLY_DYNAMIC_LIBRARY)
set(VCPKG_BUILD_TYPE release)  # one DLL serves debug builds too: MinGW-w64 has one runtime
get_filename_component(source "${CMAKE_CURRENT_LIST_DIR}/../../.." ABSOLUTE)

vcpkg_cmake_configure(
    SOURCE_PATH "${source}"
    OPTIONS -DBUILD_TESTING=OFF -DUTIL_INSTALL_ALL=OFF "-DCMAKE_CXX_FLAGS_RELEASE=-O2 -DNDEBUG")
vcpkg_cmake_install()
vcpkg_cmake_config_fixup(CONFIG_PATH lib/cmake/util)
vcpkg_fixup_pkgconfig()

# The owner has not chosen a licence yet. vcpkg wants a file all the same.
file(WRITE "${CURRENT_PACKAGES_DIR}/share/${PORT}/copyright" "The owner of util has not chosen a licence yet.\n")
