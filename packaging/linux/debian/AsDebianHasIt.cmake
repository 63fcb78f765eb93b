# What Debian wants otherwise than other systems: one file with the licence and all notices, and compressed man pages
# and changes. Run by cpack, over the tree that it is about to pack.
set(share "${CPACK_TEMPORARY_INSTALL_DIRECTORY}${CPACK_INSTALL_PREFIX}/share")
set(doc "${share}/doc/${CPACK_PACKAGE_NAME}")

file(READ "${doc}/LICENSE" licence)
file(READ "${share}/${CPACK_PACKAGE_NAME}/THIRD_PARTY_NOTICES.md" notices)
file(WRITE "${doc}/copyright" "${licence}\n${notices}")
file(REMOVE "${doc}/LICENSE")
file(RENAME "${doc}/CHANGELOG.md" "${doc}/changelog")

file(GLOB pages "${share}/man/man*/*.[1-9]")
# The same bytes at every packing: no name, no time.
execute_process(COMMAND gzip -9n ${pages} "${doc}/changelog" COMMAND_ERROR_IS_FATAL ANY)
