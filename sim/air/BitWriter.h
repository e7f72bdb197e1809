// Bytes of an air interface message being put together: big-endian, fields of any
// number of bits, the highest bit first.
#ifndef BIT_WRITER_H
#define BIT_WRITER_H

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "Wire.h"

class BitWriter {
  public:
    BitWriter() { m_aucBytes.reserve(uUsual); }

    // The low u32Width bits of u32Value, at most 32.
    BitWriter &Bits(uint32_t u32Value, uint32_t u32Width);
    BitWriter &U8(uint32_t u32Value) { return Bits(u32Value, 8); }
    BitWriter &U16(uint32_t u32Value) { return Bits(u32Value, 16); }
    BitWriter &U24(uint32_t u32Value) { return Bits(u32Value, 24); }
    BitWriter &U32(uint32_t u32Value) { return Bits(u32Value, 32); }
    BitWriter &Bytes(ByteView stBytes);
    // Zero bits up to the next whole byte.
    BitWriter &Pad();
    // Type, length and a value of 1 to 4 bytes.
    BitWriter &TLV(uint32_t u32Type, uint32_t u32Width, uint32_t u32Value);
    // Type, length and what another writer has put together, or bytes.
    BitWriter &TLV(uint32_t u32Type, const BitWriter &stValue) {
        return TLV(u32Type, stValue.View());
    }
    BitWriter &TLV(uint32_t u32Type, ByteView stValue);

    ByteView View() const { return {m_aucBytes.data(), static_cast<uint32_t>(m_aucBytes.size())}; }
    std::vector<uint8_t> Take() { return std::move(m_aucBytes); }

  private:
    static constexpr size_t uUsual = 96; // bytes that most messages do not exceed

    std::vector<uint8_t> m_aucBytes;
    uint32_t m_u32Free = 0; // bits of the last byte that are not in use
};

#endif
