# How every target of the project is made: one place for language level, warnings, sanitizers and output folders.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "" FORCE)
endif()
# Line tables are enough for stack traces and profiles, and keep the build small and quick.
set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O2 -g1 -DNDEBUG")
set(CMAKE_CXX_FLAGS_DEBUG "-O1 -g1")

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()
find_program(MOLD_PROGRAM mold)
if(MOLD_PROGRAM)
    add_link_options(-fuse-ld=mold)
endif()

# The program folder as it ships, which nobody plays from: tests and the package are made of it. What a user runs is a copy
# of it that may be played in, build/Zorvex.
set(ZORVEX_PROGRAM_DIR ${CMAKE_BINARY_DIR}/shipped)
set(ZORVEX_PLAYED_DIR ${CMAKE_BINARY_DIR}/Zorvex)
set(ZORVEX_TOOLS_DIR ${CMAKE_BINARY_DIR}/bin)

add_library(zorvex_options INTERFACE)
target_compile_options(zorvex_options INTERFACE -Wall -Wextra -Werror)
target_include_directories(zorvex_options INTERFACE ${CMAKE_SOURCE_DIR}/src)
# What makes a fault of memory hard to use against the user; in every target, whoever made it. Sanitized builds watch
# memory by themselves.
if(NOT ZORVEX_SANITIZE AND NOT ZORVEX_FUZZ)
    include(CheckCXXCompilerFlag)
    include(CheckPIESupported)
    check_pie_supported(LANGUAGES C CXX)
    add_compile_options(-fstack-protector-strong
        "$<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE>" "$<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>")
    # These two are not there on every processor.
    foreach(flag -fstack-clash-protection -fcf-protection)
        string(MAKE_C_IDENTIFIER "ZORVEX_HAS${flag}" known)
        check_cxx_compiler_flag(${flag} ${known})
        if(${known})
            add_compile_options(${flag})
        endif()
    endforeach()
    add_link_options(-Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
endif()
if(ZORVEX_SANITIZE)
    target_compile_options(zorvex_options INTERFACE
        -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    target_link_options(zorvex_options INTERFACE -fsanitize=address,undefined)
endif()
if(ZORVEX_FUZZ)
    target_compile_options(zorvex_options INTERFACE
        -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    target_link_options(zorvex_options INTERFACE -fsanitize=address,undefined)
endif()

# zorvex_library(NAME LIBS ...): a static library of all .cpp files of the current folder, its sub-folders
# included unless they hold a CMakeLists.txt of their own.
function(zorvex_library name)
    cmake_parse_arguments(ARG "QT" "" "LIBS" ${ARGN})
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS *.cpp *.h)
    file(GLOB_RECURSE nested RELATIVE ${CMAKE_CURRENT_SOURCE_DIR} */CMakeLists.txt)
    foreach(list_file IN LISTS nested)
        get_filename_component(folder ${list_file} DIRECTORY)
        list(FILTER sources EXCLUDE REGEX "^${CMAKE_CURRENT_SOURCE_DIR}/${folder}/")
    endforeach()
    add_library(${name} STATIC ${sources})
    set_target_properties(${name} PROPERTIES LINKER_LANGUAGE CXX)
    target_link_libraries(${name} PUBLIC zorvex_options ${ARG_LIBS})
    if(ARG_QT)
        set_target_properties(${name} PROPERTIES AUTOMOC ON)
    endif()
endfunction()

# zorvex_tool(NAME LIBS ...): a command-line program in build/bin/ of all .cpp files of the current folder.
function(zorvex_tool name)
    cmake_parse_arguments(ARG "" "" "LIBS" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS *.cpp *.h)
    add_executable(${name} ${sources})
    target_link_libraries(${name} PRIVATE zorvex_options ${ARG_LIBS})
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${ZORVEX_TOOLS_DIR})
endfunction()

# zorvex_test(NAME LIBS ...): a GoogleTest program of all .cpp files of the current folder, each test known
# to ctest. Tests run with the source folder in TEST_SOURCE_DIR and Qt off screen.
function(zorvex_test name)
    cmake_parse_arguments(ARG "QT" "TIMEOUT" "LIBS" ${ARGN})
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 60)
    endif()
    file(GLOB sources CONFIGURE_DEPENDS *.cpp *.h)
    add_executable(${name} ${sources})
    target_link_libraries(${name} PRIVATE zorvex_options ${ARG_LIBS} GTest::gmock)
    if(ARG_QT)
        set_target_properties(${name} PROPERTIES AUTOMOC ON)
    else()
        target_link_libraries(${name} PRIVATE GTest::gtest_main)
    endif()
    target_compile_definitions(${name} PRIVATE
        TEST_SOURCE_DIR="${CMAKE_CURRENT_SOURCE_DIR}" PROJECT_SOURCE_DIR="${CMAKE_SOURCE_DIR}"
        ZORVEX_TOOLS_DIR="${ZORVEX_TOOLS_DIR}" ZORVEX_PROGRAM_DIR="${ZORVEX_PROGRAM_DIR}")
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 30
        PROPERTIES TIMEOUT ${ARG_TIMEOUT} ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
endfunction()

# zorvex_bench(NAME LIBS ...): a Google Benchmark program of all .cpp files of the current folder.
function(zorvex_bench name)
    cmake_parse_arguments(ARG "" "" "LIBS" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS *.cpp *.h)
    add_executable(${name} ${sources})
    target_link_libraries(${name} PRIVATE zorvex_options ${ARG_LIBS} benchmark::benchmark_main)
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)
endfunction()

# zorvex_fuzz(NAME FILE LIBS ...): a libFuzzer program in build-fuzz/fuzz/. Where the tests are built, a program instead
# that replays the target's folder of fuzz/corpus, and a test that runs it.
function(zorvex_fuzz name file)
    cmake_parse_arguments(ARG "" "" "LIBS" ${ARGN})
    if(ZORVEX_FUZZ)
        add_executable(${name} ${file})
        target_link_options(${name} PRIVATE -fsanitize=fuzzer)
        set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/fuzz)
        target_link_libraries(${name} PRIVATE zorvex_options ${ARG_LIBS})
        if(NOT TARGET fuzzers)
            add_custom_target(fuzzers)
        endif()
        add_dependencies(fuzzers ${name})
        return()
    endif()
    set(replay replay_${name})
    add_executable(${replay} ${file} ${CMAKE_SOURCE_DIR}/fuzz/Replay.cpp)
    target_link_libraries(${replay} PRIVATE zorvex_options ${ARG_LIBS})
    set_target_properties(${replay} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
    add_test(NAME Fuzz.${name} COMMAND ${replay} ${CMAKE_SOURCE_DIR}/fuzz/corpus/${name})
    set_tests_properties(Fuzz.${name} PROPERTIES TIMEOUT 120 LABELS fuzz ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
endfunction()

# Adds a sub-folder only when it has a CMakeLists.txt of its own.
macro(zorvex_modules)
    foreach(module ${ARGN})
        if(EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/${module}/CMakeLists.txt)
            add_subdirectory(${module})
        endif()
    endforeach()
endmacro()

# zorvex_pictures(TARGET RECIPE FILE OUTPUT FOLDER): draws the pictures of a recipe (tools/svgpng/Recipe.h) into a
# folder. SVG files are looked for beside the recipe and among the program's icons.
function(zorvex_pictures target)
    cmake_parse_arguments(ARG "" "RECIPE;OUTPUT" "" ${ARGN})
    get_filename_component(recipe ${ARG_RECIPE} ABSOLUTE)
    set(stamp ${CMAKE_CURRENT_BINARY_DIR}/${target}.stamp)
    add_custom_command(OUTPUT ${stamp}
        COMMAND svgpng ${recipe} -o ${ARG_OUTPUT} -I ${CMAKE_SOURCE_DIR}/assets/icons
                --deps ${CMAKE_CURRENT_BINARY_DIR}/${target}.d --target ${stamp}
        COMMAND ${CMAKE_COMMAND} -E touch ${stamp}
        DEPENDS svgpng ${recipe}
        DEPFILE ${CMAKE_CURRENT_BINARY_DIR}/${target}.d
        VERBATIM)
    add_custom_target(${target} ALL DEPENDS ${stamp})
endfunction()
