// What a transfer changes for its own length, and gives back whatever happens.
#include "transfer_scope.h"

#include <algorithm>
#include <limits>
#include <mutex>

#include "core/global_state.h"
#include "core/log.h"
#include "core/result.h"
#include "features/feature_parameter.h"
#include "features/typed_access.h"

namespace OVI {
namespace {

/** How many transfers want caching off, and what the application had set before the first. */
struct CachingUsers {
  std::mutex mutex;
  int count = 0;
  bool wasDisabled = false;

  static CachingUsers& instance() {
    static CachingUsers users;
    return users;
  }
};

}  // namespace

CachingOff::CachingOff() {
  CachingUsers& users = CachingUsers::instance();
  const std::lock_guard lock(users.mutex);
  if (users.count++ == 0)
    users.wasDisabled = GlobalState::instance().featureCachingDisabled();
  GlobalState::instance().setFeatureCachingDisabled(true);
}

CachingOff::~CachingOff() {
  CachingUsers& users = CachingUsers::instance();
  const std::lock_guard lock(users.mutex);
  if (--users.count == 0)
    GlobalState::instance().setFeatureCachingDisabled(users.wasDisabled);
}

ScopedTimeout::ScopedTimeout(std::uint64_t device, const char* feature, std::uint64_t value)
    : device_(device),
      feature_(feature) {
  oviErr code = OVI::oviGetFeatureParameter(device, feature, &old_, OVI_MODULE_LOCAL_DEVICE);
  // The record of any other node has neither value nor limits: 0 would be written.
  if (code == OVI_SUCCESS && (!old_.isFeature || old_.accessMode != OVI_ACCESS_READ_WRITE)) {
    code = OVI_ERR_NO_ACCESS;
  }
  if (code == OVI_SUCCESS && old_.featureType == OVI_FEATURE_INTEGER) {
    constexpr auto kLargest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    const auto wanted = static_cast<std::int64_t>(std::min(value, kLargest));
    code = OVI::oviSetFeatureInt(device, feature, std::max(old_.intMin, std::min(old_.intMax, wanted)),
                                 OVI_MODULE_LOCAL_DEVICE);
  } else if (code == OVI_SUCCESS && old_.featureType == OVI_FEATURE_FLOAT) {
    code = OVI::oviSetFeatureFloat(device, feature,
                                   std::max(old_.floatMin, std::min(old_.floatMax, static_cast<double>(value))),
                                   OVI_MODULE_LOCAL_DEVICE);
  } else {
    old_.featureType = OVI_FEATURE_UNKNOWN;
  }
  if (code != OVI_SUCCESS)
    OVI_LOG_DEBUG("OVI::ScopedTimeout") << feature << " is not adjusted. " << describeResult(code);
}

ScopedTimeout::~ScopedTimeout() {
  if (old_.featureType == OVI_FEATURE_UNKNOWN)
    return;
  try {
    const oviErr code = old_.featureType == OVI_FEATURE_INTEGER
                            ? OVI::oviSetFeatureInt(device_, feature_, old_.intValue, OVI_MODULE_LOCAL_DEVICE)
                            : OVI::oviSetFeatureFloat(device_, feature_, old_.floatValue, OVI_MODULE_LOCAL_DEVICE);
    if (code != OVI_SUCCESS)
      OVI_LOG_ERROR("OVI::ScopedTimeout") << "Failed to restore " << feature_ << ". " << describeResult(code);
  } catch (...) {  // The other settings are to be restored all the same.
    OVI_LOG_ERROR("OVI::ScopedTimeout") << "Failed to restore " << feature_ << ".";
  }
}

}  // namespace OVI
