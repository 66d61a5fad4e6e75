# Windows x64 (64-bit) with mingw-w64: see mingw-w64.cmake.
set(VELQUOR_MINGW_PROCESSOR x86_64)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64.cmake)
