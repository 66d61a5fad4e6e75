#include "velquor/frame/object.h"

#include <ostream>

namespace velquor {

const CRuntimeClass CObject::classCObject = {"CObject", static_cast<int>(sizeof(CObject)),
                                             0xFFFF, nullptr, nullptr};

bool CRuntimeClass::IsDerivedFrom(const CRuntimeClass* base) const {
  for (const CRuntimeClass* cls = this; cls != nullptr; cls = cls->baseClass) {
    if (cls == base) return true;
  }
  return false;
}

CObject* CRuntimeClass::CreateObject() const {
  return createObject != nullptr ? createObject() : nullptr;
}

const CRuntimeClass* CObject::GetRuntimeClass() const { return &classCObject; }

CObject::~CObject() = default;

void CObject::Serialize(CArchive&) {}

void CObject::AssertValid() const {}

void CObject::Dump(std::ostream& out) const {
  out << "a " << GetRuntimeClass()->className << " at " << static_cast<const void*>(this) << '\n';
}

}  // namespace velquor
