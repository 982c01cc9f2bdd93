#include "lut/line_reader.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

#include "lut/numbers.h"

namespace Lumvane {
namespace {

constexpr size_t kBlock = size_t{1} << 15;
constexpr size_t kLongestFirstLine = 252;            // its terminator included
constexpr size_t kBytesThatCount = size_t{1} << 16;  // of a line
// No line that is at hand when it is asked for is longer than that, and takePlainRow need not look.
static_assert(kLongestFirstLine + kBlock <= kBytesThatCount);

}  // namespace

LineReader::LineReader(std::istream& stream)
    : source_(stream.good() ? stream.rdbuf() : nullptr),
      buffer_(std::make_unique_for_overwrite<char[]>(kBytesThatCount + kBlock + 1)),
      separator_(detectLineSeparator()) {}

// Reads ahead and takes nothing. A text that is shorter than the longest first line has to have a terminator as well.
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
    end_ = std::min(end_, next_ + kBytesThatCount);  // drops what makes a line too long, however long it gets
    searched = end_ - next_;
    if (readMore()) continue;
    lastLineTaken_ = true;
    if (failed_ || searched == 0) status = statusReadFailed;
    break;
  }
  const char* const end = found != nullptr ? static_cast<const char*>(found) : &buffer_[end_];
  line_ = std::string_view(ahead(), static_cast<size_t>(end - ahead())).substr(0, kBytesThatCount);
  next_ = static_cast<size_t>(end - buffer_.get()) + (found != nullptr);
}

bool LineReader::readRow(float (&values)[3]) {
  if (status == statusOk && !again_ && takePlainRow(values)) return true;
  std::string_view line;
  if (!readLine(line)) return false;
  scanRow(line, values);
  return true;
}

// readRow of the line that is next, if it is at hand, three numbers in plain decimal form and nothing else. Otherwise
// false, with nothing taken and nothing changed.
bool LineReader::takePlainRow(float (&values)[3]) {
  const char* p = ahead();
  const auto skipBlanks = [&] {
    while (*p == ' ' || *p == '\t') ++p;
  };
  const auto scan = [&](float& value) {
    skipBlanks();
    return (p = scanDecimal(p, value)) != nullptr;
  };
  float red, green, blue;  // no array, to stay in registers
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

// Drops what has been taken and adds what the stream has at hand, behind at most kBytesThatCount. False at its end.
bool LineReader::readMore() {
  if (source_ == nullptr) return false;
  if (next_ != 0) {  // once for a line, however many pieces it comes in
    end_ -= next_;
    std::memmove(buffer_.get(), ahead(), end_);
    next_ = 0;
  }
  try {
    // Asking for a single byte makes the stream fetch as many as it likes, and what it then has it gives without
    // failing: nothing that was read ahead of a failure is lost.
    if (source_->sgetc() == std::char_traits<char>::eof()) {
      source_ = nullptr;
    } else {
      const auto present = std::clamp<std::streamsize>(source_->in_avail(), 1, kBlock);
      end_ += static_cast<size_t>(source_->sgetn(&buffer_[end_], present));
    }
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception&) {  // of the stream, a bad disk for example
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
