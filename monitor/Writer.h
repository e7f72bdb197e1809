// Text on its way to a descriptor or into a text: collected, and written in large pieces.
#ifndef MONITOR_WRITER_H
#define MONITOR_WRITER_H

#include <charconv>
#include <concepts>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "Wire.h"

struct Writer {
    static constexpr size_t uSize = size_t{256} * 1024;
    static constexpr size_t uMostRoom = uSize / 2;

    explicit Writer(int iDescriptor) : iFile(iDescriptor) {}
    explicit Writer(std::string *pstr) : iFile(-1), pstrText(pstr) {}

    // Room for so many characters, uMostRoom at most, and where what was written there ends.
    char *Room(size_t uBytes) {
        if (uSize - uUsed < uBytes) {
            Flush();
        }
        return pacText.get() + uUsed;
    }
    void EndAt(const char *pcEnd) { uUsed = static_cast<size_t>(pcEnd - pacText.get()); }

    void Put(char cChar) {
        *Room(1) = cChar;
        ++uUsed;
    }
    void Put(std::string_view strText) {
        if (strText.size() > uMostRoom) {
            PutLong(strText);
            return;
        }
        if (!strText.empty()) {
            std::memcpy(Room(strText.size()), strText.data(), strText.size());
            uUsed += strText.size();
        }
    }
    void PutNumber(std::integral auto Value, int iBase = 10) {
        constexpr size_t uMostDigits = 72;
        char *pcRoom = Room(uMostDigits);
        EndAt(std::to_chars(pcRoom, pcRoom + uMostDigits, Value, iBase).ptr);
    }
    // With zeroes in front.
    void PutDigits(uint32_t u32Value, uint32_t u32Digits) {
        char *pcRoom = Room(u32Digits);
        for (uint32_t i = u32Digits; i > 0; --i, u32Value /= 10) {
            pcRoom[i - 1] = static_cast<char>('0' + u32Value % 10);
        }
        uUsed += u32Digits;
    }
    void PutSpaces(size_t uCount) {
        std::memset(Room(uCount), ' ', uCount);
        uUsed += uCount;
    }
    // A number that stands in fractions of a unit, with all of its decimals or sixteen.
    void PutFraction(int64_t i64Value, uint32_t u32Divisor);
    // Both digits of every byte, one after the other, with something before each but the first.
    void PutHex(ByteView stBytes, std::string_view strBetween = {});

    // Writes what was collected. After a write has failed nothing is written any more.
    void Flush();

    int iFile;
    std::string *pstrText = nullptr; // in the place of the file
    int iError = 0;                  // of the first write that failed
    uint64_t u64Bytes = 0;           // written

  private:
    void PutLong(std::string_view strText);

    std::unique_ptr<char[]> pacText = std::make_unique_for_overwrite<char[]>(uSize);
    size_t uUsed = 0;
};

#endif
