# Cross-builds vexa for 64-bit Windows with Debian's MinGW-w64 (the POSIX thread model, which
# the C++ runtime's threads and clocks need). Test executables run under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(mingw_prefix x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${mingw_prefix}-gcc-posix)
set(CMAKE_CXX_COMPILER ${mingw_prefix}-g++-posix)
set(CMAKE_RC_COMPILER ${mingw_prefix}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${mingw_prefix})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Tests, test discovery and the examples run the Windows programs under Wine, through a
# wrapper that keeps Wine quiet and in a prefix of its own.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/wine-run.sh)
