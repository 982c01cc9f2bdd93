#include "lut/line_reader.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

#include "lut/numbers.h"

namespace Lumvane {
namespace {

constexpr size_t kBlock = size_t{1} << 15;
constexpr size_t kLongestFirstLine = 252;          // including its terminator
constexpr size_t kMaxLineBytes = size_t{1} << 16;  // the rest of a line is dropped
// A line that is already complete in the buffer is never longer than this, so takePlainRow need not check.
static_assert(kLongestFirstLine + kBlock <= kMaxLineBytes);

}  // namespace

LineReader::LineReader(std::istream& stream)
    : source_(stream.good() ? stream.rdbuf() : nullptr),
      buffer_(std::make_unique_for_overwrite<char[]>(kMaxLineBytes + kBlock + 1)),
      separator_(detectLineSeparator()) {}

// Reads ahead without consuming. A text shorter than the longest first line must also contain a terminator.
char LineReader::detectLineSeparator() {
  while (end_ <= kLongestFirstLine && readMore()) continue;
  const std::string_view text(ahead(), end_);
  const size_t found = text.substr(0, kLongestFirstLine).find_first_of("\r\n");
  if (found == text.npos) status = statusLineTooLong;
  return found != text.npos && text[found] == '\r' && text.substr(found + 1, 1) != "\n" ? '\r' : '\n';
}

bool LineReader::readLine(std::string_view& line) {
  if (!std::exchange(again_, false)) {
    line_ = {};
    while (status == statusOk && (line_.empty() || line_[0] == '#' || line_ == "\r")) takeLine();
  }
  line = line_;
  return status == statusOk;
}

void LineReader::takeLine() {
  if (lastLineTaken_) {
    status = statusEndOfFile;
    return;
  }
  const void* found;
  size_t searched = 0;
  while ((found = std::memchr(ahead() + searched, separator_, end_ - next_ - searched)) == nullptr) {
    end_ = std::min(end_, next_ + kMaxLineBytes);  // drops the excess of a long line
    searched = end_ - next_;
    if (readMore()) continue;
    lastLineTaken_ = true;
    if (failed_ || searched == 0) status = statusReadFailed;
    break;
  }
  const char* const end = found != nullptr ? static_cast<const char*>(found) : &buffer_[end_];
  line_ = std::string_view(ahead(), static_cast<size_t>(end - ahead())).substr(0, kMaxLineBytes);
  next_ = static_cast<size_t>(end - buffer_.get()) + (found != nullptr);
}

bool LineReader::readRow(float (&values)[3]) {
  if (status == statusOk && !again_ && takePlainRow(values)) return true;
  std::string_view line;
  if (!readLine(line)) return false;
  scanRow(line, values);
  return true;
}

// The fast path of readRow, for a line that is complete in the buffer and consists of three plain decimal numbers.
// Otherwise returns false, with nothing consumed or changed.
bool LineReader::takePlainRow(float (&values)[3]) {
  const char* p = ahead();
  const auto skipBlanks = [&] {
    while (*p == ' ' || *p == '\t') ++p;
  };
  const auto scan = [&](float& value) {
    skipBlanks();
    return (p = scanDecimal(p, value)) != nullptr;
  };
  float red, green, blue;  // not an array, to stay in registers
  if (!scan(red) || !scan(green) || !scan(blue)) return false;
  skipBlanks();
  if (*p == '\r' && separator_ == '\n') ++p;
  if (*p != separator_) return false;
  next_ = static_cast<size_t>(p + 1 - buffer_.get());
  values[0] = red;
  values[1] = green;
  values[2] = blue;
  return true;
}

// Drops consumed bytes and appends what the stream has available, after at most kMaxLineBytes kept bytes. False at the
// end of the stream.
bool LineReader::readMore() {
  if (source_ == nullptr) return false;
  if (next_ != 0) {  // once per line, however many reads it takes
    end_ -= next_;
    std::memmove(buffer_.get(), ahead(), end_);
    next_ = 0;
  }
  try {
    // Requesting one byte makes the stream fill its buffer, whose bytes it then returns without failing: nothing read
    // before a failure is lost.
    if (source_->sgetc() == std::char_traits<char>::eof()) {
      source_ = nullptr;
    } else {
      const auto present = std::clamp<std::streamsize>(source_->in_avail(), 1, kBlock);
      end_ += static_cast<size_t>(source_->sgetn(&buffer_[end_], present));
    }
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception&) {  // from the stream, for example a disk error
    source_ = nullptr;
    failed_ = true;
  }
  buffer_[end_] = '\0';
  return source_ != nullptr;
}

std::string_view firstToken(std::string_view line) {
  const auto start = std::find_if_not(line.begin(), line.end(), isSpace);
  return {start, std::find_if(start, line.end(), isSpace)};
}

bool beginsTable(std::string_view token) { return token > "+" && token < ":"; }

}  // namespace Lumvane
