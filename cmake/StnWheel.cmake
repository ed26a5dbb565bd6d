# For a wheel: ROOT is that of the Python environment that the wheel is built in. Its CMake files name a folder that does
# not exist (root-project/root issue 22654), so they are reached through a folder of links in which it does.
find_package(Python REQUIRED COMPONENTS Interpreter)
execute_process(
  COMMAND "${Python_EXECUTABLE}" -c "import importlib.util as u; print(u.find_spec('ROOT').submodule_search_locations[0])"
  OUTPUT_VARIABLE root_package OUTPUT_STRIP_TRAILING_WHITESPACE RESULT_VARIABLE no_root ERROR_QUIET)
if(no_root)
  message(FATAL_ERROR "${Python_EXECUTABLE} has no package 'root': install the version that python/pyproject.toml names")
endif()
get_filename_component(site_packages "${root_package}" DIRECTORY)
set(links "${CMAKE_BINARY_DIR}/root/lib/python")
file(MAKE_DIRECTORY "${links}")
foreach(link site-packages mock_site_packages)
  file(CREATE_LINK "${site_packages}" "${links}/${link}" SYMBOLIC)
endforeach()
set(ROOT_DIR "${links}/site-packages/ROOT/cmake" CACHE PATH "Folder of ROOTConfig.cmake" FORCE)
