// Strings as self-delimiting bytes in a stream; the sample queue file is a sequence of them. An
// integrator implements the class in liborvane_utilities.so. The functions have no state and may
// be called from any thread; a stream belongs to one thread at a time. How a string is encoded is
// the implementation's choice, but must not change: files of an earlier release stay readable.

#ifndef PLATFORM_ORVANE_UTILITIES_SERIALIZATIONUTILS_H_
#define PLATFORM_ORVANE_UTILITIES_SERIALIZATIONUTILS_H_

#include <iosfwd>
#include <string>

namespace orvane {
namespace utilities {

class SerializationUtils {
 public:
  // Writes `value`, which can be empty and can have any bytes, so that DeserializeString() finds
  // its end without further help. Must only append: the library passes streams that cannot seek.
  // Returns 0. Returns another value when the stream could not be written, or when the string is
  // longer than the encoding allows; the bytes in the stream are then of no use. Throws nothing,
  // unless the stream was told to throw.
  static int SerializeString(std::string const& value, std::ostream& out);

  // Reads one string into `*value` and not one byte beyond. Returns 0. Returns another value when
  // the stream ends before the string does, when the stream had failed before (a file that could
  // not be opened), or when the bytes are not an encoded string; the state of the stream is then
  // "end of file", because a reading loop of the library has no other way to end. `*value` is then
  // undefined but valid. A damaged length must not make the function allocate more memory than the
  // stream has bytes. Throws nothing, unless the stream was told to throw.
  static int DeserializeString(std::istream& in, std::string* value);
};

}  // namespace utilities
}  // namespace orvane

#endif  // PLATFORM_ORVANE_UTILITIES_SERIALIZATIONUTILS_H_
