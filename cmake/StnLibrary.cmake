# stn_library(NAME VERSION v HEADERS h... SOURCES s... [LINKDEF f] LINK libs... [EXPORT set])
#
# One library, with its ROOT dictionary if there is a LINKDEF, exported with StnEventTargets or another set. Headers are
# named as users include them (<StnEvent/StnEvent.h>); the folder links below make the same spelling work in the source
# tree.
foreach(link "StnEvent=StnEvent/src" "MrEvent=MrEvent/src" "VdUtil=VdUtil/src" "VdRoot=VdUtil/root"
        "StnFrame=StnFrame/src")
  string(REPLACE "=" ";" link "${link}")
  list(GET link 0 name)
  list(GET link 1 folder)
  file(MAKE_DIRECTORY "${CMAKE_BINARY_DIR}/include")
  file(CREATE_LINK "${CMAKE_SOURCE_DIR}/${folder}" "${CMAKE_BINARY_DIR}/include/${name}" SYMBOLIC)
endforeach()

option(STN_WARNINGS_AS_ERRORS "Treat compiler warnings as errors" OFF)

# Warnings, and source names relative to the project in messages and assertions, whatever folder it is built in.
function(stn_compile_options target)
  target_compile_options(${target} PRIVATE -Wall -Wextra "-fmacro-prefix-map=${CMAKE_SOURCE_DIR}/="
                         $<$<BOOL:${STN_WARNINGS_AS_ERRORS}>:-Werror>)
endfunction()

function(stn_library name)
  cmake_parse_arguments(ARG "" "VERSION;LINKDEF;EXPORT" "HEADERS;SOURCES;LINK" ${ARGN})
  string(REGEX MATCH "^[0-9]+" major "${ARG_VERSION}")

  add_library(${name} SHARED ${ARG_SOURCES})
  add_library(StnEvent::${name} ALIAS ${name})
  set_target_properties(${name} PROPERTIES VERSION ${ARG_VERSION} SOVERSION ${major} STN_HEADERS "${ARG_HEADERS}")
  target_compile_features(${name} PUBLIC cxx_std_17)
  target_include_directories(${name} PUBLIC $<BUILD_INTERFACE:${CMAKE_BINARY_DIR}/include>
                             $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  target_link_libraries(${name} PUBLIC ${ARG_LINK})
  stn_compile_options(${name})

  if(ARG_LINKDEF)
    root_generate_dictionary(${name}Dict ${ARG_HEADERS} MODULE ${name} LINKDEF ${ARG_LINKDEF} NO_CXXMODULE)
    # What ROOT generates is not ours to keep free of warnings.
    target_compile_options(${name}Dict PRIVATE -w)
  endif()
  if(NOT ARG_EXPORT)
    set(ARG_EXPORT StnEventTargets)
  endif()

  install(TARGETS ${name} EXPORT ${ARG_EXPORT} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
  foreach(header ${ARG_HEADERS})
    get_filename_component(folder "${header}" DIRECTORY)
    install(FILES "${CMAKE_BINARY_DIR}/include/${header}" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/${folder}")
  endforeach()
endfunction()
