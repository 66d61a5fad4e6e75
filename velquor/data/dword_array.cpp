#include "velquor/data/dword_array.h"

namespace velquor {

VELQUOR_IMPLEMENT_RUNTIME_CLASS(CDWordArray, CObject, 1)
VELQUOR_IMPLEMENT_RUNTIME_CLASS(CUIntArray, CObject, 1)

}  // namespace velquor
