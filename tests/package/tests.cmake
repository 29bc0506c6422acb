# The package, made and then used as a stranger would. Each test is one call of `check`. The label
# "thorough" marks what only `./dev package` runs.
set(package_folder ${PROJECT_BINARY_DIR}/package)
set(package_check ${CMAKE_CURRENT_LIST_DIR}/check ${package_folder})

# package_test(NAME LABELS CALL...), and the same for a case that runs a program under Wine.
function(package_test name labels)
    add_test(NAME package.${name} COMMAND ${package_check} ${ARGN})
    set_tests_properties(package.${name} PROPERTIES
        LABELS "package;${labels}" FIXTURES_REQUIRED package TIMEOUT 900)
endfunction()
function(package_run_test name)
    package_test(${name} "" ${ARGN})
    set_tests_properties(package.${name} PROPERTIES
        FIXTURES_REQUIRED "package;wine" RESOURCE_LOCK windows)
endfunction()

add_test(NAME package.make COMMAND ${package_check} makes ${PROJECT_BINARY_DIR})
set_tests_properties(package.make PROPERTIES LABELS package FIXTURES_SETUP package TIMEOUT 300)

package_test(is-complete "" is_complete)
package_test(renders-all-pages "" renders_all_pages)
package_test(links-lead-somewhere "" links_lead_somewhere)
package_test(names-no-folder-of-its-maker "" names_no_folder_of_its_maker)
package_test(installs-what-util.h-reaches "" installs_what_util_h_reaches)
package_test(util.def-lists-exported-names "" exports_the_plain_functions)
package_test(exports-what-the-list-names "" exports_what_the_list_names)
package_test(needs-no-other-library "" needs_no_other_library)
package_test(asks-for-the-protections-of-the-system "" asks_for_the_protections_of_the_system)
package_test(versions-agree "" versions_agree)

# util.h in every way. Each header on its own in one way; in the others only when all is asked for.
foreach(compiler clang gcc)
    foreach(standard c++17 c++20)
        foreach(before nothing windows.h)
            set(way ${compiler}.${standard}.after-${before})
            package_test(util.h.${way} "" compiles util/util.h ${compiler} ${standard} ${before})
            set(labels thorough)
            if(way STREQUAL "clang.c++17.after-nothing")
                set(labels "")
            endif()
            package_test(each-header.${way} "${labels}" compiles_each ${compiler} ${standard} ${before})
        endforeach()
    endforeach()
endforeach()

foreach(toolchain mingw-w64 mingw-w64-clang)
    foreach(find_by cmake pkg-config)
        package_run_test(consumer.${toolchain}.${find_by} builds ${toolchain} ${find_by})
    endforeach()
endforeach()
package_run_test(consumer.mingw-w64.FetchContent builds mingw-w64 FetchContent)
foreach(what another-version the-next-minor-version-before-1.0 components another-system ucrt)
    package_test(refuses.${what} "" refuses ${what})
endforeach()
foreach(what another-processor another-compiler libc++)
    package_test(refuses.${what} thorough refuses ${what})
endforeach()
foreach(what ucrt libc++ c++14)
    package_test(stops.${what} "" stops ${what})
endforeach()
package_run_test(links-as-the-page-says links_as_the_page_says)
package_run_test(fails-as-the-page-says fails_as_the_page_says)
package_run_test(builds-the-examples builds_the_examples)
set_property(TEST package.consumer.mingw-w64.FetchContent package.fails-as-the-page-says package.builds-the-examples
             APPEND PROPERTY LABELS thorough)
package_test(installs-the-same "thorough" installs_the_same ${PROJECT_BINARY_DIR})
package_run_test(works-in-c.gcc works_in_c gcc)
package_run_test(works-in-c.clang works_in_c clang)
package_run_test(works-in-c.cmake builds_in_c)
package_run_test(links-as-another-compiler links_as_another_compiler)
package_run_test(runs-the-agent runs_the_agent)
package_run_test(is-shown-by-debuggers debugs)

# Built again, from a copy of the sources and by the recipes for package managers.
package_test(builds-by-pkgbuild thorough builds_by_pkgbuild)
set_property(TEST package.builds-by-pkgbuild PROPERTY FIXTURES_SETUP rebuilt)
foreach(name gives-the-same-zip builds-by-vcpkg)  # in the build folder of the former
    string(REPLACE - _ call ${name})
    package_test(${name} thorough ${call})
    set_property(TEST package.${name} APPEND PROPERTY FIXTURES_REQUIRED rebuilt)
    set_property(TEST package.${name} PROPERTY RESOURCE_LOCK rebuilt)
endforeach()

# Each page of the guide shows a program and what it prints.
package_test(guide.manifest "" shows_the_manifest)
foreach(page c files host instance load log mail nightly poll portable readme serve service text)
    package_run_test(guide.${page} shows ${page})
endforeach()
