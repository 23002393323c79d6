// Strings as self-delimiting bytes in a stream. Holds no state; a stream is used by one thread at a
// time.

#ifndef PLATFORM_ORVANE_UTILITIES_SERIALIZATIONUTILS_H_
#define PLATFORM_ORVANE_UTILITIES_SERIALIZATIONUTILS_H_

#include <iosfwd>
#include <string>

namespace orvane {
namespace utilities {

class SerializationUtils {
 public:
  // Writes `value`, which may hold any bytes, so that it can be read back alone. Returns 0, or
  // another value when the stream failed.
  static int SerializeString(std::string const& value, std::ostream& out);

  // Reads exactly one string into `*value`. Returns 0, or another value when the stream ends before
  // the string does; the stream is then at its end.
  static int DeserializeString(std::istream& in, std::string* value);
};

}  // namespace utilities
}  // namespace orvane

#endif  // PLATFORM_ORVANE_UTILITIES_SERIALIZATIONUTILS_H_
