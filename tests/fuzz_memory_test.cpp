// What a reader takes stays in proportion to its file: files as no fuzzer makes them, for their size.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>
#include <sstream>
#include <string>

#include "hdr/hdr_load.h"
#include "hdr/hdr_shared.h"
#include "lut/cube_lut.h"

namespace {

size_t inUse = 0, mostInUse = 0;
constexpr size_t kHeader = alignof(std::max_align_t);  // ahead of each piece, for its size

}  // namespace

void* operator new(size_t size) {
  auto* const memory = static_cast<char*>(std::malloc(size + kHeader));
  if (memory == nullptr) throw std::bad_alloc();
  *reinterpret_cast<size_t*>(memory) = size;
  inUse += size;
  mostInUse = std::max(mostInUse, inUse);
  return memory + kHeader;
}

void operator delete(void* memory) noexcept {
  if (memory == nullptr) return;
  char* const piece = static_cast<char*>(memory) - kHeader;
  inUse -= *reinterpret_cast<size_t*>(piece);
  std::free(piece);
}
void operator delete(void* memory, size_t) noexcept { operator delete(memory); }

namespace Lumvane {
namespace {

constexpr size_t kLong = size_t{4} << 20;

// The most that `read` has in use at a time beyond what there was before.
template <class Read>
size_t memoryOf(const Read& read) {
  const size_t before = mostInUse = inUse;
  read();
  return mostInUse - before;
}

// A line is read into a buffer that grows by doubling, and a word, or a number, of it into another one.
constexpr size_t kMost = 8 * kLong;

TEST(Memory, StaysInProportionToLongLinesOfCube) {
  const auto lut = std::make_unique<CubeLut>();
  VideoAdjustColor object;
  allocateHdrData();
  const std::string x(kLong, 'x'), ones(kLong, '1'), blanks(kLong, ' ');
  for (const std::string& line :
       {"#" + x, "TITLE " + x, x, blanks, "LUT_3D_SIZE " + ones, "LUT_3D_SIZE" + blanks, "DOMAIN_MIN " + ones,
        "DOMAIN_MAX" + blanks + "1 1 1", ones, "0." + ones, "0x" + ones, "1" + blanks + "x", "nan(" + x + ")"}) {
    for (const char* ahead : {"# \n", "# \nLUT_3D_SIZE 2\n", "# \nLUT_3D_SIZE 256\n"}) {
      std::istringstream first(ahead + line + "\n"), second(first.str());
      EXPECT_LE(memoryOf([&] { lut->readCube(first); }), kMost) << ahead << line.substr(0, 20);
      EXPECT_LE(memoryOf([&] { readHdrLattice(object, second, 0); }), kMost) << ahead << line.substr(0, 20);
    }
  }
  dropHdrData();
}

TEST(Memory, StaysInProportionToLongLinesOf3dl) {
  const auto lut = std::make_unique<CubeLut>();
  const std::string x(kLong, 'x'), ones(kLong, '1'), blanks(kLong, ' ');
  for (const std::string& line : {"#" + x, "Mesh " + x, x, blanks, ones, "0" + blanks, "0 " + ones + " 2\n" + ones}) {
    std::istringstream stream("# \n" + line + "\n");
    EXPECT_LE(memoryOf([&] { lut->read3dl(stream); }), kMost) << line.substr(0, 20);
  }
}

// Of rows and of header lines only one is there at a time.
TEST(Memory, DoesNotGrowWithTheNumberOfLines) {
  const auto lut = std::make_unique<CubeLut>();
  std::string lines, mesh = "0 1 2\n";
  while (lines.size() < kLong) lines += "DOMAIN_MAX 1 1 1\nLUT_3D_SIZE 2\n# x\n\n";
  while (mesh.size() < kLong) mesh += "0 0 0 0 0 0 0 0 # x\n";
  std::istringstream cube(lines), threeDl(mesh);
  EXPECT_LE(memoryOf([&] { lut->readCube(cube); }), kLong / 8);
  EXPECT_LE(memoryOf([&] { lut->read3dl(threeDl); }), kLong / 8);
}

}  // namespace
}  // namespace Lumvane
