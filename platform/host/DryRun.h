// Lets a program see the request of an operation without sending it. Safe to use from any thread;
// the switch holds for the whole process.

#ifndef PLATFORM_HOST_DRYRUN_H_
#define PLATFORM_HOST_DRYRUN_H_

#include <exception>
#include <string>

namespace host {

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

}  // namespace host

#endif  // PLATFORM_HOST_DRYRUN_H_
