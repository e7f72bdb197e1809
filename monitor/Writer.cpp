#include "Writer.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <poll.h>
#include <unistd.h>

#include "HexDump.h"

void Writer::PutFraction(int64_t i64Value, uint32_t u32Divisor) {
    constexpr int iMostDecimals = 16;
    auto u64Value = static_cast<uint64_t>(i64Value);
    if (i64Value < 0) {
        u64Value = -u64Value;
        Put('-');
    }
    PutNumber(u64Value / u32Divisor);
    u64Value %= u32Divisor;
    if (u64Value != 0) {
        Put('.');
    }
    for (int i = 0; i < iMostDecimals && u64Value != 0; ++i) {
        u64Value *= 10;
        Put(static_cast<char>('0' + u64Value / u32Divisor));
        u64Value %= u32Divisor;
    }
}

void Writer::PutHex(ByteView stBytes, std::string_view strBetween) {
    constexpr uint32_t u32Piece = 1024;
    if (!strBetween.empty()) {
        for (uint32_t i = 0; i < stBytes.u32Length; ++i) {
            Put(i == 0 ? std::string_view() : strBetween);
            EndAt(WriteEachByte(Room(HexByte::Size), "%02x", stBytes.From(i, 1)));
        }
        return;
    }
    for (uint32_t i = 0; i < stBytes.u32Length; i += u32Piece) {
        char *pcRoom = Room(size_t{u32Piece} * HexByte::Size);
        EndAt(WriteEachByte(pcRoom, "%02x", stBytes.From(i, u32Piece)));
    }
}

void Writer::PutLong(std::string_view strText) {
    while (!strText.empty()) {
        const size_t uCount = std::min(strText.size(), uMostRoom);
        std::memcpy(Room(uCount), strText.data(), uCount);
        uUsed += uCount;
        strText.remove_prefix(uCount);
    }
}

void Writer::Flush() {
    const char *pcNext = pacText.get();
    if (pstrText != nullptr) {
        pstrText->append(pcNext, uUsed);
        uUsed = 0;
    }
    while (uUsed != 0 && iError == 0) {
        const ssize_t iWritten = write(iFile, pcNext, uUsed);
        if (iWritten >= 0) {
            pcNext += iWritten;
            uUsed -= static_cast<size_t>(iWritten);
            u64Bytes += static_cast<uint64_t>(iWritten);
        } else if (errno == EAGAIN) {
            pollfd stPoll{iFile, POLLOUT, 0};
            (void)poll(&stPoll, 1, -1);
        } else if (errno != EINTR) {
            iError = errno;
        }
    }
    uUsed = 0;
}
