// Lets a program see the request of an operation without sending it. The switch holds for the whole
// process and not for those that it starts: it is the number of the process in an environment
// variable, so that every copy of this code in the process sees it. Safe to call from any thread
// that does not run alongside setDryRun() or setenv().

#ifndef BASE_DRYRUN_H_
#define BASE_DRYRUN_H_

#include <exception>
#include <string>

namespace base {

// What HttpRequestRunner::PerformRequest throws during a dry run in place of sending: an exception,
// so that the operation that built the request ends before it changes any state.
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

// Starts or ends the dry run; off until called.
void setDryRun(bool on);

// True while requests are not sent.
bool isDryRun();

}  // namespace base

#endif  // BASE_DRYRUN_H_
