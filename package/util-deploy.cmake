# util_runtime_dlls(PATHS FOLDER): the runtime DLLs that util.dll needs, each from FOLDER if it is there, else
# from the compiler.
function(util_runtime_dlls paths folder)
    set(compilers ${UTIL_RUNTIME_OWNER} ${CMAKE_CXX_COMPILER} ${CMAKE_C_COMPILER})
    list(GET compilers 0 compiler)
    set(found)
    foreach(name libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
        set(path ${folder}/${name})
        if(NOT EXISTS "${path}")
            execute_process(COMMAND ${compiler} -print-file-name=${name}
                            OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE)
        endif()
        if(NOT IS_ABSOLUTE "${path}")  # not found by the compiler: beside it, as MSYS2 has it
            get_filename_component(path ${compiler} DIRECTORY)
            set(path ${path}/${name})
        endif()
        list(APPEND found ${path})
    endforeach()
    set(${paths} ${found} PARENT_SCOPE)
endfunction()

# util_deploy(TARGET): puts util.dll and the runtime DLLs beside the program TARGET whenever that is
# linked.
function(util_deploy target)
    set(folder)
    get_target_property(installed util::util IMPORTED)
    if(installed)
        get_target_property(dll util::util LOCATION)
        get_filename_component(folder ${dll} DIRECTORY)
    endif()
    util_runtime_dlls(dlls "${folder}")
    add_custom_command(TARGET ${target} POST_BUILD VERBATIM
        COMMAND ${CMAKE_COMMAND} -E copy_if_different $<TARGET_FILE:util::util> ${dlls} $<TARGET_FILE_DIR:${target}>)
endfunction()
