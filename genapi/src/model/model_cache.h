// The models that the process has, found by the content of the description.
#pragma once

#include <memory>
#include <span>
#include <string_view>

#include "model/model.h"

namespace GenApiEngine {

enum class CacheUse { Automatic, OnlyCached, Bypass };

/// The model of these documents, shared when the process already has it.
///
/// @return null only for OnlyCached, when there is none; throws as buildModel does
std::shared_ptr<const Model> modelOf(std::span<const std::string_view> documents, CacheUse use,
                                     bool* wasCached = nullptr);

/// Forgets all models that no node map uses.
void clearModelCache();

}  // namespace GenApiEngine
