#include "RegisterTest.h"

#include <cstdlib>
#include <memory>

#include "Console.h"
#include "HexDump.h"
#include "Input.h"
#include "Menu.h"
#include "Report.h"
#include "Wire.h"

namespace {

enum Option : int32_t { Read = 1, Write = 2, RepeatedRead = 3, RepeatedWrite = 4 };

constexpr const char *apcRegisterMenuLines[] = {
    "\n 1. READ REGISTER",
    "\n 2. WRITE TO REGISTER",
    "\n-1. GO TO MAIN MENU",
};

constexpr Menu stRegisterMenu = {"\n******** RDM-WRM MENU ********", apcRegisterMenuLines,
                                 "\n\n******************************"};

constexpr uint32_t u32Repetitions = 15000;
constexpr uint32_t u32RepetitionPause = 1000; // microseconds

// A register, and what is read from it and written to it.
namespace Register {
constexpr Field Word{0, FieldType::U32};
constexpr uint32_t Size = 4;
} // namespace Register

// What is kept from option to option.
struct Settings {
    uint32_t u32Address = 0;
    uint32_t u32Value = 0;
    int32_t iByteCount = 0;

    uint32_t ByteCount() const { return static_cast<uint32_t>(iByteCount); }
};

// Shows what was printed before the device gets to work.
int32_t ReadMemory(uint32_t u32Address, void *pvBuffer, uint32_t u32Count) {
    FlushOutput();
    return rdm(u32Address, pvBuffer, u32Count);
}

int32_t WriteRegister(const Settings &stSettings) {
    Record<Register::Size> stRegister;
    Put(stRegister.Span(), Register::Word, stSettings.u32Value);
    FlushOutput();
    return wrm(stSettings.u32Address, stRegister.aucBytes, Register::Size);
}

// A zeroed block of whole registers; null when there is no memory. From the C
// library, which hands out large blocks without touching them.
using Block = std::unique_ptr<uint8_t, decltype(&std::free)>;

uint32_t BlockSize(uint32_t u32Count) {
    return std::max((u32Count + Register::Size - 1) & ~(Register::Size - 1), Register::Size);
}

Block AllocateBlock(uint32_t u32Count) {
    Block pucBlock(static_cast<uint8_t *>(std::calloc(BlockSize(u32Count), 1)), &std::free);
    if (pucBlock == nullptr) {
        PutText("\n Error - Malloc failed!!!");
    }
    return pucBlock;
}

void PutFailedRead() { PutText("\nERROR!! RDM FAILED!!"); }
void PutFailedWrite() { PutText("\nERROR!! WRM FAILED!!"); }

// One report, however long. In pieces, so that it ends soon when the client has
// to.
void PutMemory(uint32_t u32Address, ByteView stBytes) {
    constexpr uint32_t u32Piece = 1U << 16;
    for (uint32_t i = 0; i < stBytes.u32Length; i += u32Piece) {
        PutHexLines("\n 0x%08x : ", u32Address + i, " 0x%02x", stBytes.From(i, u32Piece));
        EndIfOutputClosed();
    }
}

// The options return false when the whole test ends.
bool ReadOnce(Settings &stSettings) {
    stSettings.iByteCount = AskOption("\n ENTER NUMBER OF BYTES TO READ :");
    if (stSettings.iByteCount < 1) {
        PutText("\n Error !!!");
        return false;
    }
    const uint32_t u32Count = stSettings.ByteCount();
    const Block pucBlock = AllocateBlock(u32Count);
    if (pucBlock == nullptr) {
        return false;
    }
    if (ReadMemory(stSettings.u32Address, pucBlock.get(), u32Count) == 0) {
        PutMemory(stSettings.u32Address, {pucBlock.get(), u32Count});
    } else {
        PutFailedRead();
    }
    return true;
}

bool WriteOnce(Settings &stSettings) {
    if (WriteRegister(stSettings) != 0) {
        PutFailedWrite();
    }
    return true;
}

void PauseBetweenRepetitions() {
    FlushOutput();
    PauseMicroseconds(u32RepetitionPause);
    EndIfTold();
}

bool ReadRepeatedly(Settings &stSettings) {
    const uint32_t u32Count = stSettings.ByteCount();
    const Block pucBlock = AllocateBlock(u32Count);
    if (pucBlock == nullptr) {
        return false;
    }
    for (uint32_t i = 0; i < u32Repetitions; ++i) {
        std::memset(pucBlock.get(), 0, BlockSize(u32Count));
        // Here 0 counts as a failure: the repeated options judge the other way round.
        if (ReadMemory(stSettings.u32Address, pucBlock.get(), u32Count) == 0) {
            PutFailedRead();
            PutNumber("RDM FAILED FOR COUNT %d\n", i);
            break;
        }
        PutNumber("RDM SUCCESS %d\n", i);
        PutNumber("Register Value = %04x", Get({pucBlock.get(), Register::Size}, Register::Word));
        PauseBetweenRepetitions();
    }
    return true;
}

bool WriteRepeatedly(Settings &stSettings) {
    for (uint32_t i = 0; i < u32Repetitions; ++i) {
        if (WriteRegister(stSettings) == 0) { // as in the repeated read
            PutFailedWrite();
            break;
        }
        PutNumber("WRM SUCCESS %d\n", i);
        PauseBetweenRepetitions();
    }
    return true;
}

struct OptionRow {
    Option eOption;
    bool bAsksValue;
    bool (*pfnRun)(Settings &stSettings);
};

constexpr OptionRow astOptions[] = {
    {Read, false, ReadOnce},
    {Write, true, WriteOnce},
    {RepeatedRead, false, ReadRepeatedly},
    {RepeatedWrite, true, WriteRepeatedly},
};

// Asks for a hexadecimal number, and says so when it is none.
bool AskHexNumber(const char *pcPrompt, const char *pcInvalid, uint32_t *pu32Number) {
    PutText(pcPrompt);
    if (ReadHexNum(pu32Number) == 0) {
        PutLine(pcInvalid);
        return false;
    }
    return true;
}

bool RunOption(const OptionRow &stOption, Settings &stSettings) {
    if (!AskHexNumber("\nENTER THE REGISTER ADDRESS (XXXXXXXX):", "\nINVALID REGISTER ADDRESS!!",
                      &stSettings.u32Address)) {
        return true;
    }
    if (stOption.bAsksValue && !AskHexNumber("\nENTER THE VALUE (XXXXXXXX):",
                                             "\nINVALID HEX VALUE!!", &stSettings.u32Value)) {
        return true;
    }
    return stOption.pfnRun(stSettings);
}

const OptionRow *FindOption(int32_t iChoice) {
    for (const OptionRow &stOption : astOptions) {
        if (stOption.eOption == iChoice) {
            return &stOption;
        }
    }
    return nullptr;
}

} // namespace

int32_t TestRDMWRM() {
    Settings stSettings;
    for (;;) {
        const int32_t iChoice = AskMenu(stRegisterMenu);
        if (iChoice == iLeaveMenu) {
            return 1;
        }
        const OptionRow *pstOption = FindOption(iChoice);
        if (pstOption == nullptr) {
            PutLine("\nINVALID OPTION!!");
        } else if (!RunOption(*pstOption, stSettings)) {
            return 0;
        }
    }
}
