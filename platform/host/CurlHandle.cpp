#include "platform/host/CurlHandle.h"

#include <new>
#include <utility>

namespace host {

namespace {

thread_local CurlHandle::Owned idleHandle;

// libcurl is never shut down, because the process may have other users of libcurl.
bool startLibcurl() {
  static const CURLcode started = curl_global_init(CURL_GLOBAL_DEFAULT);
  return started == CURLE_OK;
}

CurlHandle::Owned takeHandle() {
  CurlHandle::Owned handle = std::move(idleHandle);
  if (!handle && startLibcurl()) {
    handle.reset(curl_easy_init());
  }
  return handle;
}

}  // namespace

void CurlList::append(const std::string& text) {
  curl_slist* longer = curl_slist_append(list_.get(), text.c_str());
  if (longer == nullptr) {
    throw std::bad_alloc();
  }
  static_cast<void>(list_.release());  // now part of the longer list
  list_.reset(longer);
}

CurlHandle::CurlHandle()
    : handle_(takeHandle()),
      optionFailure_(handle_ ? CURLE_OK : CURLE_FAILED_INIT),
      failureText_{} {
  set(CURLOPT_ERRORBUFFER, failureText_.data());
}

CurlHandle::~CurlHandle() {
  if (handle_) {
    curl_easy_reset(handle_.get());
    idleHandle = std::move(handle_);
  }
}

CURLcode CurlHandle::perform() {
  return optionFailure_ == CURLE_OK ? curl_easy_perform(handle_.get()) : optionFailure_;
}

std::string CurlHandle::failureText(CURLcode code) const {
  return failureText_.front() != '\0' ? failureText_.data() : curl_easy_strerror(code);
}

}  // namespace host
