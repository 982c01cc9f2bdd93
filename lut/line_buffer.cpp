#include "lut/line_buffer.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace Lumvane {
namespace {

constexpr size_t kBlock = size_t{1} << 16;

}  // namespace

LineBuffer::LineBuffer(std::istream& stream) : source_(stream.good() ? stream.rdbuf() : nullptr), buffer_(1) {}

LineBuffer::Result LineBuffer::takeLine(char separator, std::string_view& line) {
  if (lastLineTaken_) return Result::kEnded;
  for (size_t searched = 0;;) {
    const size_t present = end_ - next_;
    if (const void* found = std::memchr(ahead() + searched, separator, present - searched)) {
      line = {ahead(), static_cast<const char*>(found)};
      lineStart_ = next_;
      next_ += line.size() + 1;
      return Result::kLine;
    }
    searched = present;
    if (!readMore()) break;
  }
  if (failed_ || next_ == end_) return Result::kFailed;
  line = {ahead(), end_ - next_};
  lineStart_ = next_;
  next_ = end_;
  lastLineTaken_ = true;
  return Result::kLine;
}

void LineBuffer::putBack() {
  next_ = lineStart_;
  lastLineTaken_ = false;
}

int LineBuffer::peek(size_t offset) {
  while (end_ - next_ <= offset) {
    if (!readMore()) return -1;
  }
  return static_cast<unsigned char>(ahead()[offset]);
}

// Drops what has been taken and adds what the stream has at hand. False at its end.
bool LineBuffer::readMore() {
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

}  // namespace Lumvane
