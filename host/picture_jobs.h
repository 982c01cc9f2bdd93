#pragma once

#include <functional>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace host {

/// Which pictures a command takes and where they go.
struct PictureArguments {
  std::vector<std::string> paths;  ///< pictures or one folder, then the output
  bool compare = false;            ///< also write a picture of before and after
};

/// Adds the arguments that all commands on pictures share. `arguments` has to outlive the parsing.
void addPictureArguments(CLI::App& command, PictureArguments& arguments);

/// Takes each picture through `edit`, BGRA to BGRA of the same size, with a progress bar for several of them. Throws a
/// Fault with the file's name when one cannot be read or written.
void editPictures(const PictureArguments& arguments, const std::function<cv::Mat(const cv::Mat&)>& edit);

}  // namespace host
