#include "host/hdr_luts.h"

#include <gtest/gtest.h>

#include <cmath>

namespace host {
namespace {

// Published anchors: BT.2408 gives 203 cd/m2 as 58 % of PQ and 75 % of HLG; 10000 and 1000 cd/m2 are the tops.
TEST(HdrLuts, MeetTheAnchorsOfTheTransferFunctions) {
  EXPECT_NEAR(pqSignal(0.0), 0.0, 1e-6);
  EXPECT_NEAR(pqSignal(203.0), 0.580689, 1e-6);
  EXPECT_NEAR(pqSignal(1000.0), 0.751827, 1e-6);
  EXPECT_NEAR(pqSignal(10000.0), 1.0, 1e-12);
  EXPECT_NEAR(hlgSignal({203.0, 203.0, 203.0})[1], 0.75, 1e-3);
  EXPECT_NEAR(hlgSignal({1000.0, 1000.0, 1000.0})[1], 1.0, 1e-6);
}

// Light that the tone curve keeps comes out as the BT.1886 display shows it; peak is white; greys stay neutral.
TEST(HdrLuts, MapGreysNeutrally) {
  for (const auto& [light, shown] :
       {std::pair{0.0, 0.0}, {20.0, 20.0}, {87.0, 87.0}, {203.0, 159.0}, {1000.0, 203.0}}) {
    const auto hlg = hlgToBt709(hlgSignal({light, light, light}));
    const double pq = pqSignal(light);
    const auto fromPq = pqToBt709({pq, pq, pq});
    for (size_t c = 0; c < 3; ++c) {
      EXPECT_NEAR(std::pow(hlg[c], 2.4) * 203.0, shown, 0.1) << light;
      EXPECT_NEAR(hlg[c], fromPq[c], 1e-5) << light;
    }
  }
}

// A bright colour of BT.709 keeps the proportions of its light; one beyond BT.709 is brought to its edge.
TEST(HdrLuts, KeepHuesAndStayInGamut) {
  const double red2020 = 0.6274039, green2020 = 0.0690973, blue2020 = 0.0163914;  // of BT.709 red (BT.2087)
  const auto red = pqToBt709({pqSignal(900 * red2020), pqSignal(900 * green2020), pqSignal(900 * blue2020)});
  EXPECT_GT(red[0], 0.97);
  EXPECT_LT(std::max(red[1], red[2]), 0.1);
  for (int i = 0; i < 1000; ++i) {
    for (const double value : pqToBt709({i % 10 / 9.0, i / 10 % 10 / 9.0, i / 100 / 9.0})) {
      EXPECT_GE(value, 0.0);
      EXPECT_LE(value, 1.0);
    }
  }
}

}  // namespace
}  // namespace host
