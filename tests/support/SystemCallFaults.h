// System calls that fail, or transfer less than they were asked to, where a test arranges it. A
// program that compiles SystemCallFaults.cpp has open(), fstat(), read(), write(), ftruncate() and
// flock() of its own, which the libraries that it loads call, too.

#ifndef TESTS_SUPPORT_SYSTEMCALLFAULTS_H_
#define TESTS_SUPPORT_SYSTEMCALLFAULTS_H_

#include <cstddef>
#include <string>

namespace support {

// What is arranged holds while this object lives, for all threads. There is one at a time.
class SystemCallFaults {
 public:
  SystemCallFaults();
  ~SystemCallFaults();

  SystemCallFaults(const SystemCallFaults&) = delete;
  SystemCallFaults& operator=(const SystemCallFaults&) = delete;

  // From the `nth` call of this name on, counted from 1, `times` calls fail with `error`.
  void fail(const std::string& name, int error, int nth = 1, int times = 1);

  // No read() or write() transfers more than this.
  void transferAtMost(std::size_t bytes);

  // From the `nth` read() on there is nothing more to read.
  void endOfFileAtRead(int nth);

  // How often the call of this name was made.
  int count(const std::string& name) const;
};

}  // namespace support

#endif  // TESTS_SUPPORT_SYSTEMCALLFAULTS_H_
