// Reading spectra from CGATS.17 text files (ANSI CGATS.17, the exchange format of colour
// instruments and profiling tools).
//
// What is read:
//  - an optional first line holding only the file identifier ("CGATS.17", "CTI1" ...);
//  - header keywords, one per line: a name and the rest of the line as its value (quoted
//    strings, numbers); KEYWORD declarations are kept like any other header line;
//  - NUMBER_OF_FIELDS and NUMBER_OF_SETS, which must agree with the blocks when present;
//  - the field names between BEGIN_DATA_FORMAT and END_DATA_FORMAT (on one or more lines);
//  - the rows between BEGIN_DATA and END_DATA, one sample per line, fields separated by
//    blanks or tabs, text fields in double or single quotes.
// '#' at the start of a token begins a comment that runs to the end of the line. Only the
// first table of a file is read; anything after its END_DATA is ignored with a note.
//
// Spectral columns are recognised by name (ParseSpectralColumnName: SPECTRAL_NM380, nm380,
// SPEC_380, R_380 ...); SAMPLE_ID and SAMPLE_NAME name the samples. A spectral field that is
// "" (or NA, N/A, NaN, -) is a missing value; any other text there is an error.
//
// Errors name the file and line: an empty file, binary data, a line over 1 MiB, an unclosed
// quote, a block that is not closed, a row whose field count differs from the format, a
// value that is not a number, two columns of the same wavelength or name, counts that
// disagree with NUMBER_OF_FIELDS / NUMBER_OF_SETS, more than kMaxColumns columns, no
// spectral column, no sample. Memory grows with the samples read (a row costs at most about
// 16 bytes for each byte of its line) and, for a regular file of up to 1 GiB, which is read
// whole, with the file's size; a larger file or a stream is read in blocks, and then memory
// never grows with the length of a refused line.
//
// The data rows of a table held in memory (over 2 MiB of them) are read in blocks of about
// 1 MiB, cut at line ends, over BatchThreads() threads (velquor/frame/thread_pool.h); a block
// stops at the first row that is not plain (an odd byte, a quote left open, a wrong field
// count, a value that is not a number) and the rows from there on are read line by line. The
// result, messages and notes included, is the same as reading every line in turn, at any
// thread count.
// Nothing throws; on error `out` holds what was read so far and must not be used.
#pragma once

#include <string>
#include <string_view>

#include "velquor/io/line_reader.h"
#include "velquor/io/measurement_file.h"

namespace velquor {

// Reads the CGATS file at `path`.
MeasurementStatus ReadCgatsFile(const std::string& path, const ReadOptions& options,
                                MeasurementFile& out) noexcept;

// Reads CGATS text held in memory; `source` names it in messages.
MeasurementStatus ParseCgats(std::string_view text, const std::string& source,
                             const ReadOptions& options, MeasurementFile& out) noexcept;

// Reads CGATS lines from `reader`; `source` names them in messages.
MeasurementStatus ReadCgats(LineReader& reader, const std::string& source,
                            const ReadOptions& options, MeasurementFile& out) noexcept;

}  // namespace velquor
