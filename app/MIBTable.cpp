#include "MIBTable.h"

#include "Input.h"
#include "MIBRecord.h"

namespace {

constexpr MIBParam Write(uint32_t u32AttributeID, uint32_t u32Key, uint32_t u32Size,
                         uint32_t u32Value) {
    MIBParam stParam{u32AttributeID, u32Key, u32Size, {}};
    Put({stParam.aucValue, u32Size}, {0, FieldType::U32}, u32Value);
    return stParam;
}

} // namespace

constinit const MIBParam MIBParams2Write[u32MIBParams] = {
    Write(0, 0, 2, 199),    Write(1, 0, 2, 399),   Write(2, 0, 2, 15),   Write(3, 0, 2, 15),
    Write(4, 0, 2, 2),      Write(5, 0, 2, 19999), Write(6, 0, 2, 199),  Write(7, 0, 2, 39),
    Write(8, 0, 2, 199),    Write(9, 0, 2, 19999), Write(10, 0, 2, 199), Write(11, 0, 2, 29),
    Write(12, 0, 2, 19999), Write(13, 0, 2, 1999), Write(14, 0, 1, 15),  Write(15, 0, 4, 2),
    Write(16, 0, 4, 2),     Write(17, 0, 2, 999),  Write(18, 0, 2, 99),  Write(19, 0, 2, 99),
    Write(20, 0, 1, 0),     Write(21, 0, 1, 1),    Write(22, 0, 1, 2),   Write(20, 1, 1, 0),
    Write(21, 1, 1, 1),     Write(22, 1, 1, 2),    Write(20, 2, 1, 0),   Write(21, 2, 1, 1),
    Write(22, 2, 1, 2),     Write(20, 3, 1, 0),    Write(21, 3, 1, 1),   Write(22, 3, 1, 2),
};

bool IsConfigMIB(int32_t iID) {
    using namespace MIBAttribute;
    const auto u32ID = static_cast<uint32_t>(iID);
    return (u32ID >= FirstConfig && u32ID <= LastConfig) || u32ID == WritableStatistic;
}

int32_t validateuiID(int32_t iID) {
    const auto IsStdMIB = [](int32_t iAsked) {
        return static_cast<uint32_t>(iAsked) < MIBAttribute::FirstConfig;
    };
    while (!IsStdMIB(iID) && !IsConfigMIB(iID)) {
        iID = AskOption("\nError Invalid MIB Input .. Please re-enter in the range as specified: ");
    }
    return iID;
}
