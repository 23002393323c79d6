// A process that saves a configuration file, for tests that interrupt it:
// ConfigSaver PATH PREFIX FROM COUNT BYTES
//
// Saves COUNT times, numbered from FROM. Each save writes the number, followed by BYTES of filling,
// to the keys PREFIX0 to PREFIX3. getppid() before and after marks the saves for a tracer.

#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <string>

#include <orvane/utilities/CfgWrapper.h>

using orvane::utilities::CfgWrapper;

int main(int argc, char** argv) {
  if (argc != 6) {
    return 2;
  }
  ::signal(SIGXFSZ, SIG_IGN);
  const std::string prefix = argv[2];
  const int from = std::atoi(argv[3]);
  const int count = std::atoi(argv[4]);
  const std::string filling(static_cast<std::size_t>(std::atoi(argv[5])), 'x');
  ::getppid();
  for (int number = from; number < from + count; ++number) {
    CfgWrapper config(argv[1], CfgWrapper::Write);
    for (int key = 0; key < 4; ++key) {
      const std::string value = std::to_string(number) + "." + filling;
      WriteString(config.handle, (prefix + std::to_string(key)).c_str(), value.c_str());
    }
    config.saveAndClose();
  }
  ::getppid();
}
