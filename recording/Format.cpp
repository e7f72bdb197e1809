#include "Format.h"

#include <cstring>

#include "DiagnosticRecords.h"

namespace {

// The blocks of the file, by type.
constexpr uint32_t u32SectionHeaderBlock = 0x0A0D0D0A;
constexpr uint32_t u32InterfaceBlock = 1;
constexpr uint32_t u32PacketBlock = 6;

constexpr uint32_t u32ByteOrderMagic = 0x1A2B3C4D;
constexpr uint32_t u32LargestPacket = 256 * 1024;
static_assert(u32LargestPiece + Packet::u32LargestHead <= u32LargestPacket);

namespace SectionOption {
constexpr uint16_t Comment = 1;
constexpr uint16_t Hardware = 2;
constexpr uint16_t System = 3;
constexpr uint16_t Application = 4;
} // namespace SectionOption

constexpr uint16_t u16TimeResolutionOption = 9;
constexpr char cNanoseconds = 9;

namespace Tag {
constexpr uint16_t End = 0;
constexpr uint16_t Decoder = 12;
constexpr uint16_t Direction = 35;
} // namespace Tag

// Filled with zeroes to a multiple of four bytes.
constexpr std::string_view strOurDecoder("qor020\0\0", 8);
constexpr std::string_view strManagementDecoder = "wmx_mac_mgmt_msg_decoder";
constexpr std::string_view strBurstDecoder("wimax_pdu_burst_handler\0", 24);
static_assert(strOurDecoder.size() % 4 == 0 && strManagementDecoder.size() % 4 == 0 &&
              strBurstDecoder.size() % 4 == 0);

// An event, behind the tags.
namespace EventLayout {
constexpr Field u8Version{0, FieldType::U8};
constexpr Field u8Kind{1, FieldType::U8};
constexpr Field u16Flags{2, FieldType::U16};
constexpr Field u32Number{4, FieldType::U32};
constexpr Field u32BelongsTo{8, FieldType::U32};
constexpr Field s32Result{12, FieldType::I32};
constexpr Field u32DurationLow{16, FieldType::U32};
constexpr Field u32DurationHigh{20, FieldType::U32};
constexpr Field u32Handle{24, FieldType::U32};
constexpr Field u32Word{28, FieldType::U32};
constexpr Field u32Length{32, FieldType::U32};
constexpr uint32_t Size = 36;
static_assert(EndOf(u32Length) == Size);
} // namespace EventLayout

constexpr uint32_t u32PacketBlockHead = 28; // up to the packet's data

constexpr uint32_t Padding(size_t uLength) { return static_cast<uint32_t>(-uLength & 3); }

// Writes one behind the other; whoever calls has the room.
struct Writer {
    uint8_t *pucNext;

    void Little(uint32_t u32Value, uint32_t u32Width = 4) {
        for (uint32_t i = 0; i < u32Width; ++i) {
            *pucNext++ = static_cast<uint8_t>(u32Value >> (8 * i));
        }
    }
    void Big(uint32_t u32Value, uint32_t u32Width) {
        for (uint32_t i = u32Width; i > 0; --i) {
            *pucNext++ = static_cast<uint8_t>(u32Value >> (8 * (i - 1)));
        }
    }
    void Text(std::string_view strText) {
        std::memcpy(pucNext, strText.data(), strText.size());
        pucNext += strText.size();
    }
};

void WriteTags(Writer &stWriter, std::string_view strDecoder, bool bReceived) {
    stWriter.Big(Tag::Decoder, 2);
    stWriter.Big(static_cast<uint32_t>(strDecoder.size()), 2);
    stWriter.Text(strDecoder);
    stWriter.Big(Tag::Direction, 2);
    stWriter.Big(4, 2);
    stWriter.Big(bReceived ? 1 : 0, 4);
    stWriter.Big(Tag::End, 2);
    stWriter.Big(0, 2);
}

// Puts the packet's block around what stands in the head behind the room for it.
void Enclose(int64_t i64Time, ByteView stBytes, const Writer &stEnd, Packet *pstPacket) {
    pstPacket->u32Head = static_cast<uint32_t>(stEnd.pucNext - pstPacket->aucHead);
    pstPacket->stBytes = stBytes;
    const uint32_t u32Data = pstPacket->u32Head - u32PacketBlockHead + stBytes.u32Length;
    const uint32_t u32Padding = Padding(u32Data);
    pstPacket->u32Tail = u32Padding + 4;

    const auto u64Time = static_cast<uint64_t>(i64Time);
    Writer stHead{pstPacket->aucHead};
    stHead.Little(u32PacketBlock);
    stHead.Little(pstPacket->Size());
    stHead.Little(0); // the one interface
    stHead.Little(static_cast<uint32_t>(u64Time >> 32));
    stHead.Little(static_cast<uint32_t>(u64Time));
    stHead.Little(u32Data);
    stHead.Little(u32Data);
    Writer stTail{pstPacket->aucTail};
    stTail.Little(0, u32Padding);
    stTail.Little(pstPacket->Size());
}

void Append(std::string *pstrTo, uint32_t u32Value, uint32_t u32Width = 4) {
    uint8_t aucBytes[4];
    Writer{aucBytes}.Little(u32Value, u32Width);
    pstrTo->append(reinterpret_cast<const char *>(aucBytes), u32Width);
}

void AppendOption(std::string *pstrTo, uint16_t u16Option, std::string_view strValue) {
    strValue = strValue.substr(0, UINT16_MAX - 3);
    Append(pstrTo, u16Option, 2);
    Append(pstrTo, static_cast<uint32_t>(strValue.size()), 2);
    pstrTo->append(strValue).append(Padding(strValue.size()), '\0');
}

// A block around its content, without the end of options, which is zero.
std::string Block(uint32_t u32Type, const std::string &strContent) {
    constexpr uint32_t u32EndOfOptions = 0;
    const auto u32Size = static_cast<uint32_t>(strContent.size()) + 16;
    std::string strBlock;
    Append(&strBlock, u32Type);
    Append(&strBlock, u32Size);
    strBlock += strContent;
    Append(&strBlock, u32EndOfOptions);
    Append(&strBlock, u32Size);
    return strBlock;
}

// Without what fills it up.
std::string_view NameOf(std::string_view strFilled) {
    return strFilled.substr(0, strFilled.find('\0'));
}

// What the tags say; the data behind them.
struct Tags {
    std::string_view strDecoder;
    ByteView stData;
};

uint32_t GetBig16(ByteView stView, uint32_t u32Offset) {
    return static_cast<uint32_t>(stView.At(u32Offset)) << 8 | stView.At(u32Offset + 1);
}

// False when they do not end inside the packet.
bool ReadTags(ByteView stData, Tags *pstTags) {
    for (uint32_t u32At = 0; u32At + 4 <= stData.u32Length;) {
        const uint32_t u32Tag = GetBig16(stData, u32At);
        const uint32_t u32Length = GetBig16(stData, u32At + 2);
        u32At += 4;
        if (u32Tag == Tag::End) {
            pstTags->stData = stData.From(u32At);
            return true;
        }
        if (u32Tag == Tag::Decoder) {
            pstTags->strDecoder = TextOf(stData.From(u32At, u32Length));
        }
        u32At += u32Length + Padding(u32Length);
    }
    return false;
}

// They are traced as a DL-MAP is, and have no type to begin with; their first bits would be no
// duration of a frame.
bool AreCompressedMaps(const ManagementMessage &stManagement) {
    constexpr uint8_t u8DLMAP = 2;
    return stManagement.u8Code == u8DLMAP && !stManagement.bFromStation &&
           stManagement.stBody.At(0) >> 5 == 6;
}

} // namespace

bool IsReceived(EventKind eKind) {
    switch (eKind) {
    case EventKind::OpenResult:
    case EventKind::RegisterResult:
    case EventKind::SendResult:
    case EventKind::Message:
    case EventKind::ReadMemoryResult:
    case EventKind::WriteMemoryResult:
    case EventKind::CloseResult:
        return true;
    default:
        return false;
    }
}

PacketKind ReadPacket(ByteView stData, Event *pstEvent) {
    Tags stTags;
    const bool bWhole = ReadTags(stData, &stTags);
    if (stTags.strDecoder == strManagementDecoder || stTags.strDecoder == NameOf(strBurstDecoder)) {
        return PacketKind::Management;
    }
    if (stTags.strDecoder != NameOf(strOurDecoder)) {
        return PacketKind::Foreign;
    }
    using namespace EventLayout;
    const ByteView stFrom = stTags.stData;
    if (!bWhole || stFrom.u32Length < EventLayout::Size) {
        return PacketKind::Broken;
    }
    if (Get(stFrom, u8Version) != u8RecordingVersion) {
        return PacketKind::Newer;
    }
    const uint32_t u32Kind = Get(stFrom, u8Kind);
    if (u32Kind == 0 || u32Kind > static_cast<uint32_t>(eLastEventKind)) {
        return PacketKind::Broken;
    }
    pstEvent->eKind = static_cast<EventKind>(u32Kind);
    pstEvent->u16Flags = static_cast<uint16_t>(Get(stFrom, u16Flags));
    pstEvent->u32Number = Get(stFrom, u32Number);
    pstEvent->u32BelongsTo = Get(stFrom, u32BelongsTo);
    pstEvent->s32Result = GetSigned(stFrom, s32Result);
    pstEvent->u64Duration =
        static_cast<uint64_t>(Get(stFrom, u32DurationHigh)) << 32 | Get(stFrom, u32DurationLow);
    pstEvent->u32Handle = Get(stFrom, u32Handle);
    pstEvent->u32Word = Get(stFrom, u32Word);
    pstEvent->u32Length = Get(stFrom, u32Length);
    pstEvent->stBytes = stFrom.From(EventLayout::Size);
    return PacketKind::Event;
}

void WriteEvent(const Event &stEvent, Packet *pstPacket) {
    Writer stWriter{pstPacket->aucHead + u32PacketBlockHead};
    WriteTags(stWriter, strOurDecoder, IsReceived(stEvent.eKind));
    const ByteSpan stTo{stWriter.pucNext, EventLayout::Size};
    using namespace EventLayout;
    Put(stTo, u8Version, u8RecordingVersion);
    Put(stTo, u8Kind, static_cast<uint32_t>(stEvent.eKind));
    Put(stTo, u16Flags, stEvent.u16Flags);
    Put(stTo, u32Number, stEvent.u32Number);
    Put(stTo, u32BelongsTo, stEvent.u32BelongsTo);
    Put(stTo, s32Result, static_cast<uint32_t>(stEvent.s32Result));
    Put(stTo, u32DurationLow, static_cast<uint32_t>(stEvent.u64Duration));
    Put(stTo, u32DurationHigh, static_cast<uint32_t>(stEvent.u64Duration >> 32));
    Put(stTo, u32Handle, stEvent.u32Handle);
    Put(stTo, u32Word, stEvent.u32Word);
    Put(stTo, u32Length, stEvent.u32Length);
    stWriter.pucNext += EventLayout::Size;
    Enclose(stEvent.i64Time, stEvent.stBytes, stWriter, pstPacket);
}

bool ManagementMessageOf(ByteView stMessage, ManagementMessage *pstManagement) {
    using namespace TraceRecord;
    if (Get(stMessage, MessageHeader::usType) != TYPE_MAC_MGMT ||
        Get(stMessage, MessageHeader::usSubType) != SUBTYPE_MAC_MGMT_TRACE_IND) {
        return false;
    }
    const ByteView stRecord = stMessage.From(MessageHeader::Size);
    const uint32_t u32MessageCode = Get(stRecord, u32Code);
    const int32_t iLength = GetSigned(stRecord, s32BodyLength);
    if (stRecord.u32Length < aucBody || u32MessageCode > UINT8_MAX || iLength < 0) {
        return false;
    }
    pstManagement->u8Code = static_cast<uint8_t>(u32MessageCode);
    pstManagement->bFromStation = Get(stRecord, u8Direction) == MSToBS;
    pstManagement->stBody = stRecord.From(aucBody, static_cast<uint32_t>(iLength));
    return true;
}

void WriteManagementMessage(int64_t i64Time, const ManagementMessage &stManagement,
                            Packet *pstPacket) {
    Writer stWriter{pstPacket->aucHead + u32PacketBlockHead};
    const bool bMaps = AreCompressedMaps(stManagement);
    WriteTags(stWriter, bMaps ? strBurstDecoder : strManagementDecoder, !stManagement.bFromStation);
    if (!bMaps) {
        stWriter.Little(stManagement.u8Code, 1);
    }
    Enclose(i64Time, stManagement.stBody, stWriter, pstPacket);
}

std::string FileHead(const SectionTexts &stTexts) {
    std::string strSection;
    Append(&strSection, u32ByteOrderMagic);
    Append(&strSection, 1, 2); // the version of the file format, 1.0
    Append(&strSection, 0, 2);
    Append(&strSection, UINT32_MAX); // the section's length is not known
    Append(&strSection, UINT32_MAX);
    AppendOption(&strSection, SectionOption::Hardware, stTexts.strHardware);
    AppendOption(&strSection, SectionOption::System, stTexts.strSystem);
    AppendOption(&strSection, SectionOption::Application, stTexts.strClient);
    AppendOption(&strSection, SectionOption::Comment, stTexts.strComment);

    std::string strInterface;
    Append(&strInterface, u16UpperPDULinkType, 2);
    Append(&strInterface, 0, 2);
    Append(&strInterface, u32LargestPacket);
    AppendOption(&strInterface, u16TimeResolutionOption, std::string_view(&cNanoseconds, 1));
    return Block(u32SectionHeaderBlock, strSection) + Block(u32InterfaceBlock, strInterface);
}
