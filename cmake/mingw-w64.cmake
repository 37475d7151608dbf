# Cross-compiles for 64-bit Windows with Debian's MinGW-w64 (package g++-mingw-w64-x86-64-posix).
# The posix variant: the win32 one has no std::thread and std::mutex.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(triplet x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${triplet}-gcc-posix)
set(CMAKE_CXX_COMPILER ${triplet}-g++-posix)
set(CMAKE_RC_COMPILER ${triplet}-windres)

# Headers and libraries come from the target and from the folders in TIDYFOLD_WINDOWS_PREFIX (a list), the libraries
# that scripts/build_windows_libraries.sh builds; build tools come from this machine.
set(TIDYFOLD_WINDOWS_PREFIX "" CACHE STRING "Folders of the libraries built for Windows")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES TIDYFOLD_WINDOWS_PREFIX)
set(CMAKE_FIND_ROOT_PATH /usr/${triplet})
foreach(folder IN LISTS TIDYFOLD_WINDOWS_PREFIX)
  # wx-config resolves links in its paths.
  file(REAL_PATH ${folder} folder)
  list(APPEND CMAKE_FIND_ROOT_PATH ${folder})
endforeach()
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
list(TRANSFORM TIDYFOLD_WINDOWS_PREFIX APPEND /lib/pkgconfig OUTPUT_VARIABLE pkgconfig_folders)
list(JOIN pkgconfig_folders ":" pkgconfig_folders)
set(ENV{PKG_CONFIG_LIBDIR} "${pkgconfig_folders}")

# Static: programs depend on system libraries only.
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(CMAKE_SHARED_LINKER_FLAGS_INIT -static)
