#include <gtest/gtest.h>

#include "nle/nle_adjust_color_effect.h"

namespace Lumvane {
namespace {

TEST(NLEFilterParams, StripsTheSchemeFromPathsAlone) {
  struct Case {
    int type;
    const char *text, *stored;
  };
  for (const auto& c :
       {Case{5, "file:/a", "file:/a"}, Case{6, "file:/a", "a"}, Case{6, "a", "a"}, Case{6, "x file:/y", "x y"},
        Case{6, "file:/file:/a", "file:/a"}, Case{6, "File:/a", "File:/a"}}) {
    NLEFilterParams parameter;
    parameter.type = c.type;
    parameter.SetValue({3, c.text, 9});
    NLEFilterValue value;
    parameter.GetValue(value);
    EXPECT_EQ(value.text, c.stored);
    EXPECT_EQ(value.number, 3u);
    EXPECT_EQ(value.type, c.type);
    EXPECT_EQ(parameter.value.type, 9);
  }
}

TEST(NLEAdjustColorEffect, KeepsParametersByTheirExactNames) {
  NLEAdjustColorEffect effect(nullptr);
  NLEFilterValue value = {42, "as it was", 3};
  EXPECT_FALSE(effect.GetParameter("gain", value));
  EXPECT_EQ(value.text, "as it was");

  EXPECT_TRUE(effect.SetParameter("gain", {1, "one", 0}));
  EXPECT_TRUE(effect.SetParameter("Gain", {2, "two", 0}));
  EXPECT_TRUE(effect.SetParameter("", {3, "", 0}));
  EXPECT_TRUE(effect.SetParameter("gain", {4, "file:/four", 8}));
  EXPECT_EQ(effect.params.size(), 3u);
  EXPECT_TRUE(effect.GetParameter("gain", value));
  EXPECT_EQ(value.number, 4u);
  EXPECT_EQ(value.text, "file:/four");
  EXPECT_EQ(value.type, 5);
  EXPECT_EQ(effect.params["gain"]->key, "gain");
  EXPECT_EQ(effect.params["gain"]->value.type, 8);
  EXPECT_TRUE(effect.GetParameter("", value));
  EXPECT_EQ(value.number, 3u);
}

TEST(NLEAdjustColorEffect, DoesNothingByItself) {
  const auto context = std::make_shared<int>(1);
  {
    NLEAdjustColorEffect effect(context);
    const cv::Mat attached(2, 2, CV_8UC1, cv::Scalar(9));
    effect.SetAttachedMat(attached);
    effect.SetAttachedMat(effect.attachedMat);
    EXPECT_EQ(effect.attachedMat.data, attached.data);
    EXPECT_EQ(effect.Init(1, 2, 3, 4, 5), 0);
    EXPECT_EQ(effect.Process({}, {}, {}, 1, 1, 4), 0);
    EXPECT_EQ(effect.ReservedInt(), 0);
    EXPECT_FALSE(effect.ReservedFlag());
    EXPECT_EQ(effect.ReservedPair(), std::pair(uint64_t{0}, uint64_t{0}));
    EXPECT_EQ(context.use_count(), 2);
  }
  EXPECT_EQ(context.use_count(), 1);
}

}  // namespace
}  // namespace Lumvane
