#include "air/BitWriter.h"

#include <algorithm>

BitWriter &BitWriter::Bits(uint32_t u32Value, uint32_t u32Width) {
    // As much at a time as the byte under way has room for.
    for (uint32_t u32Left = u32Width; u32Left > 0;) {
        if (m_u32Free == 0) {
            m_aucBytes.push_back(0);
            m_u32Free = 8;
        }
        const uint32_t u32Now = std::min(u32Left, m_u32Free);
        u32Left -= u32Now;
        m_u32Free -= u32Now;
        const uint32_t u32Part = (u32Value >> u32Left) & ((1U << u32Now) - 1);
        m_aucBytes.back() = static_cast<uint8_t>(m_aucBytes.back() | u32Part << m_u32Free);
    }
    return *this;
}

BitWriter &BitWriter::Bytes(ByteView stBytes) {
    if (m_u32Free == 0) {
        m_aucBytes.insert(m_aucBytes.end(), stBytes.pucData, stBytes.pucData + stBytes.u32Length);
        return *this;
    }
    for (uint32_t i = 0; i < stBytes.u32Length; ++i) {
        U8(stBytes.At(i));
    }
    return *this;
}

BitWriter &BitWriter::Pad() {
    m_u32Free = 0;
    return *this;
}

BitWriter &BitWriter::TLV(uint32_t u32Type, uint32_t u32Width, uint32_t u32Value) {
    return U8(u32Type).U8(u32Width).Bits(u32Value, 8 * u32Width);
}

// A length of 128 and more is preceded by the number of its bytes, with the highest
// bit set.
BitWriter &BitWriter::TLV(uint32_t u32Type, ByteView stValue) {
    constexpr uint32_t u32LongForm = 0x80;
    U8(u32Type);
    if (stValue.u32Length >= u32LongForm) {
        const uint32_t u32Bytes = stValue.u32Length > UINT8_MAX ? 2 : 1;
        U8(u32LongForm | u32Bytes).Bits(stValue.u32Length, 8 * u32Bytes);
    } else {
        U8(stValue.u32Length);
    }
    return Bytes(stValue);
}
