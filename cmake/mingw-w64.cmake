# For Windows, 64 bits, with Debian's MinGW-w64 (packages g++-mingw-w64-x86-64-posix and mingw-w64-tools).
# The posix flavour, because the win32 one has no std::thread and std::mutex.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(triplet x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${triplet}-gcc-posix)
set(CMAKE_CXX_COMPILER ${triplet}-g++-posix)
set(CMAKE_RC_COMPILER ${triplet}-windres)
set(PKG_CONFIG_EXECUTABLE ${triplet}-pkg-config)

# Headers and libraries come from the target and from the folders in TIDYFOLD_WINDOWS_PREFIX (a list), where the
# libraries built for Windows lie; programs that run while building come from this machine.
set(TIDYFOLD_WINDOWS_PREFIX "" CACHE STRING "Where the libraries built for Windows lie")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES TIDYFOLD_WINDOWS_PREFIX)
set(CMAKE_FIND_ROOT_PATH /usr/${triplet} ${TIDYFOLD_WINDOWS_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
