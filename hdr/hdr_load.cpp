#include "hdr/hdr_load.h"

#include <cstring>
#include <fstream>
#include <opencv2/core.hpp>

#include "apply/lattice.h"
#include "apply/parallel_hdr_lut.h"
#include "base/parallel.h"
#include "hdr/hdr_shared.h"
#include "lut/cube_text.h"
#include "lut/lut_file.h"

namespace Lumvane {
namespace {

constexpr int32_t kBands = 8;

}  // namespace

bool loadHdrCube(VideoAdjustColor& object, const std::u16string& path, int transfer) {
  const auto extension = lutExtension(path);
  if (!extension) return false;
  std::ifstream stream = openLutFile(path);
  if (!stream.is_open()) return false;
  return *extension == u".CUBE" && readHdrCube(object, stream, transfer);
}

bool readHdrCube(VideoAdjustColor& object, std::istream& stream, int transfer) {
  readHdrLattice(object, stream, transfer);
  if (object.latticeSize <= kLatticeStride) fillHdrCache(object, transfer);
  return object.loadOk;
}

bool readHdrLattice(VideoAdjustColor& object, std::istream& stream, int transfer) {
  const HdrTransferData shared = hdrTransferData(transfer != 0);
  LutStatus status = statusOk;
  LineBuffer text(stream);
  const char separator = detectLineSeparator(text, status);
  const CubeHeader header = readCubeHeader(text, separator, status);
  // A file without a size takes over the one that the object read last.
  if (header.latticeSize != 0) object.latticeSize = header.latticeSize;
  if (header.hasLines) shared.latticeSize = object.latticeSize;
  if (object.latticeSize > kLatticeStride) return object.loadOk = false;

  if (status == statusOk) fillInterpolationTables(object.latticeSize, object.fraction, object.cell);
  readCubeRows(text, separator, header, status, [&](int32_t red, int32_t green, int32_t blue, const float(&values)[3]) {
    std::memcpy(shared.lattice[red][green] + blue * 3, values, sizeof values);
  });
  return object.loadOk = status == statusOk;
}

void fillHdrCache(VideoAdjustColor& object, int transfer) {
  if (object.latticeSize == 0) return;
  const HdrTransferData shared = hdrTransferData(transfer != 0);
  parallelCacheCubeLut_ worker;
  worker.planesPerBand = 256 / kBands;
  worker.latticeSize = object.latticeSize;
  worker.fraction = object.fraction;
  worker.cell = object.cell;
  worker.lattice = shared.lattice;
  worker.cacheData = shared.cache.data();
  runParallel(kBands, worker);
}

}  // namespace Lumvane
