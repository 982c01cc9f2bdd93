// Lines, tokens and numbers, as both LUT text formats read them.
//
// Our reading of the doubtful points:
// - Lines end in LF or CR. The first line of the file decides which; with CR LF it is LF, and the CR stays at the end of
//   each line, where number parsing takes it for white space.
// - Empty lines, lines that hold only a CR, and lines whose very first byte is '#' are skipped anywhere in the file.
//   A line of blanks, or blanks and then '#', is not.
// - Numbers are read as in the C locale, whatever locale the host has set.
#pragma once

#include <string_view>

#include "lut/line_buffer.h"
#include "lut/lut_status.h"
#include "lut/numbers.h"

namespace Lumvane {

/// Returns what ends the lines of the text, LF or CR, from the first one; sets `status` to statusLineTooLong when no
/// terminator stands within the first 252 bytes, also when the text is shorter than that. To be called ahead of all
/// reading, and reads nothing.
char detectLineSeparator(LineBuffer& text, LutStatus& status);

/// Returns the next line that is not skipped, without its separator and otherwise untrimmed; it holds until more is
/// read. Sets `status` to statusEndOfFile when the last line, one without a separator, has been returned before, and to
/// statusReadFailed when the stream fails or ends right behind a separator.
std::string_view readLine(LineBuffer& text, char separator, LutStatus& status);

/// The first word of a line between white space; empty when there is none.
std::string_view firstToken(std::string_view line);

/// True for the first token of a table row: "+" < token < ":" in byte order. That takes whatever begins with a digit,
/// comma, minus, point or slash, and a "+" with something behind it.
bool beginsTable(std::string_view token);

/// scanRow of the line that is next in `text`, if it is three numbers in plain decimal form and nothing else. Otherwise
/// false, with nothing read and nothing changed.
bool takePlainRow(LineBuffer& text, char separator, float (&values)[3]);

/// Reads size^3 table rows and calls storeRow(slow, middle, fast, values) for each, with indices that count from 0 to
/// size - 1, `fast` in every row. Columns that do not convert repeat those of the row before, in the first row 0.0.
/// Stops as soon as `status` is set.
template <class StoreRow>
void readRows(LineBuffer& text, char separator, int32_t size, LutStatus& status, const StoreRow& storeRow) {
  float values[3] = {0.0f, 0.0f, 0.0f};
  for (int32_t slow = 0; slow < size; ++slow) {
    for (int32_t middle = 0; middle < size; ++middle) {
      for (int32_t fast = 0; fast < size; ++fast) {
        if (status != statusOk) return;
        if (!takePlainRow(text, separator, values)) {
          const std::string_view line = readLine(text, separator, status);
          if (status != statusOk) return;
          scanRow(line, values);
        }
        storeRow(slow, middle, fast, values);
      }
    }
  }
}

}  // namespace Lumvane
