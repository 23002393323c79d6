#include <orvane/utilities/CfgWrapper.h>

#include "base/Log.h"
#include "platform/host/ConfigFile.h"
#include "platform/host/RegistrationToken.h"

namespace orvane {
namespace utilities {

CfgWrapper::CfgWrapper(const std::string& path, OpenMode mode)
    : handle(new ov_config(path, mode == Write ? host::ConfigFile::Access::Write
                                               : host::ConfigFile::Access::Read)) {}

CfgWrapper::~CfgWrapper() {
  closeNoSave();
}

std::set<std::string> CfgWrapper::keys() const {
  return handle == nullptr ? std::set<std::string>() : handle->file.keys();
}

void CfgWrapper::save() {
  if (handle == nullptr) {
    BASE_LOG_FAILURE("Nothing is saved: the configuration is already closed");
    return;
  }
  host::ensureRegistrationToken(handle);
  handle->file.save();
}

void CfgWrapper::saveAndClose() {
  save();
  closeNoSave();
}

void CfgWrapper::closeNoSave() {
  delete handle;
  handle = nullptr;
}

}  // namespace utilities
}  // namespace orvane
