// Lines, tokens and numbers, as both LUT text formats read them.
//
// Our reading of the doubtful points:
// - Lines end in LF or CR. The first line of the file decides which; with CR LF it is LF, and the CR stays at the end of
//   each line, where number parsing takes it for white space.
// - Empty lines, lines that hold only a CR, and lines whose very first byte is '#' are skipped anywhere in the file.
//   A line of blanks, or blanks and then '#', is not.
// - Numbers are read as in the C locale, whatever locale the host has set.
#pragma once

#include <istream>
#include <string>

#include "lut/lut_status.h"

namespace Lumvane {

/// Reads the first line byte by byte and returns what ends the lines of the file, LF or CR; sets `status` to
/// statusLineTooLong when no terminator stands within the first 252 bytes, also when the file is shorter than that. The
/// stream is back at its start afterwards.
char detectLineSeparator(std::istream& stream, LutStatus& status);

/// Returns the next line that is not skipped, without its separator and otherwise untrimmed. Sets `status` to
/// statusEndOfFile when the last line, one without a separator, has been returned before, and to statusReadFailed when
/// the stream fails, which it also does right behind a last line that had its separator.
std::string readLine(std::istream& stream, char separator, LutStatus& status);

/// The first word of a line between white space; empty when there is none.
std::string firstToken(const std::string& line);

/// True for the first token of a table row: "+" < token < ":" in byte order. That takes whatever begins with a digit,
/// comma, minus, point or slash, and a "+" with something behind it.
bool beginsTable(const std::string& token);

/// Scans up to three numbers from a table row, as a C scan with "%f %f %f" does. A column that does not convert, and
/// all behind it, keep what `values` held: a short row repeats the one before it.
void scanRow(const std::string& line, float (&values)[3]);

/// Reads `count` table rows and calls storeRow(number, values) for each, counting from 0. Columns that do not convert
/// repeat those of the row before, in the first row 0.0. Stops as soon as `status` is set.
template <class StoreRow>
void readRows(std::istream& stream, char separator, int32_t count, LutStatus& status, const StoreRow& storeRow) {
  float values[3] = {0.0f, 0.0f, 0.0f};
  for (int32_t number = 0; number < count && status == statusOk; ++number) {
    const std::string line = readLine(stream, separator, status);
    if (status != statusOk) return;
    scanRow(line, values);
    storeRow(number, values);
  }
}

}  // namespace Lumvane
