// Finds the place for the results of a sample. Holds no state; safe from any thread.

#ifndef SAMPLE_APP_SAMPLEPATH_H_
#define SAMPLE_APP_SAMPLEPATH_H_

#include <string>

namespace sample_app {

// A path on this machine, or the problem with it.
struct SamplePath {
  std::string path;     // of the sample file, absolute and without symbolic links in its folder
  std::string problem;  // empty: none

  bool isUsable() const { return problem.empty(); }
};

// The path on this machine of the sample file with the device path `devicePath`. A path is not
// usable if it is not absolute, names a folder, or contains ".." or a NUL, or if its folder is
// missing or, through a symbolic link, outside the root folder.
SamplePath locateSample(const std::string& devicePath);

}  // namespace sample_app

#endif  // SAMPLE_APP_SAMPLEPATH_H_
