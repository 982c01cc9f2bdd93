#include "hdr/video_adjust_color.h"

#include <limits>
#include <mutex>
#include <new>

#include "hdr/hdr_load.h"
#include "hdr/hdr_shared.h"

namespace Lumvane {
namespace {

std::unique_ptr<uint8_t[]> allocateFrame(int32_t width, int32_t height) {
  constexpr int64_t kMostPixels = std::numeric_limits<int32_t>::max() / 4;
  if (width < 0 || height < 0 || int64_t{width} * height > kMostPixels) throw std::bad_alloc();
  return std::make_unique<uint8_t[]>(size_t{4} * static_cast<size_t>(width) * static_cast<size_t>(height));
}

// The objects of several threads may come first at the same moment: one of them loads, the others wait.
void loadOnce(VideoAdjustColor& object) {
  static std::mutex mutex;
  const std::lock_guard lock(mutex);
  if (hdrDataLoaded()) return;
  try {
    allocateHdrData();
    loadHdrCube(object, object.hlgPath, 0);
    loadHdrCube(object, object.pqPath, 1);
  } catch (...) {
    dropHdrData();  // so that the next object tries again
    throw;
  }
}

}  // namespace

std::unique_ptr<VideoAdjustColor> createVideoAdjustColor(const char16_t* lutDirectory, int32_t reservedMode,
                                                         int32_t limitedRange, int32_t usePq, int32_t width,
                                                         int32_t height) {
  if (lutDirectory == nullptr) return nullptr;
  auto object = std::make_unique<VideoAdjustColor>();
  object->width = width;
  object->height = height;
  object->reservedMode = reservedMode;
  object->limitedRange = limitedRange;
  object->usePq = usePq;
  object->rgbaIn = allocateFrame(width, height);
  object->rgbaOut = allocateFrame(width, height);
  object->hlgPath = std::u16string(lutDirectory) + u"\\HDR_HLG.cube";
  object->pqPath = std::u16string(lutDirectory) + u"\\HDR_PQ.cube";
  loadOnce(*object);
  return object;
}

}  // namespace Lumvane
