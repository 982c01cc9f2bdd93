#pragma once

#include <cstddef>
#include <istream>
#include <memory>
#include <string_view>

#include "lut/lut_status.h"

namespace Lumvane {

/// The lines of a LUT text, and the state of reading it.
///
/// - Lines end in LF or CR. The first line decides which; with CR LF it is LF, and the CR stays at the end of each line
///   as white space.
/// - Empty lines, lines that hold only a CR, and lines whose very first byte is '#' are skipped anywhere. A line of
///   blanks, or blanks and then '#', is not.
/// - Only the first 65536 bytes of a line count; a number or a word that continues past them is cut there. Memory
///   therefore does not depend on the length of lines.
class LineReader {
 public:
  /// Reads `stream` from its current position. What is read ahead is lost to the stream.
  explicit LineReader(std::istream& stream);

  /// The first error, which a caller may also set: nothing is read after it.
  LutStatus status = statusOk;

  /// Takes the next line that is not skipped, without its separator and otherwise untrimmed; valid until the next read.
  /// False when there is none or `status` is set. The last line may lack its separator: requesting another line after
  /// it gives statusEndOfFile. If the text ends in a separator, or the stream fails, it is statusReadFailed. Throws
  /// std::bad_alloc when memory runs out, as all members do.
  bool readLine(std::string_view& line);

  /// The next readLine returns the last line again.
  void putBack() { again_ = true; }

  /// Takes the next line as a row of three numbers, like scanRow. False as for lines; `values` is then unchanged.
  bool readRow(float (&values)[3]);

 private:
  char detectLineSeparator();
  void takeLine();
  bool takePlainRow(float (&values)[3]);
  bool readMore();
  const char* ahead() const { return &buffer_[next_]; }

  std::streambuf* source_;          ///< null once it has ended or failed
  std::unique_ptr<char[]> buffer_;  ///< a line's bytes that count, then one read from the stream
  size_t next_ = 0;                 ///< where the next line starts
  size_t end_ = 0;                  ///< of the bytes read; a NUL follows
  std::string_view line_;           ///< the last one taken
  bool again_ = false;
  bool failed_ = false;
  bool lastLineTaken_ = false;  ///< the one without a separator
  char separator_;
};

/// The first word of a line; empty when there is none.
std::string_view firstToken(std::string_view line);

/// True for the first token of a table row: "+" < token < ":" in byte order, that is anything that begins with a digit,
/// comma, minus, point or slash, and a "+" followed by something.
bool beginsTable(std::string_view token);

}  // namespace Lumvane
