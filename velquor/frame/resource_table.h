// A binary resource compiled into a module: its type, its name and its bytes.
#pragma once

#include <cstddef>
#include <span>

namespace velquor {

struct EmbeddedResource {
  const char* type;
  const char* name;
  const unsigned char* data;  // aligned to 16 bytes
  std::size_t size;
};

// The resources compiled into this library (generated at build time from velquor/resources).
std::span<const EmbeddedResource> EmbeddedResourceTable();

// Resource type under which a module keeps its string table: one or more UTF-8 texts of
// identifier/text lines (see string_table.h), each named after its topic. An identifier may
// appear in only one of them.
inline constexpr const char* kStringTableType = "VQSTRINGS";

}  // namespace velquor
