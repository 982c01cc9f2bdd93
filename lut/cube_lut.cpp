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
    LutHeader (*readHeader)(LineReader& text);
  } kFormats[] = {
      {u".CUBE", readCubeHeader},
      {u".3DL", read3dlHeader},
  };
  const std::u16string extension = lutExtension(path);
  if (extension.empty()) return false;
  LutFile file(path);
  if (!file.isOpen()) return false;
  std::istream stream(&file);
  for (const auto& format : kFormats) {
    if (extension == format.extension) return readTable(stream, format.readHeader) == statusOk;
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
                       int32_t srcStride) {
  return applyAndFade(dst, dstStride, src, width, height, srcStride, 0);
}

int32_t CubeLut::applyAndFade(uint8_t* dst, int32_t dstStride, const uint8_t* src, int32_t width, int32_t height,
                              int32_t srcStride, int32_t sourceWeight) {
  status = statusOk;
  if (latticeSize < 1 || latticeSize > kLatticeStride) return statusSizeInvalid;
  if (width <= 0 || height <= 0) return status;
  cv::Mat dstMat = wrapFrame(dst, width, height, dstStride, alphaMode ? CV_8UC1 : CV_8UC4);
  applyToMats(dstMat, wrapFrame(const_cast<uint8_t*>(src), width, height, srcStride), sourceWeight);
  return status;
}

int32_t CubeLut::applyToMats(cv::Mat& dst, const cv::Mat& src, int32_t sourceWeight) const {
  const LatticeView view = {latticeSize, fraction, cell, &lattice[0][0][0][0]};
  if (alphaMode) {
    if (isSmall(dst)) acquireTable();  // the first small frame of a process builds it, whatever the mode
    gradeFrameToPlane(dst, src, view);
  } else {
    const auto table = acquireTable();
    gradeFrame(dst, src, view, {table->multiply, table->mix}, sourceWeight);
  }
  return statusOk;
}

}  // namespace Lumvane
