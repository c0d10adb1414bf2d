// Makes a model of the text of one or several camera descriptions.
#pragma once

#include <memory>
#include <span>
#include <string_view>

#include "model/model.h"

namespace GenApiEngine {

/// Parses the documents, injects the second and further ones into the first, and resolves everything that can be
/// resolved once. Throws RuntimeException when there is no description to be had; whatever is wrong with single nodes
/// ends as a warning and as a node that is not implemented.
std::shared_ptr<const Model> buildModel(std::span<const std::string_view> documents);

}  // namespace GenApiEngine
