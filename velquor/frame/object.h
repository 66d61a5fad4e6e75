// Object base of the library's record types: a run-time class record and the five virtual
// operations every class carries, in this order: GetRuntimeClass, the (deleting) destructor,
// Serialize, AssertValid, Dump.
#pragma once

#include <iosfwd>

namespace velquor {

class CArchive;
class CObject;

// Run-time class record: the class name, its size, the archive schema number, the base class
// record and, for classes that can be made by name, a factory.
struct CRuntimeClass {
  const char* className;
  int objectSize;
  unsigned schema;
  const CRuntimeClass* baseClass;
  CObject* (*createObject)();

  // True when this class is `base` or derives from it.
  bool IsDerivedFrom(const CRuntimeClass* base) const;
  // A new default-constructed object, or null when the class has no factory.
  CObject* CreateObject() const;
};

class CObject {
 public:
  static const CRuntimeClass classCObject;

  CObject() = default;
  CObject(const CObject&) = default;
  CObject& operator=(const CObject&) = default;

  virtual const CRuntimeClass* GetRuntimeClass() const;
  virtual ~CObject();
  // Stores the object into, or loads it from, an archive; the base class has no data.
  virtual void Serialize(CArchive& archive);
  // Checks the object's invariants; a broken invariant is a programming error (assert).
  virtual void AssertValid() const;
  // Writes a readable description of the object, for diagnostics.
  virtual void Dump(std::ostream& out) const;

  bool IsKindOf(const CRuntimeClass* cls) const { return GetRuntimeClass()->IsDerivedFrom(cls); }
};

}  // namespace velquor

// Declares the run-time class record of a class; pair with VELQUOR_IMPLEMENT_RUNTIME_CLASS.
#define VELQUOR_DECLARE_RUNTIME_CLASS(ClassName)                  \
 public:                                                          \
  static const ::velquor::CRuntimeClass class##ClassName;         \
  const ::velquor::CRuntimeClass* GetRuntimeClass() const override

// Defines the record of a default-constructible class that can be made by name.
#define VELQUOR_IMPLEMENT_RUNTIME_CLASS(ClassName, BaseName, schemaNumber)                  \
  const ::velquor::CRuntimeClass ClassName::class##ClassName = {                            \
      #ClassName, static_cast<int>(sizeof(ClassName)), schemaNumber,                        \
      &BaseName::class##BaseName,                                                           \
      []() -> ::velquor::CObject* { return new ClassName; }};                               \
  const ::velquor::CRuntimeClass* ClassName::GetRuntimeClass() const {                      \
    return &ClassName::class##ClassName;                                                    \
  }
