# Compiler and linker flags, one interface target for everything that is ours.
add_library(bvutil_flags INTERFACE)

# SSE arithmetic: single precision stays single precision, whatever the x87 control word holds.
set(arithmetic -msse2 -mfpmath=sse -ffp-contract=off)
set(warnings -Wall -Wextra -Wconversion)
if(BVUTIL_WERROR)
    list(APPEND warnings -Werror)
endif()
target_compile_options(bvutil_flags INTERFACE ${arithmetic} ${warnings})

if(WIN32)
    # Callers built by other compilers keep the stack aligned to four bytes only.
    target_compile_options(bvutil_flags INTERFACE -mstackrealign)
    target_compile_definitions(bvutil_flags INTERFACE WIN32_LEAN_AND_MEAN NOMINMAX __USE_MINGW_ANSI_STDIO=1)
    # What is handed out has symbols, in the form that Wine's debugger reads, too. No path of this machine gets
    # into them, and no timestamp into the files: two builds of one state of the sources are equal, wherever
    # they are made.
    set(product_flags -gdwarf-4 -ffile-prefix-map=${CMAKE_SOURCE_DIR}=.)
    # Static runtimes: nothing but Windows' own DLLs is needed.
    target_link_options(bvutil_flags INTERFACE -static -static-libgcc -static-libstdc++
                        -Wl,--no-insert-timestamp)
else()
    target_compile_options(bvutil_flags INTERFACE -m32)
    target_link_options(bvutil_flags INTERFACE -m32)
    if(BVUTIL_SANITIZE)
        set(sanitize -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
        target_compile_options(bvutil_flags INTERFACE ${sanitize})
        target_link_options(bvutil_flags INTERFACE ${sanitize})
    endif()
    if(BVUTIL_COVERAGE)
        target_compile_options(bvutil_flags INTERFACE --coverage -fprofile-abs-path)
        target_link_options(bvutil_flags INTERFACE --coverage)
    endif()
    if(BVUTIL_FUZZ)
        set(sanitize -fsanitize=address,undefined -fno-sanitize-recover=all)
        target_compile_options(bvutil_flags INTERFACE ${sanitize} -fsanitize=fuzzer-no-link)
        target_link_options(bvutil_flags INTERFACE ${sanitize})
    endif()
endif()
