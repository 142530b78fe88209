# A Mac's toolchain as far as it goes without Apple's: clang compiles, nothing is linked or run. tests/darwin/check
# makes the folder KEST_DARWIN_SDK, which has the parts of an SDK that can be had.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR ${KEST_DARWIN_ARCHITECTURE})
set(CMAKE_OSX_SYSROOT ${KEST_DARWIN_SDK})
set(CMAKE_OSX_ARCHITECTURES ${KEST_DARWIN_ARCHITECTURE})
set(CMAKE_OSX_DEPLOYMENT_TARGET 10.15)

foreach(language C CXX OBJCXX)
    set(CMAKE_${language}_COMPILER_TARGET ${KEST_DARWIN_ARCHITECTURE}-apple-macos10.15)
    set(CMAKE_${language}_FLAGS_INIT "-nostdlibinc -isystem ${KEST_DARWIN_SDK}/usr/include")
endforeach()
find_program(CMAKE_C_COMPILER clang REQUIRED)
find_program(KEST_CLANGXX clang++ REQUIRED)
foreach(language CXX OBJCXX)
    set(CMAKE_${language}_COMPILER ${KEST_CLANGXX})
    set(CMAKE_${language}_FLAGS_INIT
        "-nostdinc++ -isystem ${KEST_DARWIN_SDK}/usr/include/c++/v1 ${CMAKE_${language}_FLAGS_INIT}")
endforeach()
set(CMAKE_INSTALL_NAME_TOOL ${CMAKE_COMMAND}) # wanted by CMake, never run
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES KEST_DARWIN_SDK KEST_DARWIN_ARCHITECTURE)

set(CMAKE_FIND_ROOT_PATH ${KEST_DARWIN_SDK})
foreach(what LIBRARY INCLUDE PACKAGE)
    set(CMAKE_FIND_ROOT_PATH_MODE_${what} ONLY)
endforeach()
