#include "hdr/hdr_load.h"

#include <opencv2/core.hpp>

#include "apply/parallel_hdr_lut.h"
#include "base/parallel.h"
#include "hdr/hdr_shared.h"
#include "lut/interpolation_tables.h"
#include "lut/lut_file.h"
#include "lut/lut_format.h"

namespace Lumvane {
namespace {

constexpr int32_t kBands = 8;

}  // namespace

bool loadHdrCube(VideoAdjustColor& object, const std::u16string& path, int transfer) {
  if (lutExtension(path) != u".CUBE") return false;
  LutFile file(path);
  std::istream stream(&file);
  return file.isOpen() && readHdrCube(object, stream, transfer);
}

bool readHdrCube(VideoAdjustColor& object, std::istream& stream, int transfer) {
  readHdrLattice(object, stream, transfer);
  if (object.latticeSize <= kLatticeStride) fillHdrCache(object, transfer);
  return object.loadOk;
}

bool readHdrLattice(VideoAdjustColor& object, std::istream& stream, int transfer) {
  const HdrTransferData shared = hdrTransferData(transfer != 0);
  LineReader text(stream);
  const LutHeader header = readCubeHeader(text);
  // A file without a size takes over the one that the object read last.
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
