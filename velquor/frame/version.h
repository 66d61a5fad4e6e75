// Version of the library at run time (the headers' version is in velquor/version.h).
#pragma once

namespace velquor {

// "major.minor.patch" of the library that is running.
const char* GetVersionString();

}  // namespace velquor
