# stn_manual(PROGRAM): builds and installs the man page and the bash completion of a program.
find_program(STN_HELP2MAN help2man)
if(NOT STN_HELP2MAN)
  message(STATUS "No help2man: there will be no man pages")
endif()

function(stn_manual program)
  set(manual "${PROJECT_SOURCE_DIR}/cmake/manual")
  install(FILES "${manual}/completion.bash" DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions"
          RENAME ${program})
  # Programs with a sanitizer in them are not for installing.
  if(NOT STN_HELP2MAN OR CMAKE_CXX_FLAGS MATCHES "-fsanitize")
    return()
  endif()
  set(page "${CMAKE_BINARY_DIR}/man/${program}.1")
  file(MAKE_DIRECTORY "${CMAKE_BINARY_DIR}/man")
  add_custom_command(OUTPUT "${page}" COMMAND "${manual}/man_page.sh" $<TARGET_FILE:${program}> "${page}"
                     DEPENDS ${program} "${manual}/man_page.sh" "${manual}/see_also.h2m")
  add_custom_target(${program}-man ALL DEPENDS "${page}")
  install(FILES "${page}" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
endfunction()
