// Shows the request of an operation without sending the request. The switch applies to the whole
// process, but not to its child processes. It is an environment variable with the process id, so
// that every copy of this code in the process sees it. Safe to call from any thread, but not at the
// same time as setDryRun() or setenv().

#ifndef BASE_DRYRUN_H_
#define BASE_DRYRUN_H_

#include <exception>
#include <string>

namespace base {

// During a dry run, HttpRequestRunner::PerformRequest throws this instead of sending. An exception
// ends the operation before the operation changes any state.
class DryRun : public std::exception {
 public:
  explicit DryRun(const std::string& curlCommand);
  ~DryRun() override;

  const char* what() const noexcept override;

  // The request as HttpRequest::toCurlRequest renders it. Credentials are not masked.
  const std::string& curlCommand() const;

 private:
  std::string curlCommand_;
};

// Starts or ends the dry run. It is off at the start.
void setDryRun(bool on);

// True during a dry run.
bool isDryRun();

}  // namespace base

#endif  // BASE_DRYRUN_H_
