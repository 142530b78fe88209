# Run by CPack before it packs: removes debug information and the compiler's notes from the programs.
file(GLOB programs ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/bin/*)
execute_process(COMMAND ${CPACK_STRIP} --strip-all --remove-section=.comment --remove-section=.note ${programs}
                COMMAND_ERROR_IS_FATAL ANY)
