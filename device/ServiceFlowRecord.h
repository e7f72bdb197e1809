// Payloads of service flow requests and indications (type 6). Offsets in bytes
// from the start of the record, the set or the rule.
#ifndef SERVICE_FLOW_RECORD_H
#define SERVICE_FLOW_RECORD_H

#include "Wire.h"

// Which packets belong to a service flow. Bytes that are not named are zero.
namespace ClassifierRule {
inline constexpr Field u8ClassifierAction{0, FieldType::U8};
inline constexpr Field u8Param1{1, FieldType::U8};
inline constexpr Field u8Priority{10, FieldType::U8};
inline constexpr Field u8Protocol{15, FieldType::U8}; // IP protocol number
// What to match: how many bytes are valid, and the bytes themselves.
inline constexpr Field u8IPMaskedSrcAddrLength{16, FieldType::U8};
inline constexpr Field au8IPMaskedSrcAddr{17, FieldType::U8}; // 32 bytes
inline constexpr Field u8IPMaskedDestAddrLength{49, FieldType::U8};
inline constexpr Field au8IPMaskedDestAddr{50, FieldType::U8}; // 32 bytes
inline constexpr Field u8SrcPortRangeLength{82, FieldType::U8};
inline constexpr Field au8SrcPortRange{83, FieldType::U8}; // four bytes
inline constexpr Field u8DestPortRangeLength{87, FieldType::U8};
inline constexpr Field au8DestPortRange{88, FieldType::U8}; // four bytes
inline constexpr Field u8EthDestMacLength{92, FieldType::U8};
inline constexpr Field au8EthDestMac{93, FieldType::U8}; // 12 bytes
inline constexpr Field u8EthSrcMacLength{105, FieldType::U8};
inline constexpr Field au8EthSrcMac{106, FieldType::U8}; // 12 bytes
inline constexpr uint32_t IPMaskedAddrSize = 32;
inline constexpr uint32_t PortRangeSize = 4;
inline constexpr uint32_t EthMacSize = 12;
inline constexpr uint32_t ReservedAtEnd = 542;
inline constexpr uint32_t Size = 660;
static_assert(EndOf(u8ClassifierAction) == u8Param1.u16Offset);
static_assert(EndOf(u8Param1) + 8 == u8Priority.u16Offset);
static_assert(EndOf(u8Priority) + 4 == u8Protocol.u16Offset);
static_assert(EndOf(u8Protocol) == u8IPMaskedSrcAddrLength.u16Offset);
static_assert(EndOf(u8IPMaskedSrcAddrLength) == au8IPMaskedSrcAddr.u16Offset);
static_assert(au8IPMaskedSrcAddr.u16Offset + IPMaskedAddrSize ==
              u8IPMaskedDestAddrLength.u16Offset);
static_assert(EndOf(u8IPMaskedDestAddrLength) == au8IPMaskedDestAddr.u16Offset);
static_assert(au8IPMaskedDestAddr.u16Offset + IPMaskedAddrSize == u8SrcPortRangeLength.u16Offset);
static_assert(EndOf(u8SrcPortRangeLength) == au8SrcPortRange.u16Offset);
static_assert(au8SrcPortRange.u16Offset + PortRangeSize == u8DestPortRangeLength.u16Offset);
static_assert(EndOf(u8DestPortRangeLength) == au8DestPortRange.u16Offset);
static_assert(au8DestPortRange.u16Offset + PortRangeSize == u8EthDestMacLength.u16Offset);
static_assert(EndOf(u8EthDestMacLength) == au8EthDestMac.u16Offset);
static_assert(au8EthDestMac.u16Offset + EthMacSize == u8EthSrcMacLength.u16Offset);
static_assert(EndOf(u8EthSrcMacLength) == au8EthSrcMac.u16Offset);
static_assert(au8EthSrcMac.u16Offset + EthMacSize + ReservedAtEnd == Size);

// Values of u8ClassifierAction.
inline constexpr uint32_t AddRule = 0;
inline constexpr uint32_t ReplaceRule = 1;
inline constexpr uint32_t DeleteRule = 2;
} // namespace ClassifierRule

// One QoS parameter set. Bytes that are not named are zero.
namespace SFParamSet {
inline constexpr Field u32SFID{0, FieldType::U32};
inline constexpr Field u32MaxSustainedTrafficRate{4, FieldType::U32};
inline constexpr Field u32MinReservedTrafficRate{12, FieldType::U32};
inline constexpr Field u32ToleratedJitter{16, FieldType::U32};
inline constexpr Field u32MaximumLatency{20, FieldType::U32};
inline constexpr Field u16CID{24, FieldType::U16};
inline constexpr Field u16Reserved26{26, FieldType::U16};
inline constexpr Field u8ServiceClassNameLength{73, FieldType::U8}; // counts the zero at its end
inline constexpr Field au8ServiceClassName{74, FieldType::U8};      // 33 bytes
inline constexpr Field u8QoSParamSetType{107, FieldType::U8};
inline constexpr Field u8TrafficPriority{108, FieldType::U8};
inline constexpr Field u8SchedulingType{109, FieldType::U8};
inline constexpr Field u8RetransmissionPolicy{110, FieldType::U8};
inline constexpr Field u8Param112{112, FieldType::U8};
inline constexpr Field u8CSSpecification{116, FieldType::U8};
inline constexpr Field u8Param117{117, FieldType::U8};
inline constexpr Field u8PagingPreference{118, FieldType::U8};
inline constexpr Field u8Param129{129, FieldType::U8};
inline constexpr Field u8NumClassifierRules{173, FieldType::U8};
inline constexpr Field u8SetPresent{174, FieldType::U8}; // 0: the set is ignored
inline constexpr uint32_t astClassifierRule = 176;       // ClassifierRule records
inline constexpr uint32_t MaxClassifierRules = 4;
inline constexpr uint32_t ServiceClassNameSize = 33;
inline constexpr uint32_t Size = 2816;
static_assert(EndOf(u32SFID) == u32MaxSustainedTrafficRate.u16Offset);
static_assert(EndOf(u32MaxSustainedTrafficRate) + 4 == u32MinReservedTrafficRate.u16Offset);
static_assert(EndOf(u32MinReservedTrafficRate) == u32ToleratedJitter.u16Offset);
static_assert(EndOf(u32ToleratedJitter) == u32MaximumLatency.u16Offset);
static_assert(EndOf(u32MaximumLatency) == u16CID.u16Offset);
static_assert(EndOf(u16CID) == u16Reserved26.u16Offset);
static_assert(EndOf(u16Reserved26) + 45 == u8ServiceClassNameLength.u16Offset);
static_assert(EndOf(u8ServiceClassNameLength) == au8ServiceClassName.u16Offset);
static_assert(au8ServiceClassName.u16Offset + ServiceClassNameSize == u8QoSParamSetType.u16Offset);
static_assert(EndOf(u8QoSParamSetType) == u8TrafficPriority.u16Offset);
static_assert(EndOf(u8TrafficPriority) == u8SchedulingType.u16Offset);
static_assert(EndOf(u8SchedulingType) == u8RetransmissionPolicy.u16Offset);
static_assert(EndOf(u8RetransmissionPolicy) + 1 == u8Param112.u16Offset);
static_assert(EndOf(u8Param112) + 3 == u8CSSpecification.u16Offset);
static_assert(EndOf(u8CSSpecification) == u8Param117.u16Offset);
static_assert(EndOf(u8Param117) == u8PagingPreference.u16Offset);
static_assert(EndOf(u8PagingPreference) + 10 == u8Param129.u16Offset);
static_assert(EndOf(u8Param129) + 43 == u8NumClassifierRules.u16Offset);
static_assert(EndOf(u8NumClassifierRules) == u8SetPresent.u16Offset);
static_assert(EndOf(u8SetPresent) + 1 == astClassifierRule);
static_assert(astClassifierRule + MaxClassifierRules * ClassifierRule::Size == Size);

// Values of u8SchedulingType.
inline constexpr uint32_t BE = 2;
inline constexpr uint32_t NRTPS = 3;
inline constexpr uint32_t RTPS = 4;
inline constexpr uint32_t ERTPS = 5;
inline constexpr uint32_t UGS = 6;
} // namespace SFParamSet

// Add and change requests, and all indications.
namespace ServiceFlowRecord {
inline constexpr Field u8MsgCode{0, FieldType::U8};
inline constexpr Field u8Direction{1, FieldType::U8};
inline constexpr Field u16TID{2, FieldType::U16};
inline constexpr Field u16CID{4, FieldType::U16}; // in change requests only
inline constexpr uint32_t stProvisionedSet = 8;   // SFParamSet records
inline constexpr uint32_t stAdmittedSet = 2824;
inline constexpr uint32_t stActiveSet = 5640;
inline constexpr Field u8ConfirmationCode{8468, FieldType::U8}; // in indications, 0 = success
inline constexpr uint32_t Size = 8472;
// What an add request sends of it: up to four zero bytes behind the first set.
inline constexpr uint32_t ShortSize = 2828;
static_assert(EndOf(u8MsgCode) == u8Direction.u16Offset);
static_assert(EndOf(u8Direction) == u16TID.u16Offset);
static_assert(EndOf(u16TID) == u16CID.u16Offset);
static_assert(EndOf(u16CID) + 2 == stProvisionedSet);
static_assert(stProvisionedSet + SFParamSet::Size == stAdmittedSet);
static_assert(stAdmittedSet + SFParamSet::Size == stActiveSet);
static_assert(stActiveSet + SFParamSet::Size + 12 == u8ConfirmationCode.u16Offset);
static_assert(EndOf(u8ConfirmationCode) + 3 == Size);
static_assert(stAdmittedSet + 4 == ShortSize);

// Values of u8MsgCode.
inline constexpr uint32_t AddRequest = 11;
inline constexpr uint32_t ChangeRequest = 14;
inline constexpr uint32_t DeleteRequest = 17;

// Values of u8Direction.
inline constexpr uint32_t Downlink = 0;
inline constexpr uint32_t Uplink = 1;

// Bits of the QoS parameter set type, and the sets that they select.
inline constexpr uint32_t Provisioned = 1;
inline constexpr uint32_t Admitted = 2;
inline constexpr uint32_t Active = 4;
struct SetOfBit {
    uint32_t u32Bit;
    uint32_t u32Offset;
};
// From the most advanced set to the least.
inline constexpr SetOfBit Sets[] = {
    {Active, stActiveSet}, {Admitted, stAdmittedSet}, {Provisioned, stProvisionedSet}};
} // namespace ServiceFlowRecord

namespace DeleteFlowRequest {
inline constexpr Field u8MsgCode{0, FieldType::U8};
inline constexpr Field u16TID{2, FieldType::U16};
inline constexpr Field u32SFID{4, FieldType::U32};
inline constexpr uint32_t Size = 8;
static_assert(EndOf(u8MsgCode) + 1 == u16TID.u16Offset);
static_assert(EndOf(u16TID) == u32SFID.u16Offset);
static_assert(EndOf(u32SFID) == Size);
} // namespace DeleteFlowRequest

// UGI: unsolicited grant interval.
namespace GrantChangeRequest {
inline constexpr Field u16VCID{2, FieldType::U16};
inline constexpr Field u32PayloadBytesPerUGI{4, FieldType::U32};
inline constexpr Field u32SDUsPerUGI{8, FieldType::U32};
inline constexpr uint32_t Size = 12;
static_assert(EndOf(u16VCID) == u32PayloadBytesPerUGI.u16Offset);
static_assert(EndOf(u32PayloadBytesPerUGI) == u32SDUsPerUGI.u16Offset);
static_assert(EndOf(u32SDUsPerUGI) == Size);
} // namespace GrantChangeRequest

#endif
