// Reading, checking and writing integers.
#include "nodes/integer_base.h"

#include <algorithm>
#include <cinttypes>
#include <cmath>

#include "base/number_text.h"
#include "nodemap/node_map.h"

namespace GenApiEngine {
namespace {

constexpr std::int64_t kMin = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();
constexpr double kIntegerEdge = 9223372036854775808.0;  // 2^63

}  // namespace

void IntegerBase::SetValue(int64_t value, bool verify) {
  WriteCall call(*this, "SetValue");
  writeInt(value, verify);
  call.finish(verify);
}

Api::IInteger& IntegerBase::operator=(int64_t value) {
  IntegerBase::SetValue(value, true);
  return *this;
}

int64_t IntegerBase::GetValue(bool verify, bool ignoreCache) {
  const Api::AutoLock lock(map().GetLock());
  if (isReady() && !verify && !ignoreCache) {
    return value_;
  }
  const Frame frame(*this, "GetValue");
  const std::int64_t value = slowReadInt({verify, ignoreCache});
  if (verify) {
    checkErrors();
  }
  return value;
}

std::int64_t IntegerBase::readInt(ReadFlags flags) {
  if (isReady() && !flags.verify && !flags.ignoreCache) {
    return value_;
  }
  return slowReadInt(flags);
}

std::int64_t IntegerBase::slowReadInt(ReadFlags flags) {
  requireReadable();
  if (isSet(kValid) && !flags.verify && !flags.ignoreCache) {
    return value_;
  }
  const ValueDescent descent(*this, state_, kValueBusy);
  const std::int64_t value = fetchInt(flags);
  if (flags.verify) {
    checkRange(value);
  }
  value_ = value;
  valueRead();
  return value;
}

void IntegerBase::writeInt(std::int64_t value, bool verify) {
  if (verify) {
    requireWritable();
    checkRange(value);
  }
  const ValueDescent descent(*this, state_, kWriteBusy);
  storeInt(value, verify);
  value_ = value;
  valueWritten();
}

void IntegerBase::checkRange(std::int64_t value) {
  const std::int64_t min = intMin();
  if (value < min) {
    NODE_FAIL(*this, OutOfRangeException, "Value = %" PRId64 " must be equal or greater than Min = %" PRId64 ".", value,
              min);
  }
  const std::int64_t max = intMax();
  if (value > max) {
    NODE_FAIL(*this, OutOfRangeException, "Value = %" PRId64 " must be equal or smaller than Max = %" PRId64 ".", value,
              max);
  }
  const std::int64_t inc = intInc();
  if (inc <= 0) {
    NODE_FAIL(*this, LogicalErrorException, "Increment must be larger than 0.");
  }
  if ((static_cast<std::uint64_t>(value) - static_cast<std::uint64_t>(min)) % static_cast<std::uint64_t>(inc) != 0) {
    NODE_FAIL(*this, OutOfRangeException,
              "The difference between Value = %" PRId64 " and Min = %" PRId64
              " must be dividable without rest by Inc = %" PRId64 ".",
              value, min, inc);
  }
}

double IntegerBase::readFloat(ReadFlags flags) {
  return static_cast<double>(readInt(flags));
}

void IntegerBase::writeFloat(double value, bool verify) {
  if (!(value >= -kIntegerEdge && value < kIntegerEdge)) {
    NODE_FAIL(*this, OutOfRangeException, "Value %f does not fit into an integer.", value);
  }
  std::int64_t rounded = std::llround(value);
  const std::int64_t min = intMin();
  const std::int64_t inc = intInc();
  if (inc > 1 && rounded >= min) {
    const std::uint64_t rest =
        (static_cast<std::uint64_t>(rounded) - static_cast<std::uint64_t>(min)) % static_cast<std::uint64_t>(inc);
    const auto step = static_cast<std::uint64_t>(inc);
    const std::uint64_t up = rest > step - rest ? step : 0;
    rounded = static_cast<std::int64_t>(static_cast<std::uint64_t>(rounded) - rest + up);
  }
  writeInt(rounded, verify);
}

int64_t IntegerBase::GetMin() {
  const Call call(*this, "GetMin");
  requireAvailable();
  const std::int64_t natural = intMin();
  return isSet(kImposedLimits) ? std::max(natural, map().imposedLimits(index()).intMin.value_or(kMin)) : natural;
}

int64_t IntegerBase::GetMax() {
  const Call call(*this, "GetMax");
  requireAvailable();
  const std::int64_t natural = intMax();
  return isSet(kImposedLimits) ? std::min(natural, map().imposedLimits(index()).intMax.value_or(kMax)) : natural;
}

int64_t IntegerBase::GetInc() {
  const Call call(*this, "GetInc");
  requireAvailable();
  return intInc();
}

Api::EIncMode IntegerBase::GetIncMode() {
  const Call call(*this, "GetIncMode");
  std::vector<std::int64_t> values;
  validInts(values);
  return values.empty() ? Api::fixedIncrement : Api::listIncrement;
}

void IntegerBase::ImposeMin(int64_t value) {
  WriteCall call(*this, "ImposeMin");
  map().imposedLimits(index()).intMin = value;
  set(kImposedLimits);
  map().invalidate(index());
  call.finish(false);
}

void IntegerBase::ImposeMax(int64_t value) {
  WriteCall call(*this, "ImposeMax");
  map().imposedLimits(index()).intMax = value;
  set(kImposedLimits);
  map().invalidate(index());
  call.finish(false);
}

Api::int64_autovector_t IntegerBase::GetListOfValidValues(bool bounded) {
  const Call call(*this, "GetListOfValidValues");
  std::vector<std::int64_t> values;
  validInts(values);
  if (bounded && !values.empty()) {
    const std::int64_t min = intMin();
    const std::int64_t max = intMax();
    std::erase_if(values, [=](std::int64_t value) { return value < min || value > max; });
  }
  Api::int64_autovector_t list(values.size());
  for (std::size_t i = 0; i < values.size(); ++i) {
    list[i] = values[i];
  }
  return list;
}

void IntegerBase::validFloats(std::vector<double>& values) {
  std::vector<std::int64_t> own;
  validInts(own);
  std::ranges::transform(own, std::back_inserter(values), [](std::int64_t v) { return static_cast<double>(v); });
}

double IntegerBase::floatMin() {
  const std::int64_t min = intMin();
  return min == kMin ? -DBL_MAX : static_cast<double>(min);
}
double IntegerBase::floatMax() {
  const std::int64_t max = intMax();
  return max == kMax ? DBL_MAX : static_cast<double>(max);
}
bool IntegerBase::floatInc(double& increment) {
  increment = static_cast<double>(intInc());
  return true;
}

Api::ERepresentation IntegerBase::GetRepresentation() {
  const Call call(*this, "GetRepresentation");
  return representation();
}

gcstring IntegerBase::GetUnit() {
  const Call call(*this, "GetUnit");
  return toGc(unit());
}

std::string IntegerBase::textValue(ReadFlags flags) {
  const std::int64_t value = readInt(flags);
  return integerText(value, representation());
}

void IntegerBase::setText(std::string_view text, bool verify) {
  const auto value = integerFromText(text, representation());
  if (!value) {
    NODE_FAIL(*this, InvalidArgumentException, "Node '%s' : cannot convert string '%s' to int.", nodeName().c_str(),
              std::string(text).c_str());
  }
  writeInt(*value, verify);
}

}  // namespace GenApiEngine
