// The cameras that producers tell, those that the library lists, and why some are missing; the images of one of them.
#pragma once

#include "doctor/finding.h"
#include "doctor/producers.h"
#include "session.h"

namespace tool {

struct CameraExamination {
  Findings findings;
  std::string log;  ///< of the library's search, every detail
};

CameraExamination examineCameras(const Session& session, const ProducerExamination& producers);

/// Takes images for a short while and says what comes of it.
Findings examineImages(const Session& session, const std::string& camera);

}  // namespace tool
