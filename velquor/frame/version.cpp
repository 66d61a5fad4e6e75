#include "velquor/frame/version.h"

#include "velquor/version.h"

namespace velquor {

const char* GetVersionString() { return VELQUOR_VERSION_STRING; }

}  // namespace velquor
