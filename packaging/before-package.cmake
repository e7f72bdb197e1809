# What CPack leaves to do before it packs: our libraries and programs keep nothing but what is needed
# to run them, and all times of files are that of the last change, whenever they were made.
file(GLOB_RECURSE FILES LIST_DIRECTORIES OFF ${CPACK_TEMPORARY_DIRECTORY}/*)
foreach(FILE IN LISTS FILES)
  file(READ ${FILE} MAGIC LIMIT 4 HEX)
  if(MAGIC STREQUAL "7f454c46")
    execute_process(COMMAND strip --strip-unneeded --remove-section=.comment --remove-section=.note
                            ${FILE} COMMAND_ERROR_IS_FATAL ANY)
  endif()
endforeach()
if(DEFINED ENV{SOURCE_DATE_EPOCH})
  execute_process(COMMAND find ${CPACK_TEMPORARY_DIRECTORY} -exec touch --no-dereference
                          --date=@$ENV{SOURCE_DATE_EPOCH} {} + COMMAND_ERROR_IS_FATAL ANY)
endif()
