#include "hdr/hdr_load.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <mutex>
#include <new>
#include <opencv2/core.hpp>

#include "apply/lattice.h"
#include "apply/parallel_hdr_lut.h"
#include "base/band_rows.h"
#include "base/parallel.h"
#include "hdr/hdr_shared.h"
#include "lut/lut_file.h"
#include "lut/lut_format.h"

namespace Lumvane {
namespace {

ZeroPages allocateFrame(int32_t width, int32_t height) {
  constexpr int64_t kMaxPixels = std::numeric_limits<int32_t>::max() / 4;
  if (width < 0 || height < 0 || int64_t{width} * height > kMaxPixels) throw std::bad_alloc();
  return zeroPages(size_t{4} * static_cast<size_t>(width) * static_cast<size_t>(height));
}

// Several threads may create the first objects at the same time: one of them loads, the others wait.
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

bool loadHdrCube(VideoAdjustColor& object, const std::u16string& path, int transfer) {
  if (lutExtension(path) != u".CUBE") return false;
  LutFile file(path);
  if (!file.isOpen()) {
    // Running out of file descriptors does not mean that the file is missing: the next object may succeed.
    if (errno == EMFILE || errno == ENFILE) throw std::bad_alloc();
    return false;
  }
  std::istream stream(&file);
  return readHdrCube(object, stream, transfer);
}

bool readHdrCube(VideoAdjustColor& object, std::istream& stream, int transfer) {
  readHdrLattice(object, stream, transfer);
  if (object.latticeSize <= kLatticeStride) fillHdrCache(object, transfer);
  return object.loadOk;
}

// The first object of the process reads both files, HLG first, and keeps its size and tables in between. So a bad file
// meets what the one before it has left:
//
//   file                                object's size  shared size  tables        rows        cache
//   no size, or an error before it      as before      as before *  as before     zero        filled: all zero
//   an error in the header after it     of this file   of this file as before     zero        filled: all zero
//   a size above 65                     of this file   of this file as before     zero        zero
//   ends or fails within the rows       of this file   of this file of this file  those read  filled from these
//
// (* or the object's size, once one other header line was accepted.) Tables of another size are harmless to the two
// fills of zeros, but must not be combined with more: `ordinary` is false then, and FillCache takes any tables.
bool readHdrLattice(VideoAdjustColor& object, std::istream& stream, int transfer) {
  HdrTransferData& shared = hdrTransferData(transfer != 0);
  LineReader text(stream);
  const LutHeader header = readCubeHeader(text);
  // A file without a size uses the last one that the object read.
  if (header.latticeSize != 0) object.latticeSize = header.latticeSize;
  if (header.hasLines) shared.latticeSize = object.latticeSize;
  if (object.latticeSize > kLatticeStride) return object.loadOk = false;

  if (text.status == statusOk) fillInterpolationTables(object.latticeSize, object.fraction, object.cell);
  readRows(text, header,
           [&](int32_t red, int32_t green, int32_t blue) { return shared.lattice[red][green] + blue * 3; });
  return object.loadOk = text.status == statusOk;
}

void fillHdrCache(VideoAdjustColor& object, int transfer) {
  if (object.latticeSize == 0) return;
  HdrTransferData& shared = hdrTransferData(transfer != 0);
  const HdrLatticeView lut = {object.latticeSize, object.fraction, object.cell, shared.lattice};
  runParallel(kBands, parallelCacheCubeLut_(256 / kBands, lut, shared.cache));
  const float* const values = shared.lattice[0][0];
  shared.ordinary = shared.latticeSize == object.latticeSize && object.cell[255] == object.latticeSize - 1 &&
                    std::all_of(values, values + kLatticeStride * kLatticeStride * kLatticeStride * 3, isOrdinary);
}

}  // namespace Lumvane
