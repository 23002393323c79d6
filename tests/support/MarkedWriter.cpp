// Writes three times and ends with the number of the first write that failed; 0 when none did, and
// always with 1 when it is given an argument. Marks the second and third write for a tracer.

#include <unistd.h>

int main(int argc, char**) {
  const char text[] = "text";
  const auto isWritten = [&text] { return ::write(STDERR_FILENO, text, 1) == 1; };
  if (!isWritten() || argc > 1) {
    return 1;
  }
  ::getppid();
  if (!isWritten()) {
    return 2;
  }
  if (!isWritten()) {
    return 3;
  }
  ::getppid();
  return 0;
}
