# Run by each `cmake --install BUILD`: merges the lists of earlier installations, which CMake is about to replace, into
# one separate list. KEST_MANIFESTS is BUILD. uninstall.cmake reads all lists.
set(earlier "${KEST_MANIFESTS}/install_manifest_earlier.txt")
file(GLOB manifests "${KEST_MANIFESTS}/install_manifest*.txt")
set(installed)
foreach(manifest IN LISTS manifests)
    file(STRINGS "${manifest}" files)
    list(APPEND installed ${files})
endforeach()
if(installed)
    list(REMOVE_DUPLICATES installed)
    list(JOIN installed "\n" lines)
    file(WRITE "${earlier}" "${lines}\n")
endif()
