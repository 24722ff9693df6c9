# Cross compiler for 64-bit Windows: Debian's g++-mingw-w64-x86-64-posix. What the programs stand on is looked for in
# KV_WINDOWS_PREFIX alone, where tools/windows/build puts it; nothing of this machine's own libraries is taken.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES KV_WINDOWS_PREFIX)
set(CMAKE_FIND_ROOT_PATH ${KV_WINDOWS_PREFIX} /usr/x86_64-w64-mingw32)
set(CMAKE_PREFIX_PATH /)  # below the roots
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Windows 10 is the oldest that is served: UTF-8 code pages, long paths, per-monitor scaling.
add_compile_definitions(_WIN32_WINNT=0x0A00 WINVER=0x0A00 NOMINMAX WIN32_LEAN_AND_MEAN UNICODE _UNICODE)
set(CMAKE_CXX_STANDARD_INCLUDE_DIRECTORIES ${KV_WINDOWS_PREFIX}/include)  # as /usr/include is elsewhere
