// Writing a report from a signal handler: text and numbers.
#include "posix/signal_safe.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

namespace OVI::platform {

SignalSafeWriter& SignalSafeWriter::text(const char* text) noexcept {
  return this->text(text, std::strlen(text));
}

SignalSafeWriter& SignalSafeWriter::text(const char* text, std::uint64_t length) noexcept {
  while (file_ >= 0 && error_ == 0 && length > 0) {
    const ssize_t written = write(file_, text, length);
    if (written < 0 && errno == EINTR)
      continue;
    if (written <= 0) {
      error_ = written < 0 ? errno : EIO;
      break;
    }
    text += written;
    length -= static_cast<std::uint64_t>(written);
  }
  return *this;
}

SignalSafeWriter& SignalSafeWriter::decimal(std::uint64_t value) noexcept {
  std::array<char, 20> digits{};
  std::size_t first = digits.size();
  do {
    digits.at(--first) = static_cast<char>('0' + value % 10);
    value /= 10;
  } while (value > 0);
  return text(digits.data() + first, digits.size() - first);
}

SignalSafeWriter& SignalSafeWriter::hexadecimal(std::uint64_t value) noexcept {
  std::array<char, 18> digits{};
  std::size_t first = digits.size();
  do {
    digits.at(--first) = "0123456789abcdef"[value % 16];
    value /= 16;
  } while (value > 0);
  digits.at(--first) = 'x';
  digits.at(--first) = '0';
  return text(digits.data() + first, digits.size() - first);
}

SignalSafeWriter& SignalSafeWriter::utcTime(std::int64_t secondsSinceEpoch) noexcept {
  constexpr std::int64_t kDay = 86400;
  const std::int64_t days = secondsSinceEpoch / kDay;
  const auto second = static_cast<std::uint64_t>(secondsSinceEpoch % kDay);
  // The civil date from the day number; years begin in March here, so that a leap day is the last of its year.
  const std::int64_t shifted = days + 719468;
  const std::int64_t era = shifted / 146097;
  const std::int64_t dayOfEra = shifted % 146097;
  const std::int64_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const std::int64_t shiftedMonth = (5 * dayOfYear + 2) / 153;
  const std::int64_t day = dayOfYear - (153 * shiftedMonth + 2) / 5 + 1;
  const std::int64_t month = shiftedMonth < 10 ? shiftedMonth + 3 : shiftedMonth - 9;
  const std::int64_t year = yearOfEra + era * 400 + (month <= 2 ? 1 : 0);

  const auto twoDigits = [&](std::int64_t value) {
    if (value < 10)
      text("0");
    decimal(static_cast<std::uint64_t>(value));
  };
  decimal(static_cast<std::uint64_t>(year)).text("-");
  twoDigits(month);
  text("-");
  twoDigits(day);
  text(" ");
  twoDigits(static_cast<std::int64_t>(second / 3600));
  text(":");
  twoDigits(static_cast<std::int64_t>(second / 60 % 60));
  text(":");
  twoDigits(static_cast<std::int64_t>(second % 60));
  return text(" UTC");
}

}  // namespace OVI::platform
