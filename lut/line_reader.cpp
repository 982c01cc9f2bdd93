#include "lut/line_reader.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

#include "lut/numbers.h"

namespace Lumvane {
namespace {

constexpr size_t kBlock = size_t{1} << 16;
constexpr size_t kLongestFirstLine = 252;  // its terminator included

}  // namespace

LineReader::LineReader(std::istream& stream)
    : source_(stream.good() ? stream.rdbuf() : nullptr), buffer_(1), separator_(detectLineSeparator()) {}

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
  size_t length = 0;
  const auto atSeparator = [&] {
    const void* const found = std::memchr(ahead() + length, separator_, end_ - next_ - length);
    length = found != nullptr ? static_cast<size_t>(static_cast<const char*>(found) - ahead()) : end_ - next_;
    return found != nullptr;
  };
  while (!atSeparator()) {
    if (readMore()) continue;
    lastLineTaken_ = true;
    if (failed_ || length == 0) status = statusReadFailed;
    break;
  }
  line_ = {ahead(), length};
  next_ += length + !lastLineTaken_;
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
  next_ = static_cast<size_t>(p + 1 - buffer_.data());
  values[0] = red;
  values[1] = green;
  values[2] = blue;
  return true;
}

// Drops what has been taken and adds what the stream has at hand. False at its end.
bool LineReader::readMore() {
  if (source_ == nullptr) return false;
  if (next_ != 0) {  // once for a line, however many pieces it comes in
    end_ -= next_;
    std::memmove(buffer_.data(), ahead(), end_);
    next_ = 0;
  }
  // Doubled for lines that do not fit, so that the moves do not add up.
  if (buffer_.size() < end_ + kBlock + 1) buffer_.resize(std::max(end_ + kBlock + 1, 2 * buffer_.size()));
  try {
    // Asking for a single byte makes the stream fetch as many as it likes, and what it then has it gives without
    // failing: nothing that was read ahead of a failure is lost.
    if (source_->sgetc() == std::char_traits<char>::eof()) {
      source_ = nullptr;
    } else {
      const auto present = std::clamp<std::streamsize>(source_->in_avail(), 1, kBlock);
      end_ += static_cast<size_t>(source_->sgetn(buffer_.data() + end_, present));
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
