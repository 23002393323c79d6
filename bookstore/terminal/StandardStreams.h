// The three descriptors that a process is started with. For the main thread, before anything else.

#ifndef BOOKSTORE_TERMINAL_STANDARDSTREAMS_H_
#define BOOKSTORE_TERMINAL_STANDARDSTREAMS_H_

namespace bookstore {

// Gives each standard stream that the caller closed a descriptor on which it fails, so that no file
// or connection opened later takes its number and receives what was meant for the stream.
void occupyStandardStreams();

}  // namespace bookstore

#endif  // BOOKSTORE_TERMINAL_STANDARDSTREAMS_H_
