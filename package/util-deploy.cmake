# util_deploy(TARGET): puts util.dll and the runtime DLLs beside the program TARGET whenever that is
# linked.
function(util_deploy target)
    set(dlls util.dll libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    list(TRANSFORM dlls PREPEND "$<TARGET_FILE_DIR:util::util>/")
    add_custom_command(TARGET ${target} POST_BUILD VERBATIM
        COMMAND ${CMAKE_COMMAND} -E copy_if_different ${dlls} $<TARGET_FILE_DIR:${target}>)
endfunction()
