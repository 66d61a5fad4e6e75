# Cross-compiling for Windows with Debian's mingw-w64 (the POSIX-threads variant, which
# std::thread and std::mutex need), for the processor VELQUOR_MINGW_PROCESSOR (x86_64 or
# i686) that the including toolchain file sets. Test programs run under Debian's Wine through
# tools/wine_run.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR ${VELQUOR_MINGW_PROCESSOR})
set(VELQUOR_MINGW_PREFIX ${VELQUOR_MINGW_PROCESSOR}-w64-mingw32)

set(CMAKE_C_COMPILER ${VELQUOR_MINGW_PREFIX}-gcc-posix)
set(CMAKE_CXX_COMPILER ${VELQUOR_MINGW_PREFIX}-g++-posix)
set(CMAKE_RC_COMPILER ${VELQUOR_MINGW_PREFIX}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${VELQUOR_MINGW_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../../tools/wine_run)
