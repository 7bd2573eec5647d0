# What turns a linked file into one that can be handed out.

find_program(LLVM_DLLTOOL NAMES llvm-dlltool-14 llvm-dlltool REQUIRED)

# bvutil_import_libraries(TARGET DEFINITIONS library...)
#   Makes import libraries of a DLL from its export definitions; GNU's and Microsoft's linkers read the same
#   form. The GNU linker's own one spells the decorated export wrongly, and gives way to it.
function(bvutil_import_libraries target definitions)
    foreach(library ${ARGN})
        add_custom_command(TARGET ${target} POST_BUILD VERBATIM
                           COMMAND ${LLVM_DLLTOOL} -m i386 -d ${definitions} -D $<TARGET_FILE_NAME:${target}>
                                   -l ${library})
    endforeach()
endfunction()

# bvutil_split_symbols(TARGET)
#   Moves a DLL's debug symbols into NAME.debug beside it, where debuggers look for them. With its dates
#   preserved it has the timestamp that it was linked with: none.
function(bvutil_split_symbols target)
    set(dll $<TARGET_FILE_NAME:${target}>)
    set(symbols $<TARGET_FILE_BASE_NAME:${target}>.debug)
    add_custom_command(TARGET ${target} POST_BUILD VERBATIM
                       WORKING_DIRECTORY $<TARGET_FILE_DIR:${target}>
                       COMMAND ${CMAKE_OBJCOPY} --preserve-dates --only-keep-debug ${dll} ${symbols}
                       COMMAND ${CMAKE_OBJCOPY} --preserve-dates --strip-all --add-gnu-debuglink=${symbols} ${dll})
endfunction()
