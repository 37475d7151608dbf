# Settings for Windows builds.
add_compile_definitions(NOMINMAX WIN32_LEAN_AND_MEAN)

enable_language(RC)

# Walks over folders are recursive, and each level of one in Outlook is a call to another program. 2 MB, which is usual
# here, are too few for folders 1,000 deep; memory is taken only as far as it is used.
add_link_options(LINKER:--stack,67108864)

# tidyfold_windows_resources(PROGRAM DESCRIPTION [ICON_NAME ICON]): icon, manifest and version of a program, as a
# source file in TIDYFOLD_RESOURCES.
function(tidyfold_windows_resources program description)
  set(TIDYFOLD_PROGRAM ${program})
  set(TIDYFOLD_DESCRIPTION ${description})
  set(TIDYFOLD_MANIFEST ${CMAKE_CURRENT_BINARY_DIR}/${program}.manifest)
  set(TIDYFOLD_ICON_LINE "")
  if(ARGC GREATER 3)
    set(TIDYFOLD_ICON_LINE "${ARGV2} ICON \"${ARGV3}\"")
  endif()
  set(resources ${CMAKE_CURRENT_BINARY_DIR}/${program}.rc)
  configure_file(${PROJECT_SOURCE_DIR}/packaging/program.manifest.in ${TIDYFOLD_MANIFEST} @ONLY)
  configure_file(${PROJECT_SOURCE_DIR}/packaging/program.rc.in ${resources} @ONLY)
  set_source_files_properties(${resources} PROPERTIES OBJECT_DEPENDS "${TIDYFOLD_MANIFEST};${ARGV3}")
  set(TIDYFOLD_RESOURCES ${resources} PARENT_SCOPE)
endfunction()

# When cross-compiling, programs run under Wine, with a prefix in the build tree and without Wine's .NET and web
# browser. Without a locale, Wine cannot create files with non-ASCII names.
if(CMAKE_CROSSCOMPILING)
  find_program(WINE NAMES wine wine64 REQUIRED)
  set(TIDYFOLD_WINE_PREFIX ${CMAKE_BINARY_DIR}/wine)
  set(run_in_wine ${CMAKE_BINARY_DIR}/run_in_wine)
  file(WRITE ${run_in_wine} "#!/bin/sh
export LC_ALL=C.UTF-8 WINEPREFIX=\"\${WINEPREFIX:-${TIDYFOLD_WINE_PREFIX}}\" WINEDEBUG=\${WINEDEBUG:--all} WINEDLLOVERRIDES='mscoree,mshtml='
exec '${WINE}' \"$@\"
")
  file(CHMOD ${run_in_wine} PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${run_in_wine})
  if(NOT EXISTS ${TIDYFOLD_WINE_PREFIX}/system.reg)
    message(STATUS "Creating a Wine prefix for the tests: ${TIDYFOLD_WINE_PREFIX}")
    execute_process(COMMAND ${run_in_wine} wineboot --init OUTPUT_QUIET ERROR_QUIET COMMAND_ERROR_IS_FATAL ANY)
  endif()
endif()
