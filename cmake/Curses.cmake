# kest_curses: a curses library with wide characters, defined only if there is one. macOS has them in the library
# ncurses, Linux distributions in ncursesw.
if(NOT APPLE)
    set(CURSES_NEED_WIDE TRUE)
endif()
find_package(Curses)

if(CURSES_FOUND)
    # Enables wide characters in older and newer headers, and disables macros, whose names would collide with half the
    # standard library.
    set(curses_definitions NCURSES_WIDECHAR=1 _XOPEN_SOURCE_EXTENDED=1 NCURSES_NOMACROS=1)
    include(CheckCXXSourceCompiles)
    set(CMAKE_REQUIRED_INCLUDES ${CURSES_INCLUDE_DIRS})
    set(CMAKE_REQUIRED_LIBRARIES ${CURSES_LIBRARIES})
    list(TRANSFORM curses_definitions PREPEND -D OUTPUT_VARIABLE CMAKE_REQUIRED_DEFINITIONS)
    check_cxx_source_compiles(
        "#include <curses.h>\n#include <term.h>\nint main() { wint_t c; return wget_wch(stdscr, &c) + set_escdelay(0); }"
        KEST_CURSES_IS_WIDE)
    unset(CMAKE_REQUIRED_INCLUDES)
    unset(CMAKE_REQUIRED_LIBRARIES)
    unset(CMAKE_REQUIRED_DEFINITIONS)
endif()

if(KEST_CURSES_IS_WIDE)
    add_library(kest_curses INTERFACE)
    target_include_directories(kest_curses INTERFACE ${CURSES_INCLUDE_DIRS})
    target_compile_definitions(kest_curses INTERFACE ${curses_definitions})
    target_link_libraries(kest_curses INTERFACE ${CURSES_LIBRARIES})
else()
    message(STATUS "kest-settings-terminal is not built: no curses library with wide characters was found")
endif()
