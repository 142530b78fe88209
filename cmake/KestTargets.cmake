# Compiler options, and the functions that define libraries, programs and tests.

# Warnings are errors in the developers' presets (CMAKE_COMPILE_WARNING_AS_ERROR), not for a user with a newer compiler;
# clang checks the mutex annotations.
add_library(kest_options INTERFACE)
target_compile_options(kest_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual
    $<$<CXX_COMPILER_ID:Clang,AppleClang>:-Wthread-safety>
    # GCC 12 warns about its own std::string (bug 105651).
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)

set(KEST_SANITIZE "" CACHE STRING "Sanitizers for all code: the value of -fsanitize")
if(KEST_SANITIZE)
    add_compile_options(-fsanitize=${KEST_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${KEST_SANITIZE})
endif()

option(KEST_COVERAGE "Measure code coverage, clang only" OFF)
if(KEST_COVERAGE)
    add_compile_options(-fprofile-instr-generate -fcoverage-mapping)
    add_link_options(-fprofile-instr-generate)
endif()

# The hardening options of distributions; requires an optimised build.
option(KEST_HARDEN "Hardened programs: buffer checks, stack protector, PIE, RELRO" OFF)
if(KEST_HARDEN AND CMAKE_SYSTEM_NAME STREQUAL Linux)
    include(CheckPIESupported)
    check_pie_supported(LANGUAGES CXX)
    set(CMAKE_POSITION_INDEPENDENT_CODE ON)
    add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2 -fstack-protector-strong)
    add_link_options(-Wl,-z,relro -Wl,-z,now)
endif()

# Removes code that is never called, mostly JUCE's: a third of the program and half of its memory use remain. Links the
# C++ library statically: looking up its thousands of names took a fifth of the start.
option(KEST_LEAN "Smaller programs: without unused code, with a static C++ library if available" OFF)
if(KEST_LEAN AND CMAKE_SYSTEM_NAME STREQUAL Linux)
    add_compile_options(-ffunction-sections -fdata-sections)
    add_link_options(-Wl,--gc-sections)
    include(CheckCXXSourceCompiles)
    set(CMAKE_REQUIRED_LINK_OPTIONS -static-libstdc++ -static-libgcc)
    check_cxx_source_compiles("#include <iostream>\nint main() { std::cout << 0; }" KEST_HAS_STATIC_CXX_LIBRARY)
    unset(CMAKE_REQUIRED_LINK_OPTIONS)
    if(KEST_HAS_STATIC_CXX_LIBRARY)
        add_link_options(-static-libstdc++ -static-libgcc)
    else()
        message(STATUS "No static C++ library (libstdc++.a): programs use the shared one and start more slowly")
    endif()
endif()

set(KEST_ONLY "" CACHE STRING "Regular expression of the programs that are built by default; empty for all")

# kest_library(NAME SOURCES a.cpp ... [USES other ...] [LINKS target ...] [HEADERS_ARE cpp|mm])
#
# Defines a static library from one folder. Only targets with `USES NAME`, directly or through another library, can
# include its headers, as "NAME/Header.h": each library has a separate include folder, which contains only a link to the
# library's folder. So an include against the direction of dependencies does not build. Headers are C++, or
# Objective-C++ with HEADERS_ARE mm.
function(kest_library name)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "" "HEADERS_ARE" "SOURCES;USES;LINKS")
    string(REPLACE "/" "_" target "kest_${name}")
    set(root ${CMAKE_BINARY_DIR}/include/${target})
    get_filename_component(parent ${root}/${name} DIRECTORY)
    file(MAKE_DIRECTORY ${parent})
    file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR} ${root}/${name} SYMBOLIC)

    add_library(${target} STATIC ${ARG_SOURCES})
    if(KEST_ONLY) # those that its programs use
        set_target_properties(${target} PROPERTIES EXCLUDE_FROM_ALL ON)
    endif()
    target_include_directories(${target} PUBLIC ${root})
    target_link_libraries(${target} PRIVATE kest_options PUBLIC ${ARG_LINKS})
    foreach(used IN LISTS ARG_USES)
        string(REPLACE "/" "_" used "kest_${used}")
        target_link_libraries(${target} PUBLIC ${used})
    endforeach()
    if(NOT ARG_HEADERS_ARE)
        set(ARG_HEADERS_ARE cpp)
    endif()
    kest_check_headers(${target} ${name} ${ARG_HEADERS_ARE})
endfunction()

# `cmake --build ... --target check_headers` checks that every header compiles alone, with what its library may use.
# Headers that a source includes first are skipped: the build has checked them.
add_custom_target(check_headers)
function(kest_check_headers target name suffix)
    file(GLOB headers CONFIGURE_DEPENDS RELATIVE ${CMAKE_CURRENT_SOURCE_DIR} *.h)
    get_target_property(sources ${target} SOURCES)
    foreach(source IN LISTS sources)
        file(STRINGS ${source} first REGEX "^#(include|import)" LIMIT_COUNT 1)
        if(first MATCHES "\"${name}/([^/]+)\"")
            list(REMOVE_ITEM headers ${CMAKE_MATCH_1})
        endif()
    endforeach()
    if(NOT headers)
        return()
    endif()
    set(units)
    foreach(header IN LISTS headers)
        set(unit ${CMAKE_CURRENT_BINARY_DIR}/headers/${header}.${suffix})
        file(CONFIGURE OUTPUT ${unit} CONTENT "#include \"${name}/${header}\"\n")
        list(APPEND units ${unit})
    endforeach()
    add_library(${target}_headers OBJECT EXCLUDE_FROM_ALL ${units})
    target_link_libraries(${target}_headers PRIVATE ${target} kest_options)
    target_compile_options(${target}_headers PRIVATE -fsyntax-only)
    add_dependencies(check_headers ${target}_headers)
endfunction()

# kest_program(NAME SOURCES main.cpp ... USES library ... [LINKS target ...])
function(kest_program name)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "SOURCES;USES;LINKS")
    add_executable(${name} ${ARG_SOURCES})
    if(KEST_ONLY AND NOT name MATCHES "${KEST_ONLY}")
        set_target_properties(${name} PROPERTIES EXCLUDE_FROM_ALL ON)
    endif()
    target_link_libraries(${name} PRIVATE kest_options ${ARG_LINKS})
    foreach(used IN LISTS ARG_USES)
        string(REPLACE "/" "_" used "kest_${used}")
        target_link_libraries(${name} PRIVATE ${used})
    endforeach()
endfunction()
