// What comes before a camera's images: its stream, and the start, with what the library tells of it only in its log.
#pragma once

#include <cstdint>
#include <string>

#include "module_view.h"
#include "ovi/ovi.hpp"

namespace tool {

/// Opens the camera's stream with so many buffers. Throws ToolError when this machine has no room for them.
ovi::Stream openStream(const ModuleView& view, std::uint32_t buffers);

/// Starts the camera and its stream. Throws ToolError when the producer refuses to start the stream, with its code and
/// text; for the library that is no failure, as long as the camera starts. The camera is stopped again then.
void startCamera(const ModuleView& view, const ovi::Stream& stream);

/// Whether the library logged since Session::takeMessages that a stream did not start: this one, or any.
bool startWasRefused(Session& session, const std::string& streamId = {});

}  // namespace tool
