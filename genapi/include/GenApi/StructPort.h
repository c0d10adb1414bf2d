/// A port onto a structure in memory, for tests.
#pragma once

#include <cstring>

#include "GenApi/PortImpl.h"

namespace GENAPI_NAMESPACE {

/// The registers are the members of Struct, beginning at an address. Access outside throws RuntimeException.
template<class Struct>
class CTestPortStruct : public CPortImpl, public Struct {
 public:
  explicit CTestPortStruct(int64_t BaseAddress = 0) : m_BaseAddress(BaseAddress) {
    std::memset(static_cast<void*>(static_cast<Struct*>(this)), 0, sizeof(Struct));
  }

  EAccessMode GetAccessMode() const override { return RW; }
  void Read(void* pBuffer, int64_t Address, int64_t Length) override {
    std::memcpy(pBuffer, At(Address, Length), static_cast<size_t>(Length));
    ++m_NumReads;
  }
  void Write(const void* pBuffer, int64_t Address, int64_t Length) override {
    std::memcpy(At(Address, Length), pBuffer, static_cast<size_t>(Length));
    ++m_NumWrites;
  }

  uint32_t GetNumReads() const { return m_NumReads; }
  uint32_t GetNumWrites() const { return m_NumWrites; }
  void ResetStatistics() { m_NumReads = m_NumWrites = 0; }

 private:
  uint8_t* At(int64_t Address, int64_t Length) {
    constexpr int64_t size = sizeof(Struct);
    if (Length < 0 || Length > size || Address < m_BaseAddress || Address - m_BaseAddress > size - Length)
      throw RUNTIME_EXCEPTION("Access to address %lld, length %lld, lies outside the structure",
                              static_cast<long long>(Address), static_cast<long long>(Length));
    return reinterpret_cast<uint8_t*>(static_cast<Struct*>(this)) + (Address - m_BaseAddress);
  }

  int64_t m_BaseAddress;
  uint32_t m_NumReads = 0;
  uint32_t m_NumWrites = 0;
};

}  // namespace GENAPI_NAMESPACE
