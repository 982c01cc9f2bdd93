// The memory of a reader does not grow with its file, here at sizes that no fuzzer produces.

#include <gtest/gtest.h>

#include <memory>
#include <sstream>

#include "hdr/hdr_load.h"
#include "hdr/hdr_shared.h"
#include "lut/cube_lut.h"
#include "tests/failing_allocator.h"

namespace Lumvane {
namespace {

TEST(ReaderMemory, StaysBelowOneMebibyte) {
  const auto lut = std::make_unique<CubeLut>();
  VideoAdjustColor object;
  allocateHdrData();
  using Reader = std::function<void(std::istream&)>;
  const Reader readers[] = {[&](auto& stream) { lut->readCube(stream); }, [&](auto& stream) { lut->read3dl(stream); },
                            [&](auto& stream) { readHdrLattice(object, stream, 0); }};
  constexpr size_t kLong = size_t{4} << 20;
  const std::string x(kLong, 'x'), ones(kLong, '1'), blanks(kLong, ' ');
  std::string header, rows = "0 1 2\n";
  while (header.size() < kLong) header += "DOMAIN_MAX 1 1 1\nLUT_3D_SIZE 2\n# x\n\n";
  while (rows.size() < kLong) rows += "0 0 0 0 0 0 0 0 # x\n";
  for (const std::string& text :
       {"#" + x, "TITLE " + x, x, blanks, "LUT_3D_SIZE " + ones, "LUT_3D_SIZE" + blanks, "DOMAIN_MIN " + ones,
        "DOMAIN_MAX" + blanks + "1 1 1", ones, "0." + ones, "0x" + ones, "1" + blanks + "x", "nan(" + x + ")",
        "0 " + ones + " 2\n" + ones, "0 1 2\n" + x, header, rows}) {
    for (const char* start : {"# \n", "# \nLUT_3D_SIZE 2\n", "# \nLUT_3D_SIZE 256\n"}) {
      for (const Reader& read : readers) {
        std::istringstream stream(start + text + "\n");
        EXPECT_LE(test::peakMemoryOf([&] { read(stream); }), size_t{1} << 20) << text.substr(0, 40);
      }
    }
  }
  dropHdrData();
}

}  // namespace
}  // namespace Lumvane
