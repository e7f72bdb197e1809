#include "Layouts.h"
#include "ServiceFlowRecord.h"

namespace {

constexpr CodeRow astActions[] = {
    CODE(ClassifierRule, AddRule),
    CODE(ClassifierRule, ReplaceRule),
    CODE(ClassifierRule, DeleteRule),
};

constexpr FieldRow astClassifierRule[] = {
    FIELD(ClassifierRule, u8ClassifierAction, "action: 0 add, 1 replace, 2 delete",
          .astCodes = astActions),
    FIELD(ClassifierRule, u8Param1, "FF in the rule of an add request",
          .eShown = Shown::Hexadecimal),
    RESERVED(2, 8),
    FIELD(ClassifierRule, u8Priority, "priority"),
    RESERVED(11, 4),
    FIELD(ClassifierRule, u8Protocol, "IP protocol"),
    FIELD(ClassifierRule, u8IPMaskedSrcAddrLength, "length of the masked source address"),
    FIELD(ClassifierRule, au8IPMaskedSrcAddr, "masked source address",
          .u16Count = ClassifierRule::IPMaskedAddrSize,
          .stCounter = ClassifierRule::u8IPMaskedSrcAddrLength, .eShown = Shown::Bytes),
    FIELD(ClassifierRule, u8IPMaskedDestAddrLength, "length of the masked destination address"),
    FIELD(ClassifierRule, au8IPMaskedDestAddr, "masked destination address",
          .u16Count = ClassifierRule::IPMaskedAddrSize,
          .stCounter = ClassifierRule::u8IPMaskedDestAddrLength, .eShown = Shown::Bytes),
    FIELD(ClassifierRule, u8SrcPortRangeLength, "length of the source port range"),
    FIELD(ClassifierRule, au8SrcPortRange, "source port range",
          .u16Count = ClassifierRule::PortRangeSize,
          .stCounter = ClassifierRule::u8SrcPortRangeLength, .eShown = Shown::Bytes),
    FIELD(ClassifierRule, u8DestPortRangeLength, "length of the destination port range"),
    FIELD(ClassifierRule, au8DestPortRange, "destination port range",
          .u16Count = ClassifierRule::PortRangeSize,
          .stCounter = ClassifierRule::u8DestPortRangeLength, .eShown = Shown::Bytes),
    FIELD(ClassifierRule, u8EthDestMacLength, "length of the Ethernet destination address"),
    FIELD(ClassifierRule, au8EthDestMac, "Ethernet destination address",
          .u16Count = ClassifierRule::EthMacSize, .stCounter = ClassifierRule::u8EthDestMacLength,
          .eShown = Shown::Bytes, .eGuard = Guard::Identity),
    FIELD(ClassifierRule, u8EthSrcMacLength, "length of the Ethernet source address"),
    FIELD(ClassifierRule, au8EthSrcMac, "Ethernet source address",
          .u16Count = ClassifierRule::EthMacSize, .stCounter = ClassifierRule::u8EthSrcMacLength,
          .eShown = Shown::Bytes, .eGuard = Guard::Identity),
    RESERVED(118, ClassifierRule::ReservedAtEnd),
};
constexpr Layout stClassifierRule = LAYOUT(ClassifierRule, astClassifierRule);

constexpr CodeRow astSchedulingTypes[] = {
    CODE(SFParamSet, BE),    CODE(SFParamSet, NRTPS), CODE(SFParamSet, RTPS),
    CODE(SFParamSet, ERTPS), CODE(SFParamSet, UGS),
};

constexpr FieldRow astSFParamSet[] = {
    FIELD(SFParamSet, u32SFID, "SFID, the service flow's identifier"),
    FIELD(SFParamSet, u32MaxSustainedTrafficRate, "maximum sustained traffic rate"),
    RESERVED(8, 4),
    FIELD(SFParamSet, u32MinReservedTrafficRate, "minimum reserved traffic rate"),
    FIELD(SFParamSet, u32ToleratedJitter, "tolerated jitter"),
    FIELD(SFParamSet, u32MaximumLatency, "maximum latency"),
    FIELD(SFParamSet, u16CID, "connection ID", .eShown = Shown::Hexadecimal),
    FIELD(SFParamSet, u16Reserved26, "FF FF in add requests", .eShown = Shown::Hexadecimal),
    RESERVED(28, 45),
    FIELD(SFParamSet, u8ServiceClassNameLength,
          "length of the service class name, its zero included"),
    FIELD(SFParamSet, au8ServiceClassName, "service class name",
          .u16Count = SFParamSet::ServiceClassNameSize,
          .stCounter = SFParamSet::u8ServiceClassNameLength, .eShown = Shown::Text),
    FIELD(SFParamSet, u8QoSParamSetType,
          "QoS parameter set type: 1 provisioned + 2 admitted + 4 active",
          .eShown = Shown::Hexadecimal),
    FIELD(SFParamSet, u8TrafficPriority, "traffic priority"),
    FIELD(SFParamSet, u8SchedulingType, "scheduling type", .astCodes = astSchedulingTypes),
    FIELD(SFParamSet, u8RetransmissionPolicy, "retransmission policy"),
    RESERVED(111, 1),
    FIELD(SFParamSet, u8Param112, "31 in add requests"),
    RESERVED(113, 3),
    FIELD(SFParamSet, u8CSSpecification, "convergence sublayer specification"),
    FIELD(SFParamSet, u8Param117, "FF in add requests", .eShown = Shown::Hexadecimal),
    FIELD(SFParamSet, u8PagingPreference, "paging preference"),
    RESERVED(119, 10),
    FIELD(SFParamSet, u8Param129, "01 in add requests"),
    RESERVED(130, 43),
    FIELD(SFParamSet, u8NumClassifierRules,
          "number of classifier rules: 1 in add requests, 0 in change requests"),
    FIELD(SFParamSet, u8SetPresent, "1: the set is present; 0: it is ignored"),
    RESERVED(175, 1),
    FIELD(SFParamSet, astClassifierRule, "classifier rules",
          .u16Count = SFParamSet::MaxClassifierRules, .pstRecord = &stClassifierRule),
};
constexpr Layout stSFParamSet = LAYOUT(SFParamSet, astSFParamSet);

constexpr CodeRow astMessageCodes[] = {
    CODE(ServiceFlowRecord, AddRequest),
    CODE(ServiceFlowRecord, ChangeRequest),
    CODE(ServiceFlowRecord, DeleteRequest),
};

constexpr CodeRow astFlowDirections[] = {
    CODE(ServiceFlowRecord, Downlink),
    CODE(ServiceFlowRecord, Uplink),
};

#define SERVICE_FLOW_HEAD                                                                          \
    FIELD(ServiceFlowRecord, u8MsgCode, "message code: 11 add, 14 change",                         \
          .astCodes = astMessageCodes),                                                            \
        FIELD(ServiceFlowRecord, u8Direction, "direction: 0 downlink, 1 uplink",                   \
              .astCodes = astFlowDirections),                                                      \
        FIELD(ServiceFlowRecord, u16TID, "transaction ID"),                                        \
        FIELD(ServiceFlowRecord, u16CID, "connection ID, in change requests",                      \
              .eShown = Shown::Hexadecimal),                                                       \
        RESERVED(6, 2),                                                                            \
        FIELD(ServiceFlowRecord, stProvisionedSet, "provisioned set", .pstRecord = &stSFParamSet)

constexpr FieldRow astShortServiceFlow[] = {
    SERVICE_FLOW_HEAD,
    RESERVED(ServiceFlowRecord::stAdmittedSet, 4),
};

constexpr FieldRow astServiceFlow[] = {
    SERVICE_FLOW_HEAD,
    FIELD(ServiceFlowRecord, stAdmittedSet, "admitted set", .pstRecord = &stSFParamSet),
    FIELD(ServiceFlowRecord, stActiveSet, "active set", .pstRecord = &stSFParamSet),
    RESERVED(8456, 12),
    FIELD(ServiceFlowRecord, u8ConfirmationCode, "confirmation code, in indications: 0 is success"),
    RESERVED(8469, 3),
};

constexpr FieldRow astDeleteFlowRequest[] = {
    FIELD(DeleteFlowRequest, u8MsgCode, "message code 17", .astCodes = astMessageCodes),
    RESERVED(1, 1),
    FIELD(DeleteFlowRequest, u16TID, "transaction ID"),
    FIELD(DeleteFlowRequest, u32SFID, "SFID"),
};

constexpr FieldRow astGrantChangeRequest[] = {
    RESERVED(0, 2),
    FIELD(GrantChangeRequest, u16VCID, "VCID", .eShown = Shown::Hexadecimal),
    FIELD(GrantChangeRequest, u32PayloadBytesPerUGI,
          "payload bytes per unsolicited grant interval"),
    FIELD(GrantChangeRequest, u32SDUsPerUGI, "SDUs per unsolicited grant interval"),
};

} // namespace

constexpr Layout stShortServiceFlow = {"ShortServiceFlowRecord", astShortServiceFlow,
                                       ServiceFlowRecord::ShortSize};
constexpr Layout stServiceFlow = LAYOUT(ServiceFlowRecord, astServiceFlow);
constexpr Layout stDeleteFlowRequest = LAYOUT(DeleteFlowRequest, astDeleteFlowRequest);
constexpr Layout stGrantChangeRequest = LAYOUT(GrantChangeRequest, astGrantChangeRequest);
