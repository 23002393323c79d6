// Where the results for a sample go. Holds no state; safe from any thread.

#ifndef SAMPLE_APP_SAMPLEPATH_H_
#define SAMPLE_APP_SAMPLEPATH_H_

#include <string>

namespace sample_app {

// A place on this machine, or why there is none.
struct SamplePath {
  std::string path;     // of the sample file, absolute and without symbolic links in its folder
  std::string problem;  // empty: none

  bool isUsable() const { return problem.empty(); }
};

// Where the sample file with the device path `devicePath` lives. Not usable is one that is not
// absolute, names no file, holds ".." or a NUL, or whose folder is missing or lies, through a
// symbolic link, outside the root.
SamplePath locateSample(const std::string& devicePath);

}  // namespace sample_app

#endif  // SAMPLE_APP_SAMPLEPATH_H_
