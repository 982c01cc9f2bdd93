#include "lut/cube_lut.h"

#include <cstddef>
#include <cstring>
#include <opencv2/core.hpp>

#include "apply/frame_driver.h"
#include "lut/blend_table.h"
#include "lut/lut_file.h"
#include "lut/lut_format.h"

namespace Lumvane {

// The float that kernels read past the last lattice point must be inside the object. For a class with a virtual
// destructor, support for offsetof is up to the compiler.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
static_assert(sizeof(CubeLut) >= offsetof(CubeLut, lattice) + sizeof(CubeLut::lattice) + sizeof(float));
#pragma GCC diagnostic pop

bool CubeLut::load(const std::u16string& path) {
  static constexpr struct {
    std::u16string_view extension;  // in upper case
    int32_t (CubeLut::*read)(std::istream& stream);
  } kFormats[] = {
      {u".CUBE", &CubeLut::readCube},
      {u".3DL", &CubeLut::read3dl},
  };
  const std::u16string extension = lutExtension(path);
  if (extension.empty()) return false;
  LutFile file(path);
  if (!file.isOpen()) return false;
  std::istream stream(&file);
  for (const auto& format : kFormats) {
    if (extension == format.extension) return (this->*format.read)(stream) == statusOk;
  }
  return false;
}

int32_t CubeLut::readTable(std::istream& stream, LutHeader (*readHeader)(LineReader& text)) {
  if (status != statusUnloaded) std::memset(lattice, 0, sizeof lattice);  // a new object's is zero
  LineReader text(stream);
  const LutHeader header = readHeader(text);
  status = text.status;
  if (header.latticeSize != 0) latticeSize = header.latticeSize;
  if (latticeSize > kLatticeStride) return status = statusSizeInvalid;
  fillInterpolationTables();
  readRows(text, header, [this](int32_t red, int32_t green, int32_t blue) { return lattice[red][green][blue]; });
  return status = text.status;
}

int32_t CubeLut::readCube(std::istream& stream) { return readTable(stream, readCubeHeader); }
int32_t CubeLut::read3dl(std::istream& stream) { return readTable(stream, read3dlHeader); }

void CubeLut::fillInterpolationTables() {
  if (status == statusOk) Lumvane::fillInterpolationTables(latticeSize, fraction, cell);
}

int32_t CubeLut::apply(uint8_t* dst, int32_t dstStride, const uint8_t* src, int32_t width, int32_t height,
                       int32_t srcStride, int32_t sourceWeight) {
  status = statusOk;
  if (latticeSize < 1 || latticeSize > kLatticeStride) return statusSizeInvalid;
  if (width <= 0 || height <= 0) return status;
  cv::Mat dstMat = wrapFrame(dst, width, height, dstStride, alphaMode ? CV_8UC1 : CV_8UC4);
  return applyToMats(dstMat, wrapFrame(const_cast<uint8_t*>(src), width, height, srcStride), sourceWeight);
}

int32_t CubeLut::applyToMats(cv::Mat& dst, const cv::Mat& src, int32_t sourceWeight) const {
  if (alphaMode) {
    if (isSmall(dst)) acquireTable();  // small frames build the shared table even in alphaMode
    gradeFrameToPlane(dst, src, view());
  } else {
    const auto table = acquireTable();
    gradeFrame(dst, src, view(), {table->multiply, table->mix}, sourceWeight);
  }
  return statusOk;
}

}  // namespace Lumvane
