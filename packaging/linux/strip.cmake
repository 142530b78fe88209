# Run by CPack before it packs: the programs without debug information and without the compiler's notes.
file(GLOB programs ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/bin/*)
execute_process(COMMAND ${CPACK_STRIP} --strip-all --remove-section=.comment --remove-section=.note ${programs}
                COMMAND_ERROR_IS_FATAL ANY)
