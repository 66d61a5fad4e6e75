// Archives in memory for the serialisation tests.
#pragma once

#include <functional>
#include <optional>
#include <sstream>
#include <streambuf>
#include <string>

#include "velquor/frame/archive.h"
#include "velquor/frame/object.h"

namespace velquor::test {

// The cause of the ArchiveError `run` throws; none if it returns.
inline std::optional<ArchiveError::Cause> Caught(const std::function<void()>& run) {
  try {
    run();
  } catch (const ArchiveError& error) {
    return error.cause();
  }
  return std::nullopt;
}

// Runs `load` on an archive over `bytes` from a stream that can seek (so that the archive knows
// how many bytes are left) or from one that cannot; the cause of the error it throws, if any.
inline std::optional<ArchiveError::Cause> Loaded(std::string bytes, bool seekable,
                                                 const std::function<void(CArchive&)>& load) {
  struct OneWayBuffer : std::streambuf {
    explicit OneWayBuffer(std::string& d) { setg(d.data(), d.data(), d.data() + d.size()); }
  } oneWayBuffer(bytes);
  std::istringstream seekableStream(bytes);
  std::istream oneWayStream(&oneWayBuffer);
  CArchive archive(seekable ? static_cast<std::istream&>(seekableStream) : oneWayStream);
  return Caught([&] { load(archive); });
}

// The bytes `store` writes to a storing archive.
inline std::string Stored(const std::function<void(CArchive&)>& store) {
  std::ostringstream out;
  CArchive archive(out);
  store(archive);
  return out.str();
}
inline std::string Stored(CObject& object) {
  return Stored([&](CArchive& archive) { object.Serialize(archive); });
}

// Loads `object` from `bytes` on a seekable stream, letting an ArchiveError through.
inline void Load(CObject& object, const std::string& bytes) {
  std::istringstream in(bytes);
  CArchive archive(in);
  object.Serialize(archive);
}

}  // namespace velquor::test
