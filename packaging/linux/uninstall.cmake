# cmake -D MANIFESTS=BUILD -P uninstall.cmake
# Removes everything that any `cmake --install BUILD` has installed, with any prefix, by the lists that they leave in
# BUILD. Honours DESTDIR.
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
        # Removes only the project's own folders.
        get_filename_component(folder "${installed}" DIRECTORY)
        file(GLOB others "${folder}/*")
        if(folder MATCHES "/kest-settings$" AND NOT others)
            file(REMOVE_RECURSE "${folder}")
        endif()
    endforeach()
    file(REMOVE "${manifest}")
endforeach()
