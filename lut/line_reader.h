#pragma once

#include <cstddef>
#include <istream>
#include <memory>
#include <string_view>

#include "lut/lut_status.h"

namespace Lumvane {

/// Reads a LUT text line by line.
///
/// - Lines end in LF or CR. The first line decides which; with CR LF it is LF, and the CR stays at the end of each line
///   as white space.
/// - Empty lines, lines with only a CR, and lines whose first byte is '#' are skipped anywhere. Lines of blanks, or
///   with blanks before the '#', are not.
/// - Only the first 65536 bytes of a line count; a number or word that continues past them is cut there. Memory use
///   therefore does not depend on line length.
class LineReader {
 public:
  /// Reads `stream` from its current position. Bytes that are read ahead are not put back into the stream.
  explicit LineReader(std::istream& stream);

  /// The first error; callers may set it too. Nothing is read after it.
  LutStatus status = statusOk;

  /// Reads the next line that is not skipped, without its separator and otherwise untrimmed; valid until the next read.
  /// False if there is none or `status` is set. Requesting a line after the last one gives statusEndOfFile if that had
  /// no separator, and statusReadFailed if it had one or the stream failed. Throws std::bad_alloc when memory runs out,
  /// like all members.
  bool readLine(std::string_view& line);

  /// Makes the next readLine return the last line again.
  void putBack() { again_ = true; }

  /// Reads the next line as a row of three numbers, like scanRow. False as in readLine; `values` is then unchanged.
  bool readRow(float (&values)[3]);

 private:
  char detectLineSeparator();
  void takeLine();
  bool takePlainRow(float (&values)[3]);
  bool readMore();
  const char* ahead() const { return &buffer_[next_]; }

  std::streambuf* source_;          ///< null once the stream has ended or failed
  std::unique_ptr<char[]> buffer_;  ///< room for a line and one block read from the stream
  size_t next_ = 0;                 ///< where the next line starts
  size_t end_ = 0;                  ///< end of the bytes read; a NUL follows
  std::string_view line_;           ///< the last line returned
  bool again_ = false;
  bool failed_ = false;
  bool lastLineTaken_ = false;  ///< the last line, which had no separator
  char separator_;
};

/// Returns the first word of a line; empty if there is none.
std::string_view firstToken(std::string_view line);

/// True for the first token of a table row: "+" < token < ":" in byte order, that is, a token that begins with a digit,
/// comma, minus, point or slash, or with a "+" that is not alone.
bool beginsTable(std::string_view token);

}  // namespace Lumvane
