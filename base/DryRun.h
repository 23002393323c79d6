// Shows a program the request of an operation without sending it. The switch applies to the
// process, but not to its children: it is the process's ID in an environment variable, which every
// copy of this code in the process reads. Safe from any thread, except beside setDryRun() or
// setenv().

#ifndef BASE_DRYRUN_H_
#define BASE_DRYRUN_H_

#include <exception>
#include <string>

namespace base {

// Thrown by HttpRequestRunner::PerformRequest in a dry run instead of sending. As it is an
// exception, the operation that built the request ends before it changes any state.
class DryRun : public std::exception {
 public:
  explicit DryRun(const std::string& curlCommand);
  ~DryRun() override;

  const char* what() const noexcept override;

  // The result of HttpRequest::toCurlRequest. Credentials are not masked.
  const std::string& curlCommand() const;

 private:
  std::string curlCommand_;
};

// Starts or ends the dry run; off until called.
void setDryRun(bool on);

// True while requests are not sent.
bool isDryRun();

}  // namespace base

#endif  // BASE_DRYRUN_H_
