# kest_appkit: AppKit for Objective-C++, without automatic reference counting. macOS provides it; elsewhere GNUstep
# does, whose runtime clang calls "gcc" and whose objc/objc.h is among GCC's headers.
add_library(kest_appkit INTERFACE)

if(NOT APPLE)
    if(NOT CMAKE_CXX_COMPILER_ID STREQUAL Clang)
        message(FATAL_ERROR "KEST_BUILD_APPKIT needs clang for C++ and Objective-C++: cmake --preset appkit")
    endif()
    find_program(GNUSTEP_CONFIG gnustep-config)
    find_program(GCC gcc)
    if(NOT GNUSTEP_CONFIG OR NOT GCC)
        message(FATAL_ERROR "KEST_BUILD_APPKIT needs GNUstep and GCC's Objective-C headers: install the packages "
                            "in scripts/appkit_packages, or set KEST_BUILD_APPKIT=OFF")
    endif()
    set(CMAKE_OBJCXX_COMPILER ${CMAKE_CXX_COMPILER})
endif()
enable_language(OBJCXX)

if(APPLE)
    target_compile_options(kest_appkit INTERFACE $<$<COMPILE_LANGUAGE:OBJCXX>:-fno-objc-arc>)
    target_link_libraries(kest_appkit INTERFACE "-framework AppKit")
else()
    execute_process(COMMAND ${GCC} -print-file-name=include OUTPUT_VARIABLE gcc_headers
                    OUTPUT_STRIP_TRAILING_WHITESPACE)
    execute_process(COMMAND ${GNUSTEP_CONFIG} --variable=GNUSTEP_SYSTEM_HEADERS OUTPUT_VARIABLE gnustep_headers
                    OUTPUT_STRIP_TRAILING_WHITESPACE)
    target_include_directories(kest_appkit SYSTEM INTERFACE ${gnustep_headers})
    target_compile_definitions(kest_appkit INTERFACE
        GNUSTEP GNUSTEP_BASE_LIBRARY=1 GNU_GUI_LIBRARY=1 GNU_RUNTIME=1 _NATIVE_OBJC_EXCEPTIONS)
    target_compile_options(kest_appkit INTERFACE $<$<COMPILE_LANGUAGE:OBJCXX>:
        -fobjc-runtime=gcc -fobjc-exceptions -fconstant-string-class=NSConstantString -fno-objc-arc
        -idirafter ${gcc_headers}>)
    target_link_libraries(kest_appkit INTERFACE gnustep-gui gnustep-base objc)
endif()
