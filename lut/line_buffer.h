#pragma once

#include <istream>
#include <string_view>
#include <vector>

namespace Lumvane {

/// The text of a stream, line by line. Holds what the stream gives at a time and, if that is longer, one line.
class LineBuffer {
 public:
  /// Reads `stream` from where it stands. What it reads ahead is lost to the stream.
  explicit LineBuffer(std::istream& stream);

  enum class Result { kLine, kFailed, kEnded };

  /// Takes the next line, without its separator: kLine. `line` holds until the next call of any member. The last line
  /// may lack its separator; the call behind it gives kEnded. Where nothing is left behind a separator, and where the
  /// stream fails, it gives kFailed. Throws std::bad_alloc when memory runs out.
  Result takeLine(char separator, std::string_view& line);

  /// Puts the line that was taken last back; nothing else may have been called in between.
  void putBack();

  /// The byte `offset` bytes ahead, -1 behind the last one.
  int peek(size_t offset);

  /// What is at hand of the text to come, ended by a NUL. Never null.
  const char* ahead() const { return buffer_.data() + next_; }
  /// Moves on to `position`, which lies in what is at hand and at the start of a line.
  void moveTo(const char* position) { next_ = static_cast<size_t>(position - buffer_.data()); }

 private:
  bool readMore();

  std::streambuf* source_;    ///< null once it has ended or failed
  std::vector<char> buffer_;  ///< ends with a NUL behind `end_`
  size_t next_ = 0;           ///< where the next line starts
  size_t end_ = 0;            ///< of what was read
  size_t lineStart_ = 0;      ///< of the line taken last
  bool failed_ = false;
  bool lastLineTaken_ = false;  ///< the one without a separator
};

}  // namespace Lumvane
