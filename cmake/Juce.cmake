# Compiles JUCE's three modules without a user interface once, into kest_juce. On Debian the sources are in the package
# juce-modules-source-data; elsewhere they are fetched: 7.0.12, the last release of JUCE 7. Apple's newer compilers
# reject JUCE 7 code only in a module that is not used.
set(KEST_JUCE_MODULES "/usr/share/juce/modules" CACHE PATH "Folder of JUCE's modules")

if(NOT EXISTS ${KEST_JUCE_MODULES}/juce_core/juce_core.h)
    include(FetchContent)
    FetchContent_Declare(juce
        GIT_REPOSITORY https://github.com/juce-framework/JUCE.git
        GIT_TAG 4f43011b96eb0636104cb3e433894cda98243626 # 7.0.12; a tag can be moved
        SOURCE_SUBDIR modules/juce_core) # without build files: only the sources are used
    FetchContent_MakeAvailable(juce)
    set(KEST_JUCE_MODULES ${juce_SOURCE_DIR}/modules CACHE PATH "Folder of JUCE's modules" FORCE)
endif()

find_package(ZLIB REQUIRED)
if(APPLE)
    enable_language(OBJCXX)
    set(juce_unit_suffix mm)
else()
    set(juce_unit_suffix cpp)
endif()

add_library(kest_juce STATIC)
foreach(module juce_core juce_events juce_data_structures)
    target_sources(kest_juce PRIVATE ${KEST_JUCE_MODULES}/${module}/${module}.${juce_unit_suffix})
endforeach()
# JUCE 8, unlike JUCE 7, has a second unit.
file(GLOB juce_further_units ${KEST_JUCE_MODULES}/juce_core/juce_core_*.cpp)
target_sources(kest_juce PRIVATE ${juce_further_units})
target_include_directories(kest_juce SYSTEM PUBLIC ${KEST_JUCE_MODULES})
target_compile_definitions(kest_juce PUBLIC
    JUCE_GLOBAL_MODULE_SETTINGS_INCLUDED=1
    JUCE_STANDALONE_APPLICATION=1
    JUCE_MODULE_AVAILABLE_juce_core=1
    JUCE_MODULE_AVAILABLE_juce_events=1
    JUCE_MODULE_AVAILABLE_juce_data_structures=1
    JUCE_INCLUDE_ZLIB_CODE=0
    JUCE_USE_CURL=0
    JUCE_CHECK_MEMORY_LEAKS=0
    $<IF:$<CONFIG:Debug>,DEBUG=1,NDEBUG=1>)
# Without optimisation it compiles in a fifth of the time, which all debug builds spend.
target_compile_options(kest_juce PRIVATE -w $<$<CONFIG:Debug>:-O0;-g0>)
target_link_libraries(kest_juce PUBLIC ZLIB::ZLIB Threads::Threads ${CMAKE_DL_LIBS})
if(APPLE)
    target_link_libraries(kest_juce PUBLIC "-framework Cocoa" "-framework Foundation" "-framework IOKit"
                          "-framework Security")
endif()
