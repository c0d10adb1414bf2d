// Reading, checking and writing floats.
#include "nodes/float_base.h"

#include <algorithm>
#include <cmath>

#include "base/number_text.h"
#include "nodemap/node_map.h"

namespace GenApiEngine {
void FloatBase::SetValue(double value, bool verify) {
  WriteCall call(*this, "SetValue");
  writeFloat(value, verify);
  call.finish(verify);
}

Api::IFloat& FloatBase::operator=(double value) {
  FloatBase::SetValue(value, true);
  return *this;
}

double FloatBase::GetValue(bool verify, bool ignoreCache) {
  const Api::AutoLock lock(map().GetLock());
  if (isReady() && !verify && !ignoreCache) {
    return value_;
  }
  const Frame frame(*this, "GetValue");
  const double value = slowReadFloat({verify, ignoreCache});
  if (verify) {
    checkErrors();
  }
  return value;
}

double FloatBase::readFloat(ReadFlags flags) {
  if (isReady() && !flags.verify && !flags.ignoreCache) {
    return value_;
  }
  return slowReadFloat(flags);
}

double FloatBase::slowReadFloat(ReadFlags flags) {
  requireReadable();
  if (isSet(kValid) && !flags.verify && !flags.ignoreCache) {
    return value_;
  }
  const ValueDescent descent(*this, state_, kValueBusy);
  const double value = fetchFloat(flags);
  if (flags.verify) {
    checkRange(value);
  }
  value_ = value;
  valueRead();
  return value;
}

void FloatBase::writeFloat(double value, bool verify) {
  if (std::isnan(value)) {
    NODE_FAIL(*this, OutOfRangeException, "The value is not a number.");
  }
  if (verify) {
    requireWritable();
    checkRange(value);
  }
  const ValueDescent descent(*this, state_, kWriteBusy);
  storeFloat(value, verify);
  value_ = value;
  valueWritten();
}

void FloatBase::checkRange(double value) {
  const double min = floatMin();
  if (value < min) {
    NODE_FAIL(*this, OutOfRangeException, "Value %f must be greater than or equal %f.", value, min);
  }
  const double max = floatMax();
  if (value > max) {
    NODE_FAIL(*this, OutOfRangeException, "Value %f must be smaller than or equal %f.", value, max);
  }
}

std::int64_t FloatBase::readInt(ReadFlags flags) {
  constexpr double kEdge = 9223372036854775808.0;  // 2^63
  const double value = readFloat(flags);
  if (!(value >= -kEdge && value < kEdge)) {
    NODE_FAIL(*this, RuntimeException, "Value %f does not fit into an integer.", value);
  }
  return std::llround(value);
}

void FloatBase::writeInt(std::int64_t value, bool verify) {
  writeFloat(static_cast<double>(value), verify);
}

std::int64_t FloatBase::intMin() {
  return nearestInteger(floatMin());
}
std::int64_t FloatBase::intMax() {
  return nearestInteger(floatMax());
}
std::int64_t FloatBase::intInc() {
  double inc = 0.0;
  return floatInc(inc) ? std::max<std::int64_t>(1, nearestInteger(inc)) : 1;
}
void FloatBase::validInts(std::vector<std::int64_t>& values) {
  std::vector<double> own;
  validFloats(own);
  std::ranges::transform(own, std::back_inserter(values), nearestInteger);
}

double FloatBase::GetMin() {
  const Call call(*this, "GetMin");
  requireAvailable();
  const double natural = floatMin();
  return isSet(kImposedLimits) ? std::max(natural, map().imposedLimits(index()).floatMin.value_or(natural)) : natural;
}

double FloatBase::GetMax() {
  const Call call(*this, "GetMax");
  requireAvailable();
  const double natural = floatMax();
  return isSet(kImposedLimits) ? std::min(natural, map().imposedLimits(index()).floatMax.value_or(natural)) : natural;
}

bool FloatBase::HasInc() {
  const Call call(*this, "HasInc");
  double inc = 0.0;
  return floatInc(inc);
}

Api::EIncMode FloatBase::GetIncMode() {
  const Call call(*this, "GetIncMode");
  std::vector<double> values;
  validFloats(values);
  if (!values.empty()) {
    return Api::listIncrement;
  }
  double inc = 0.0;
  return floatInc(inc) ? Api::fixedIncrement : Api::noIncrement;
}

double FloatBase::GetInc() {
  const Call call(*this, "GetInc");
  requireAvailable();
  double inc = 0.0;
  if (!floatInc(inc)) {
    NODE_FAIL(*this, RuntimeException, "node does not have an increment.");
  }
  return inc;
}

Api::double_autovector_t FloatBase::GetListOfValidValues(bool bounded) {
  const Call call(*this, "GetListOfValidValues");
  std::vector<double> values;
  validFloats(values);
  if (bounded && !values.empty()) {
    const double min = floatMin();
    const double max = floatMax();
    std::erase_if(values, [=](double value) { return value < min || value > max; });
  }
  Api::double_autovector_t list(values.size());
  for (std::size_t i = 0; i < values.size(); ++i) {
    list[i] = values[i];
  }
  return list;
}

void FloatBase::ImposeMin(double value) {
  WriteCall call(*this, "ImposeMin");
  map().imposedLimits(index()).floatMin = value;
  set(kImposedLimits);
  map().invalidate(index());
  call.finish(false);
}

void FloatBase::ImposeMax(double value) {
  WriteCall call(*this, "ImposeMax");
  map().imposedLimits(index()).floatMax = value;
  set(kImposedLimits);
  map().invalidate(index());
  call.finish(false);
}

Api::ERepresentation FloatBase::GetRepresentation() {
  const Call call(*this, "GetRepresentation");
  return representation();
}
gcstring FloatBase::GetUnit() const {
  const Call call(*this, "GetUnit");
  return toGc(unit());
}
Api::EDisplayNotation FloatBase::GetDisplayNotation() const {
  const Call call(*this, "GetDisplayNotation");
  return displayNotation();
}
int64_t FloatBase::GetDisplayPrecision() const {
  const Call call(*this, "GetDisplayPrecision");
  return displayPrecision();
}

std::string FloatBase::textValue(ReadFlags flags) {
  const double value = readFloat(flags);
  try {
    return floatTextWithin(value, displayNotation(), displayPrecision(), floatMin(), floatMax());
  } catch (const GENICAM_NAMESPACE::GenericException&) {
    // Limits that cannot be told do not hide the value.
    return floatText(value, displayNotation(), displayPrecision());
  }
}

void FloatBase::setText(std::string_view text, bool verify) {
  const auto value = floatPrefix(text);
  if (!value) {
    NODE_FAIL(*this, InvalidArgumentException, "Node '%s' : cannot convert string '%s' to double.", nodeName().c_str(),
              std::string(text).c_str());
  }
  writeFloat(*value, verify);
}

}  // namespace GenApiEngine
