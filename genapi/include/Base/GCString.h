/// gcstring: the string type of the GenICam interface. Text is UTF-8.
#pragma once

#include <istream>
#include <ostream>
#include <string>
#include <utility>

#include "Base/GCTypes.h"

namespace GENICAM_NAMESPACE {

class GCBASE_API gcstring {
 public:
  gcstring() = default;
  /// A null pointer makes an empty string.
  gcstring(const char* pc) : m_text(pc != nullptr ? pc : "") {}
  gcstring(const char* pc, size_t n) : m_text(pc != nullptr ? std::string(pc, n) : std::string()) {}
  gcstring(size_t count, char ch) : m_text(count, ch) {}
  gcstring(const gcstring&) = default;
  gcstring(gcstring&&) noexcept = default;
  virtual ~gcstring() = default;

  gcstring& append(const gcstring& str);
  gcstring& append(size_t count, char ch);
  gcstring& assign(const gcstring& str);
  gcstring& assign(size_t count, char ch);
  gcstring& assign(const char* pc);
  gcstring& assign(const char* pc, size_t n);
  int compare(const gcstring& str) const;
  const char* c_str() const { return m_text.c_str(); }
  bool empty() const { return m_text.empty(); }
  size_t find(char ch, size_t offset = 0) const;
  size_t find(const gcstring& str, size_t offset = 0) const;
  size_t find(const gcstring& str, size_t offset, size_t count) const;
  size_t find(const char* pc, size_t offset = 0) const;
  size_t find(const char* pc, size_t offset, size_t count) const;
  size_t length() const { return m_text.length(); }
  size_t size() const { return m_text.size(); }
  size_t max_size() const { return m_text.max_size(); }
  void resize(size_t n) { m_text.resize(n); }
  /// An offset behind the end gives an empty string.
  gcstring substr(size_t offset = 0, size_t count = static_cast<size_t>(-1)) const;
  size_t find_first_of(const gcstring& str, size_t offset = 0) const;
  size_t find_first_not_of(const gcstring& str, size_t offset = 0) const;
  static size_t _npos() { return std::string::npos; }  // NOLINT(bugprone-reserved-identifier)
  static constexpr size_t npos = static_cast<size_t>(-1);
  void swap(gcstring& right) noexcept { m_text.swap(right.m_text); }

  gcstring& operator=(const gcstring&) = default;
  gcstring& operator=(gcstring&&) noexcept = default;
  gcstring& operator=(const char* pc) { return assign(pc); }
  gcstring& operator=(char ch) { return assign(1, ch); }
  gcstring& operator+=(const gcstring& str) { return append(str); }
  gcstring& operator+=(const char* pc);
  gcstring& operator+=(char ch);
  bool operator==(const gcstring& str) const { return m_text == str.m_text; }
  bool operator!=(const gcstring& str) const { return m_text != str.m_text; }
  bool operator==(const char* pc) const { return pc != nullptr && m_text == pc; }
  bool operator!=(const char* pc) const { return !(*this == pc); }
  bool operator<(const gcstring& str) const { return m_text < str.m_text; }
  bool operator>(const gcstring& str) const { return m_text > str.m_text; }
  operator const char*() const { return m_text.c_str(); }

  friend gcstring operator+(const gcstring& left, const gcstring& right) { return gcstring(left).append(right); }
  friend gcstring operator+(const gcstring& left, const char* right) { return gcstring(left) += right; }
  friend gcstring operator+(const char* left, const gcstring& right) { return gcstring(left).append(right); }

 private:
  std::string m_text;
};

GCBASE_API std::ostream& operator<<(std::ostream& stream, const gcstring& str);
/// Extracts one word.
GCBASE_API std::istream& operator>>(std::istream& stream, gcstring& str);
GCBASE_API std::istream& getline(std::istream& stream, gcstring& str);
GCBASE_API std::istream& getline(std::istream& stream, gcstring& str, char delim);

}  // namespace GENICAM_NAMESPACE

#define GCSTRING_NPOS GENICAM_NAMESPACE::gcstring::_npos()
