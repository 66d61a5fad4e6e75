# Windows x86 (32-bit) with mingw-w64: see mingw-w64.cmake.
set(VELQUOR_MINGW_PROCESSOR i686)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64.cmake)
