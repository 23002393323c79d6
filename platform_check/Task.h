// This program as the task that the checks of NewTask start.

#ifndef PLATFORM_CHECK_TASK_H_
#define PLATFORM_CHECK_TASK_H_

#include <string>

namespace platform_check {

// The argument after the path that makes this program a task; the report file follows.
extern const char kTaskArgument[];

// Whether the arguments are those of a task.
bool isTask(int count, char** arguments);

// Writes what the task sees to the report file: its process number, its session and its arguments,
// one per line. Ends when the report is removed, when the file with ".end" added exists, or after
// two minutes.
int runTask(int count, char** arguments);

}  // namespace platform_check

#endif  // PLATFORM_CHECK_TASK_H_
