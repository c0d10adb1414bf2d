// The scripted camera behind the library's own layers, for fuzzers of what a camera or an application feeds them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "scripted_camera.h"

namespace fuzz {

/// What the camera says and holds. The producer is loaded, and the library started, on first use.
scripted::Space& cameraSpace();

/// The camera, open as an application opens it, with what cameraSpace() holds from now on.
class Camera {
 public:
  Camera();
  Camera(const Camera&) = delete;
  Camera& operator=(const Camera&) = delete;
  ~Camera();

  std::uint64_t handle() const { return handle_; }

 private:
  std::uint64_t handle_ = 0;
};

/// What the library finds behind the URLs when a camera gives them; empty when it finds nothing.
std::string descriptionBehind(std::vector<std::string> urls);

}  // namespace fuzz
