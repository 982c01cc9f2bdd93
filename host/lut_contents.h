#pragma once

#include <filesystem>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

namespace host {

/// What a LUT file holds, and what of it the library is likely to take otherwise than its author meant.
struct LutContents {
  std::string format;              ///< ".cube" or ".3dl"; otherwise nothing more is known
  int size = 0;                    ///< points per axis, as the library counts them; 0: it finds none
  bool hasCurve = false;           ///< a one-dimensional table, alone or before the 3D table
  bool hasInputRange = false;      ///< the domain is that of LUT_3D_INPUT_RANGE, which the library does not know
  size_t rows = 0, shortRows = 0;  ///< all rows; those with fewer than three numbers
  cv::Vec3d domainMin = {0, 0, 0}, domainMax = {1, 1, 1};
  double least = 0.0, most = 0.0;  ///< of all values, as they stand in the file
  std::vector<cv::Vec3f> points;   ///< red, green, blue, in the order of the file
  std::string remarks;             ///< with a semicolon between two

  /// Format, size, rows, range of values and domain, in a line each.
  std::string description() const;

  /// A 3D table of .cube that can be resampled, whatever its domain.
  bool isWholeCube() const;

  /// The colour for an input, by tetrahedral interpolation. Inputs beyond the domain count as its ends.
  cv::Vec3d colourAt(const cv::Vec3d& input) const;

  /// Tells of the values with which the HDR path goes from black to white; empty without any. It keeps the low 8 bits
  /// of its results, so that -1.5 of 255 and less wrap around. The domain scales them.
  std::string wrappingValues() const;
};

/// Reads a LUT file. Throws an Error with its name when it cannot be read.
LutContents readLut(const std::filesystem::path& path);

}  // namespace host
