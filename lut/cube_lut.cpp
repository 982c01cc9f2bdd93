#include "lut/cube_lut.h"

#include <cstddef>
#include <cstring>
#include <fstream>
#include <opencv2/core.hpp>

#include "apply/frame_driver.h"
#include "lut/blend_table.h"
#include "lut/cube_text.h"
#include "lut/lut_file.h"

namespace Lumvane {

// What kernels read behind the last point of the lattice belongs to the object. With a destructor that is virtual the
// standard leaves offsetof to the compiler.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
static_assert(sizeof(CubeLut) >= offsetof(CubeLut, lattice) + sizeof(CubeLut::lattice) + sizeof(float));
#pragma GCC diagnostic pop

bool CubeLut::load(const std::u16string& path) {
  const auto extension = lutExtension(path);
  if (!extension) return false;
  std::ifstream stream = openLutFile(path);
  if (!stream.is_open()) return false;
  if (*extension == u".3DL") return read3dl(stream) == statusOk;
  if (*extension == u".CUBE") return readCube(stream) == statusOk;
  return false;
}

int32_t CubeLut::readCube(std::istream& stream) {
  status = statusOk;
  std::memset(lattice, 0, sizeof lattice);
  LineBuffer text(stream);
  const char separator = detectLineSeparator(text);
  const CubeHeader header = readCubeHeader(text, separator, status);
  if (header.latticeSize != 0) latticeSize = header.latticeSize;
  if (latticeSize > kLatticeStride) return status = statusSizeInvalid;
  fillInterpolationTables();
  readCubeRows(text, separator, header, status,
               [this](int32_t red, int32_t green, int32_t blue, const float(&values)[3]) {
                 std::memcpy(lattice[red][green][blue], values, sizeof values);
               });
  return status;
}

char CubeLut::detectLineSeparator(LineBuffer& text) { return Lumvane::detectLineSeparator(text, status); }

std::string_view CubeLut::readLine(LineBuffer& text, char separator) {
  return Lumvane::readLine(text, separator, status);
}

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
    if (isSmall(dst)) acquireTable();  // a process builds it in its first small frame, whatever the mode
    gradeFrameToPlane(dst, src, view);
  } else {
    const auto table = acquireTable();
    gradeFrame(dst, src, view, {table->multiply, table->mix}, sourceWeight);
  }
  return statusOk;
}

}  // namespace Lumvane
