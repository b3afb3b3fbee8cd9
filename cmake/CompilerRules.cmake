# Rules that every target of this project is compiled by.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
        CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
        CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1 ${CCACHE_PROGRAM})
endif()

set(CMAKE_CXX_FLAGS_RELEASE "-O3")
set(CMAKE_CXX_FLAGS_DEBUG "-O0 -g1")
set(CMAKE_CXX_FLAGS_SANITIZE "-O1 -g1 -fno-omit-frame-pointer")

# Warnings are errors in the presets for people who work on the code, by CMAKE_COMPILE_WARNING_AS_ERROR. Not in the
# release: a compiler newer than ours, which warns of more, must not keep anybody from the program.
add_library(qirnRules INTERFACE)
target_compile_options(qirnRules INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Wcast-qual
    # The same picture on every machine: no fused multiply-add, no rearranged arithmetic.
    -ffp-contract=off -fno-fast-math
    # Nobody reads errno or traps after arithmetic: square roots and comparisons may be done for several numbers at
    # once, with the same bits.
    -fno-math-errno -fno-trapping-math)
target_compile_definitions(qirnRules INTERFACE QT_NO_KEYWORDS QT_NO_CAST_FROM_BYTEARRAY
    QT_NO_URL_CAST_FROM_STRING QT_DISABLE_DEPRECATED_BEFORE=0x060400)
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    target_compile_options(qirnRules INTERFACE -Xclang -fno-pch-timestamp)
else()
    target_compile_options(qirnRules INTERFACE -fpch-preprocess)
endif()
# Hot loops are compiled for the plain level, SSE2 where Highway has it, SSE4, AVX2 and AVX-512. Left out, by bit because
# older headers lack some of the names: SSSE3 (12), and AVX-512 with additions that no loop here uses (7, 6, 4), which
# would only be the same loops again.
set(skipped_instruction_sets 0x10D0)
if(QIRN_SANITIZE)
    # The source is the same for every instruction set: the plain one and the usual one stand for all, which halves
    # the time that hot loops take to compile. The release's tests run SSE4 (11) and AVX-512 (8) too.
    set(skipped_instruction_sets 0x19D0)
endif()
target_compile_definitions(qirnRules INTERFACE HWY_DISABLED_TARGETS=${skipped_instruction_sets})
if(QIRN_SANITIZE)
    set(sanitizers -fsanitize=address,undefined)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
        # A number that does not fit its whole type would give different bytes on different machines.
        list(APPEND sanitizers -fsanitize=float-cast-overflow)
    endif()
    target_compile_options(qirnRules INTERFACE ${sanitizers} -fno-sanitize-recover=all)
    target_link_options(qirnRules INTERFACE ${sanitizers})
endif()
if(QIRN_SANITIZE_THREADS)
    # Threads share tiles and not lanes: one instruction set stands for all.
    target_compile_definitions(qirnRules INTERFACE HWY_COMPILE_ONLY_STATIC)
    target_compile_options(qirnRules INTERFACE -fsanitize=thread)
    target_link_options(qirnRules INTERFACE -fsanitize=thread)
endif()
if(QIRN_FUZZ)
    # Coverage for libFuzzer to steer by, and speed, of which it can have enough.
    target_compile_options(qirnRules INTERFACE -fsanitize=fuzzer-no-link -O2)
endif()
