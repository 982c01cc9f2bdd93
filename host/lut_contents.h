#pragma once

#include <filesystem>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

namespace host {

/// The contents of a LUT file, with remarks on what the library may read differently than its author meant.
struct LutContents {
  std::string format;              ///< ".cube" or ".3dl"; for others the rest is unset
  int size = 0;                    ///< points per axis, as the library counts them; 0: none found
  bool hasCurve = false;           ///< a one-dimensional table, alone or before the 3D table
  bool hasInputRange = false;      ///< the domain is from LUT_3D_INPUT_RANGE, which the library ignores
  size_t rows = 0, shortRows = 0;  ///< all rows; those with fewer than three numbers
  cv::Vec3d domainMin = {0, 0, 0}, domainMax = {1, 1, 1};
  double minValue = 0.0, maxValue = 0.0;  ///< as written in the file
  std::vector<cv::Vec3f> points;          ///< red, green, blue, in file order
  std::string remarks;                    ///< separated by semicolons

  /// Returns format, size and rows, range of values and domain, each on its own line.
  std::string description() const;

  /// Returns whether this is a complete .cube 3D table, which can be resampled whatever its domain.
  bool isWholeCube() const;

  /// Returns the colour for an input, by tetrahedral interpolation. Inputs are clamped to the domain.
  cv::Vec3d colourAt(const cv::Vec3d& input) const;

  /// Describes the values that wrap around from black to white in the HDR path; empty if there are none. It keeps the
  /// low 8 bits of its results, so that -1.5 of 255 and below wrap. The domain scales the values.
  std::string wrappingValues() const;
};

/// Reads a LUT file. Throws an Error with its name if it cannot be read.
LutContents readLut(const std::filesystem::path& path);

}  // namespace host
