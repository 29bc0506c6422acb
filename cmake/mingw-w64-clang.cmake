# The second opinion: Clang in place of GCC, on MinGW-w64's headers, libraries and linker.
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64.cmake)

execute_process(COMMAND ${triplet}-g++-posix -print-libgcc-file-name
                OUTPUT_VARIABLE libgcc OUTPUT_STRIP_TRAILING_WHITESPACE)
get_filename_component(gcc_folder ${libgcc} DIRECTORY)

set(UTIL_RUNTIME_OWNER ${CMAKE_CXX_COMPILER})  # GCC knows where its runtime DLLs are
set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_C_COMPILER_TARGET ${triplet})
set(CMAKE_CXX_COMPILER_TARGET ${triplet})
string(CONCAT CMAKE_CXX_FLAGS_INIT
       "-isystem ${gcc_folder}/include/c++ -isystem ${gcc_folder}/include/c++/${triplet}")
foreach(kind EXE SHARED MODULE)
    set(CMAKE_${kind}_LINKER_FLAGS_INIT "-B${gcc_folder} -L${gcc_folder} -pthread")
endforeach()
