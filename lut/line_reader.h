#pragma once

#include <cstddef>
#include <istream>
#include <memory>
#include <string_view>

#include "lut/lut_status.h"

namespace Lumvane {

/// The lines of a LUT text, and how its reading goes.
///
/// - Lines end in LF or CR. The first line decides which; with CR LF it is LF, and the CR stays at the end of each line,
///   where it is white space.
/// - Empty lines, lines that hold only a CR, and lines whose very first byte is '#' are skipped anywhere. A line of
///   blanks, or blanks and then '#', is not.
/// - Of a line the first 65536 bytes count, and so does what they hold of a number or a word that runs on behind them:
///   files take the same small memory whatever their lines.
class LineReader {
 public:
  /// Reads `stream` from where it stands. What is read ahead is lost to the stream.
  explicit LineReader(std::istream& stream);

  /// The first fault, also one that a caller has found and set: nothing is read behind it.
  LutStatus status = statusOk;

  /// Takes the next line that is not skipped, without its separator and otherwise untrimmed; it holds until more is read.
  /// False when there is none or `status` is set. The last line may lack its separator: to want one more behind it gives
  /// statusEndOfFile. Where nothing is left behind a separator, and where the stream fails, it is statusReadFailed.
  /// Throws std::bad_alloc when memory runs out, as all members do.
  bool readLine(std::string_view& line);

  /// The line that was taken last comes once more.
  void putBack() { again_ = true; }

  /// Takes the next line as a row of three numbers, like scanRow. False as for lines; `values` is then as before.
  bool readRow(float (&values)[3]);

 private:
  char detectLineSeparator();
  void takeLine();
  bool takePlainRow(float (&values)[3]);
  bool readMore();
  const char* ahead() const { return &buffer_[next_]; }

  std::streambuf* source_;          ///< null once it has ended or failed
  std::unique_ptr<char[]> buffer_;  ///< what counts of a line and, behind it, what the stream gives at a time
  size_t next_ = 0;                 ///< where the next line starts
  size_t end_ = 0;                  ///< of what was read; a NUL stands behind it
  std::string_view line_;           ///< taken last
  bool again_ = false;
  bool failed_ = false;
  bool lastLineTaken_ = false;  ///< the one without a separator
  char separator_;
};

/// The first word of a line between white space; empty when there is none.
std::string_view firstToken(std::string_view line);

/// True for the first token of a table row: "+" < token < ":" in byte order. That takes whatever begins with a digit,
/// comma, minus, point or slash, and a "+" with something behind it.
bool beginsTable(std::string_view token);

}  // namespace Lumvane
