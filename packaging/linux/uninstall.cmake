# cmake -D MANIFESTS=BUILD -P uninstall.cmake
# Removes what every `cmake --install BUILD` has installed, whatever its prefix, by the lists that they leave in BUILD.
# DESTDIR is honoured.
file(GLOB manifests "${MANIFESTS}/install_manifest*.txt")
if(NOT manifests)
    message(FATAL_ERROR "Nothing was installed from ${MANIFESTS}.")
endif()

foreach(manifest IN LISTS manifests)
    file(STRINGS "${manifest}" files)
    foreach(file IN LISTS files)
        set(installed "$ENV{DESTDIR}${file}")
        if(EXISTS "${installed}" OR IS_SYMLINK "${installed}")
            file(REMOVE "${installed}")
            if(EXISTS "${installed}")
                message(FATAL_ERROR "${installed} could not be removed.")
            endif()
            message(STATUS "Removed ${installed}")
        endif()
        # Of the folders only the project's own are its to remove.
        get_filename_component(folder "${installed}" DIRECTORY)
        file(GLOB others "${folder}/*")
        if(folder MATCHES "/kest-settings$" AND NOT others)
            file(REMOVE_RECURSE "${folder}")
        endif()
    endforeach()
    file(REMOVE "${manifest}")
endforeach()
