// gcstring and its streams.
#include "Base/GCString.h"

#include <algorithm>
#include <cstring>

namespace GENICAM_NAMESPACE {

gcstring& gcstring::append(const gcstring& str) {
  m_text.append(str.m_text);
  return *this;
}

gcstring& gcstring::append(size_t count, char ch) {
  m_text.append(count, ch);
  return *this;
}

gcstring& gcstring::assign(const gcstring& str) {
  m_text = str.m_text;
  return *this;
}

gcstring& gcstring::assign(size_t count, char ch) {
  m_text.assign(count, ch);
  return *this;
}

gcstring& gcstring::assign(const char* pc) {
  m_text.assign(pc != nullptr ? pc : "");
  return *this;
}

gcstring& gcstring::assign(const char* pc, size_t n) {
  if (pc != nullptr)
    m_text.assign(pc, n);
  else
    m_text.clear();
  return *this;
}

int gcstring::compare(const gcstring& str) const {
  return m_text.compare(str.m_text);
}

size_t gcstring::find(char ch, size_t offset) const {
  return m_text.find(ch, offset);
}

size_t gcstring::find(const gcstring& str, size_t offset) const {
  return m_text.find(str.m_text, offset);
}

size_t gcstring::find(const gcstring& str, size_t offset, size_t count) const {
  return m_text.find(str.m_text.data(), offset, std::min(count, str.length()));
}

size_t gcstring::find(const char* pc, size_t offset) const {
  return pc != nullptr ? m_text.find(pc, offset) : npos;
}

size_t gcstring::find(const char* pc, size_t offset, size_t count) const {
  return pc != nullptr ? m_text.find(pc, offset, std::min(count, std::strlen(pc))) : npos;
}

gcstring gcstring::substr(size_t offset, size_t count) const {
  if (offset >= m_text.size())
    return {};
  return {m_text.data() + offset, std::min(count, m_text.size() - offset)};
}

size_t gcstring::find_first_of(const gcstring& str, size_t offset) const {
  return m_text.find_first_of(str.m_text, offset);
}

size_t gcstring::find_first_not_of(const gcstring& str, size_t offset) const {
  return m_text.find_first_not_of(str.m_text, offset);
}

gcstring& gcstring::operator+=(const char* pc) {
  if (pc != nullptr)
    m_text.append(pc);
  return *this;
}

gcstring& gcstring::operator+=(char ch) {
  m_text.push_back(ch);
  return *this;
}

std::ostream& operator<<(std::ostream& stream, const gcstring& str) {
  return stream << std::string_view(str.c_str(), str.length());
}

std::istream& operator>>(std::istream& stream, gcstring& str) {
  std::string word;
  stream >> word;
  str.assign(word.data(), word.size());
  return stream;
}

std::istream& getline(std::istream& stream, gcstring& str) {
  return getline(stream, str, '\n');
}

std::istream& getline(std::istream& stream, gcstring& str, char delim) {
  std::string line;
  std::getline(stream, line, delim);
  str.assign(line.data(), line.size());
  return stream;
}

}  // namespace GENICAM_NAMESPACE
