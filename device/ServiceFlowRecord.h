// Payloads of service flow requests and indications (type 6). Offsets in bytes
// from the start of the record, the set or the rule.
#ifndef SERVICE_FLOW_RECORD_H
#define SERVICE_FLOW_RECORD_H

#include "Wire.h"

// Which packets belong to a service flow. Bytes that are not named are zero.
namespace ClassifierRule {
inline constexpr Field Action{0, FieldType::U8};
inline constexpr Field Param1{1, FieldType::U8};
inline constexpr Field Priority{10, FieldType::U8};
inline constexpr Field Protocol{15, FieldType::U8}; // IP protocol number
// What to match: how many bytes are valid, and the bytes themselves.
inline constexpr Field IPMaskedSrcAddrLength{16, FieldType::U8};
inline constexpr Field IPMaskedSrcAddr{17, FieldType::U8}; // 32 bytes
inline constexpr Field IPMaskedDestAddrLength{49, FieldType::U8};
inline constexpr Field IPMaskedDestAddr{50, FieldType::U8}; // 32 bytes
inline constexpr Field SrcPortRangeLength{82, FieldType::U8};
inline constexpr Field SrcPortRange{83, FieldType::U8}; // four bytes
inline constexpr Field DestPortRangeLength{87, FieldType::U8};
inline constexpr Field DestPortRange{88, FieldType::U8}; // four bytes
inline constexpr Field EthDestMacLength{92, FieldType::U8};
inline constexpr Field EthDestMac{93, FieldType::U8}; // 12 bytes
inline constexpr Field EthSrcMacLength{105, FieldType::U8};
inline constexpr Field EthSrcMac{106, FieldType::U8}; // 12 bytes
inline constexpr uint32_t IPMaskedAddrSize = 32;
inline constexpr uint32_t PortRangeSize = 4;
inline constexpr uint32_t EthMacSize = 12;
inline constexpr uint32_t ReservedAtEnd = 542;
inline constexpr uint32_t Size = 660;
static_assert(EndOf(Action) == Param1.u16Offset);
static_assert(EndOf(Param1) + 8 == Priority.u16Offset);
static_assert(EndOf(Priority) + 4 == Protocol.u16Offset);
static_assert(EndOf(Protocol) == IPMaskedSrcAddrLength.u16Offset);
static_assert(EndOf(IPMaskedSrcAddrLength) == IPMaskedSrcAddr.u16Offset);
static_assert(IPMaskedSrcAddr.u16Offset + IPMaskedAddrSize == IPMaskedDestAddrLength.u16Offset);
static_assert(EndOf(IPMaskedDestAddrLength) == IPMaskedDestAddr.u16Offset);
static_assert(IPMaskedDestAddr.u16Offset + IPMaskedAddrSize == SrcPortRangeLength.u16Offset);
static_assert(EndOf(SrcPortRangeLength) == SrcPortRange.u16Offset);
static_assert(SrcPortRange.u16Offset + PortRangeSize == DestPortRangeLength.u16Offset);
static_assert(EndOf(DestPortRangeLength) == DestPortRange.u16Offset);
static_assert(DestPortRange.u16Offset + PortRangeSize == EthDestMacLength.u16Offset);
static_assert(EndOf(EthDestMacLength) == EthDestMac.u16Offset);
static_assert(EthDestMac.u16Offset + EthMacSize == EthSrcMacLength.u16Offset);
static_assert(EndOf(EthSrcMacLength) == EthSrcMac.u16Offset);
static_assert(EthSrcMac.u16Offset + EthMacSize + ReservedAtEnd == Size);

// Values of Action.
inline constexpr uint32_t AddRule = 0;
inline constexpr uint32_t ReplaceRule = 1;
inline constexpr uint32_t DeleteRule = 2;
} // namespace ClassifierRule

// One QoS parameter set. Bytes that are not named are zero.
namespace SFParamSet {
inline constexpr Field SFID{0, FieldType::U32};
inline constexpr Field MaxSustainedTrafficRate{4, FieldType::U32};
inline constexpr Field MinReservedTrafficRate{12, FieldType::U32};
inline constexpr Field ToleratedJitter{16, FieldType::U32};
inline constexpr Field MaximumLatency{20, FieldType::U32};
inline constexpr Field CID{24, FieldType::U16};
inline constexpr Field Reserved26{26, FieldType::U16};
inline constexpr Field ServiceClassNameLength{73, FieldType::U8}; // counts the zero at its end
inline constexpr Field ServiceClassName{74, FieldType::U8};       // 33 bytes
inline constexpr Field QoSParamSetType{107, FieldType::U8};
inline constexpr Field TrafficPriority{108, FieldType::U8};
inline constexpr Field SchedulingType{109, FieldType::U8};
inline constexpr Field RetransmissionPolicy{110, FieldType::U8};
inline constexpr Field Param112{112, FieldType::U8};
inline constexpr Field CSSpecification{116, FieldType::U8};
inline constexpr Field Param117{117, FieldType::U8};
inline constexpr Field PagingPreference{118, FieldType::U8};
inline constexpr Field Param129{129, FieldType::U8};
inline constexpr Field NumClassifierRules{173, FieldType::U8};
inline constexpr Field SetPresent{174, FieldType::U8}; // 0: the set is ignored
inline constexpr uint32_t ClassifierRules = 176;       // ClassifierRule records
inline constexpr uint32_t MaxClassifierRules = 4;
inline constexpr uint32_t ServiceClassNameSize = 33;
inline constexpr uint32_t Size = 2816;
static_assert(EndOf(SFID) == MaxSustainedTrafficRate.u16Offset);
static_assert(EndOf(MaxSustainedTrafficRate) + 4 == MinReservedTrafficRate.u16Offset);
static_assert(EndOf(MinReservedTrafficRate) == ToleratedJitter.u16Offset);
static_assert(EndOf(ToleratedJitter) == MaximumLatency.u16Offset);
static_assert(EndOf(MaximumLatency) == CID.u16Offset);
static_assert(EndOf(CID) == Reserved26.u16Offset);
static_assert(EndOf(Reserved26) + 45 == ServiceClassNameLength.u16Offset);
static_assert(EndOf(ServiceClassNameLength) == ServiceClassName.u16Offset);
static_assert(ServiceClassName.u16Offset + ServiceClassNameSize == QoSParamSetType.u16Offset);
static_assert(EndOf(QoSParamSetType) == TrafficPriority.u16Offset);
static_assert(EndOf(TrafficPriority) == SchedulingType.u16Offset);
static_assert(EndOf(SchedulingType) == RetransmissionPolicy.u16Offset);
static_assert(EndOf(RetransmissionPolicy) + 1 == Param112.u16Offset);
static_assert(EndOf(Param112) + 3 == CSSpecification.u16Offset);
static_assert(EndOf(CSSpecification) == Param117.u16Offset);
static_assert(EndOf(Param117) == PagingPreference.u16Offset);
static_assert(EndOf(PagingPreference) + 10 == Param129.u16Offset);
static_assert(EndOf(Param129) + 43 == NumClassifierRules.u16Offset);
static_assert(EndOf(NumClassifierRules) == SetPresent.u16Offset);
static_assert(EndOf(SetPresent) + 1 == ClassifierRules);
static_assert(ClassifierRules + MaxClassifierRules * ClassifierRule::Size == Size);

// Values of SchedulingType.
inline constexpr uint32_t BE = 2;
inline constexpr uint32_t NRTPS = 3;
inline constexpr uint32_t RTPS = 4;
inline constexpr uint32_t ERTPS = 5;
inline constexpr uint32_t UGS = 6;
} // namespace SFParamSet

// Add and change requests, and all indications.
namespace ServiceFlowRecord {
inline constexpr Field MsgCode{0, FieldType::U8};
inline constexpr Field Direction{1, FieldType::U8};
inline constexpr Field TID{2, FieldType::U16};
inline constexpr Field CID{4, FieldType::U16}; // in change requests only
inline constexpr uint32_t ProvisionedSet = 8;  // SFParamSet records
inline constexpr uint32_t AdmittedSet = 2824;
inline constexpr uint32_t ActiveSet = 5640;
inline constexpr Field ConfirmationCode{8468, FieldType::U8}; // in indications, 0 = success
inline constexpr uint32_t Size = 8472;
// What an add request sends of it: up to four zero bytes behind the first set.
inline constexpr uint32_t ShortSize = 2828;
static_assert(EndOf(MsgCode) == Direction.u16Offset);
static_assert(EndOf(Direction) == TID.u16Offset);
static_assert(EndOf(TID) == CID.u16Offset);
static_assert(EndOf(CID) + 2 == ProvisionedSet);
static_assert(ProvisionedSet + SFParamSet::Size == AdmittedSet);
static_assert(AdmittedSet + SFParamSet::Size == ActiveSet);
static_assert(ActiveSet + SFParamSet::Size + 12 == ConfirmationCode.u16Offset);
static_assert(EndOf(ConfirmationCode) + 3 == Size);
static_assert(AdmittedSet + 4 == ShortSize);

// Values of MsgCode.
inline constexpr uint32_t AddRequest = 11;
inline constexpr uint32_t ChangeRequest = 14;
inline constexpr uint32_t DeleteRequest = 17;

// Values of Direction.
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
    {Active, ActiveSet}, {Admitted, AdmittedSet}, {Provisioned, ProvisionedSet}};
} // namespace ServiceFlowRecord

namespace DeleteFlowRequest {
inline constexpr Field MsgCode{0, FieldType::U8};
inline constexpr Field TID{2, FieldType::U16};
inline constexpr Field SFID{4, FieldType::U32};
inline constexpr uint32_t Size = 8;
static_assert(EndOf(MsgCode) + 1 == TID.u16Offset);
static_assert(EndOf(TID) == SFID.u16Offset);
static_assert(EndOf(SFID) == Size);
} // namespace DeleteFlowRequest

// UGI: unsolicited grant interval.
namespace GrantChangeRequest {
inline constexpr Field VCID{2, FieldType::U16};
inline constexpr Field PayloadBytesPerUGI{4, FieldType::U32};
inline constexpr Field SDUsPerUGI{8, FieldType::U32};
inline constexpr uint32_t Size = 12;
static_assert(EndOf(VCID) == PayloadBytesPerUGI.u16Offset);
static_assert(EndOf(PayloadBytesPerUGI) == SDUsPerUGI.u16Offset);
static_assert(EndOf(SDUsPerUGI) == Size);
} // namespace GrantChangeRequest

#endif
