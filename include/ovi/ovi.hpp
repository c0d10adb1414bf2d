/// @file
/// The library in C++17: owners that close what they opened, results as exceptions, features with types, images as
/// ranges.
///
/// A thin layer over ovi.h: calls are those of the C interface, everything has its native handle at hand, and nothing
/// here can do what ovi.h cannot. Threads, lifetimes and results are those of the C functions.
///
/// Failures throw Error. Where a failure is an everyday outcome, as of a wait, there is a second form that reports it
/// in a std::error_code: `if (error == ovi::Errc::kTimeout)`.
///
/// This file holds nothing but all parts of the layer; each of them can be included alone. What has no counterpart here
/// does the same as something that is here; it is called with a handle() and check().
#pragma once

#include "ovi/device.hpp"
#include "ovi/event.hpp"
#include "ovi/feature.hpp"
#include "ovi/feature_tree.hpp"
#include "ovi/feature_watch.hpp"
#include "ovi/image.hpp"
#include "ovi/library.hpp"
#include "ovi/ovi.h"
#include "ovi/recorder.hpp"
#include "ovi/result.hpp"
#include "ovi/scan.hpp"
#include "ovi/stream.hpp"

/// Everything of this layer.
namespace ovi {}
