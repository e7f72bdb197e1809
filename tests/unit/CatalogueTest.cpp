#include "Catalogue.h"

#include <algorithm>
#include <cstdio>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Bytes.h"

namespace {

// A payload that is written as text.
struct Payload {
    Bytes aucBytes;

    explicit Payload(std::string_view strBytes) {
        std::string strWrong;
        aucBytes = ParseBytes(strBytes, &strWrong).value();
    }
    operator ByteView() const { return {aucBytes.data(), static_cast<uint32_t>(aucBytes.size())}; }
};

std::string TextOf(const FoundField &stFound) {
    if (!IsRun(*stFound.pstRow)) {
        return std::to_string(static_cast<int32_t>(stFound.u32Value));
    }
    std::string strBytes;
    for (uint32_t i = 0; i < stFound.stBytes.u32Length; ++i) {
        char acByte[3];
        std::snprintf(acByte, sizeof acByte, "%02x", stFound.stBytes.At(i));
        strBytes += acByte;
    }
    return strBytes;
}

// What a walk comes to, one line each: name, place, value.
std::string WalkOf(const MessageRow &stMessage, ByteView stPayload, Walk eWalk = Walk::Described) {
    std::string strLines;
    WalkMessage(
        stMessage, stPayload,
        [&](const FoundField &stFound) {
            const std::string strName{
                FilterNameOf(stMessage, stFound.astPath, *stFound.pstRow).View()};
            switch (stFound.eWhat) {
            case Found::Field:
                strLines += strName + " @" + std::to_string(stFound.u32Offset) + " = " +
                            TextOf(stFound) + "\n";
                break;
            case Found::ListBegin:
                strLines += strName + " [" + std::to_string(stFound.u32Count) + " of " +
                            std::to_string(stFound.u32Announced) + "\n";
                break;
            case Found::ListEnd:
                strLines += "]\n";
                break;
            case Found::RecordBegin:
                strLines += "{ " + std::to_string(stFound.u32Index) + "\n";
                break;
            case Found::RecordEnd:
                strLines += "}\n";
                break;
            }
        },
        eWalk);
    return strLines;
}

TEST(Catalogue, NamesLoseTheirPrefixAndTheirCapitals) {
    struct {
        CatalogueName stName;
        const char *pcPlain;
    } constexpr astNames[] = {
        {"s32CINRMean", "cinr_mean"},
        {"u32NumStations", "num_stations"},
        {"aucBSID", "bsid"},
        {"astNSPs", "nsps"},
        {"u32SDUsPerUGI", "sdus_per_ugi"},
        {"aucOPc", "opc"},
        {"u8HOSuccess", "ho_success"},
        {"au32RxGPIO", "rx_gpio"},
        {"u32R1CINR", "r1_cinr"},
        {"numOfDefinitions", "num_of_definitions"},
        {"ucLedType", "led_type"},
        {"SyncStatus", "sync_status"},
        {"u16CID", "cid"},
        {"acDriverVersion", "driver_version"},
    };
    for (const auto &[stName, pcPlain] : astNames) {
        EXPECT_EQ(stName.Plain(), pcPlain);
    }
}

TEST(Catalogue, AWalkGivesEveryFieldItsNameAndItsValue) {
    const Payload stPayload("13:4 | 01 | 00 | 00 1a 2b 3c 4d 5e | 7:4 28:4 2:4 ba ff ff ff 3:4 "
                            "2667500:4 10000:4 5:4 6:4");
    EXPECT_EQ(WalkOf(*FindReceived(2, 1), stPayload),
              "qor020.sync_status.status @0 = 13\n"
              "qor020.sync_status.compressed_map @4 = 1\n"
              "qor020.sync_status.bsid @6 = 001a2b3c4d5e\n"
              "qor020.sync_status.preamble_id @12 = 7\n"
              "qor020.sync_status.cinr_mean @16 = 28\n"
              "qor020.sync_status.cinr_deviation @20 = 2\n"
              "qor020.sync_status.rssi_mean @24 = -70\n"
              "qor020.sync_status.rssi_deviation @28 = 3\n"
              "qor020.sync_status.center_frequency @32 = 2667500\n"
              "qor020.sync_status.bandwidth @36 = 10000\n"
              "qor020.sync_status.dcd_change_count @40 = 5\n"
              "qor020.sync_status.nsp_change_count @44 = 6\n");
}

TEST(Catalogue, AListHasWhatItsCounterSaysAsFarAsThePayloadGoes) {
    const Payload stPayload("3:4 1:4 | 00*32 9:4 | 01 00 00 1a");
    EXPECT_EQ(WalkOf(*FindReceived(1, 1), stPayload),
              "qor020.network_search_result.num_stations @0 = 3\n"
              "qor020.network_search_result.search_status @4 = 1\n"
              "qor020.network_search_result.stations [2 of 3\n"
              "{ 0\n"
              "qor020.network_search_result.stations.compressed_map @8 = 0\n"
              "qor020.network_search_result.stations.wake_up_bsid @9 = 0\n"
              "qor020.network_search_result.stations.bsid @10 = 000000000000\n"
              "qor020.network_search_result.stations.preamble_index @16 = 0\n"
              "qor020.network_search_result.stations.center_frequency @20 = 0\n"
              "qor020.network_search_result.stations.bandwidth @24 = 0\n"
              "qor020.network_search_result.stations.signal_strength @28 = 0\n"
              "qor020.network_search_result.stations.cinr @32 = 0\n"
              "qor020.network_search_result.stations.dcd_change_count @36 = 0\n"
              "qor020.network_search_result.stations.nsp_change_count @40 = 9\n"
              "}\n"
              "{ 1\n"
              "qor020.network_search_result.stations.compressed_map @44 = 1\n"
              "qor020.network_search_result.stations.wake_up_bsid @45 = 0\n"
              "qor020.network_search_result.stations.bsid @46 = 001a\n"
              "}\n"
              "]\n");
}

TEST(Catalogue, AValueIsReadByTheNumberThatSaysWhatItIs) {
    const Payload stTiming("1619:4 00 0:4 0:4 00*8 12:4 00 | 10:4 20:4 30:4 99:4");
    EXPECT_EQ(WalkOf(*FindReceived(24, 2), stTiming),
              "qor020.mib_get.attribute_id @0 = 1619\n"
              "qor020.mib_get.key_count @4 = 0\n"
              "qor020.mib_get.key1 @5 = 0\n"
              "qor020.mib_get.key2 @9 = 0\n"
              "qor020.mib_get.data_length @21 = 12\n"
              "qor020.mib_get.status @25 = 0\n"
              "{ 0\n"
              "qor020.mib_get.network_entry_timing.nw_search_time @26 = 10\n"
              "qor020.mib_get.network_entry_timing.phy_sync_time @30 = 20\n"
              "qor020.mib_get.network_entry_timing.mac_sync_time @34 = 30\n"
              "}\n");
    const Payload stOther("7:4 00 0:4 0:4 00*8 2:4 ff | 12 34 56");
    EXPECT_EQ(WalkOf(*FindReceived(24, 2), stOther), "qor020.mib_get.attribute_id @0 = 7\n"
                                                     "qor020.mib_get.key_count @4 = 0\n"
                                                     "qor020.mib_get.key1 @5 = 0\n"
                                                     "qor020.mib_get.key2 @9 = 0\n"
                                                     "qor020.mib_get.data_length @21 = 2\n"
                                                     "qor020.mib_get.status @25 = -1\n"
                                                     "qor020.mib_get.value @26 = 1234\n");
}

TEST(Catalogue, ANegativeLengthIsNone) {
    const Payload stPayload("01 2:4 5:4 ff ff ff ff 7:4 01 | 11 22 33");
    EXPECT_EQ(WalkOf(*FindReceived(21, 1), stPayload), "qor020.traced_message.direction @0 = 1\n"
                                                       "qor020.traced_message.frame_number @1 = 2\n"
                                                       "qor020.traced_message.code @5 = 5\n"
                                                       "qor020.traced_message.body_length @9 = -1\n"
                                                       "qor020.traced_message.cid @13 = 7\n"
                                                       "qor020.traced_message.cmac_result @17 = 1\n"
                                                       "qor020.traced_message.body @18 = \n");
}

TEST(Catalogue, ALogHasTheWholeEntriesOfItsLength) {
    const Payload stPayload("10:2 | 38:4 12:4 99:4");
    EXPECT_EQ(WalkOf(*FindReceived(8, 8), stPayload), "qor020.cqich_log.length @0 = 10\n"
                                                      "qor020.cqich_log.entries [2 of 2\n"
                                                      "{ 0\n"
                                                      "qor020.cqich_log.entries.value @2 = 38\n"
                                                      "}\n"
                                                      "{ 1\n"
                                                      "qor020.cqich_log.entries.value @6 = 12\n"
                                                      "}\n"
                                                      "]\n");
}

// A record of a list is as long as its own value.
TEST(Catalogue, RecordsOfAListMayDiffer) {
    const Payload stPayload("2:2 | 7:4 01 8:4 0:4 00*8 0:4 05 00 | 1633:4 00 0:4 0:4 00*8 3:4 00 "
                            "01 02 03");
    EXPECT_EQ(WalkOf(*FindReceived(24, 4), stPayload),
              "qor020.multiple_mib_get.count @0 = 2\n"
              "qor020.multiple_mib_get.records [2 of 2\n"
              "{ 0\n"
              "qor020.multiple_mib_get.records.attribute_id @2 = 7\n"
              "qor020.multiple_mib_get.records.key_count @6 = 1\n"
              "qor020.multiple_mib_get.records.key1 @7 = 8\n"
              "qor020.multiple_mib_get.records.key2 @11 = 0\n"
              "qor020.multiple_mib_get.records.data_length @23 = 0\n"
              "qor020.multiple_mib_get.records.status @27 = 5\n"
              "qor020.multiple_mib_get.records.value @28 = \n"
              "}\n"
              "{ 1\n"
              "qor020.multiple_mib_get.records.attribute_id @29 = 1633\n"
              "qor020.multiple_mib_get.records.key_count @33 = 0\n"
              "qor020.multiple_mib_get.records.key1 @34 = 0\n"
              "qor020.multiple_mib_get.records.key2 @38 = 0\n"
              "qor020.multiple_mib_get.records.data_length @50 = 3\n"
              "qor020.multiple_mib_get.records.status @54 = 0\n"
              "{ 0\n"
              "qor020.multiple_mib_get.records.trigger_status.serving_bs @55 = 1\n"
              "qor020.multiple_mib_get.records.trigger_status.intra_fa @56 = 2\n"
              "qor020.multiple_mib_get.records.trigger_status.inter_fa @57 = 3\n"
              "}\n"
              "}\n"
              "]\n");
    EXPECT_TRUE(HasRightSize(*FindReceived(24, 4), stPayload));
}

TEST(Catalogue, ARegisterCallHasItsBytes) {
    const Payload stPayload("00 10 00 0f | 4:4 | 78 56 34 12");
    EXPECT_EQ(WalkOf(RegisterRead(), stPayload), "qor020.register_read.address @0 = 251662336\n"
                                                 "qor020.register_read.count @4 = 4\n"
                                                 "qor020.register_read.value @8 = 78563412\n");
    EXPECT_EQ(WalkOf(RegisterWrite(), Payload("00 10 00 0f | 4:4")),
              "qor020.register_write.address @0 = 251662336\n"
              "qor020.register_write.count @4 = 4\n");
}

TEST(Catalogue, MessagesAreFoundByTheirWay) {
    EXPECT_EQ(FindSent(2, 1)->stName.Plain(), "sync_up");
    EXPECT_EQ(FindReceived(2, 1)->stName.Plain(), "sync_status");
    EXPECT_EQ(FindWrittenBack(16, 3)->stName.Plain(), "modem_status");
    EXPECT_EQ(FindWrittenBack(2, 1), nullptr);
    EXPECT_EQ(FindReceived(31, 4711)->stName.Plain(), "phy_log_data");
    EXPECT_EQ(FindReceived(2, 3), nullptr);
    EXPECT_EQ(FindReceived(2, 0x10001), nullptr);
    EXPECT_EQ(FindSent(0, 0), nullptr);
    EXPECT_EQ(FindSent(999, 1), nullptr);
}

TEST(Catalogue, CodesHaveNames) {
    const FieldRow &stStatus = FindReceived(2, 1)->pstLayout->astRows.front();
    EXPECT_EQ(NameOf(stStatus, 13), "wait_for_network_entry_command");
    EXPECT_EQ(NameOf(stStatus, 4711), "");
    EXPECT_EQ(NameOf(FindReceived(2, 1)->pstLayout->astRows.back(), 0), "");
}

TEST(Catalogue, SizesAreThoseOfTheRule) {
    EXPECT_TRUE(HasRightSize(*FindSent(2, 2), Payload("00*4")));
    EXPECT_FALSE(HasRightSize(*FindSent(2, 2), Payload("00*3")));
    EXPECT_FALSE(HasRightSize(*FindSent(2, 2), Payload("00*5")));
    EXPECT_TRUE(HasRightSize(*FindReceived(1, 1), Payload("1:4 1:4 00*36")));
    EXPECT_FALSE(HasRightSize(*FindReceived(1, 1), Payload("1:4 1:4 00*35")));
    EXPECT_FALSE(HasRightSize(*FindReceived(1, 1), Payload("0:4 1:4 00*36")));
    // More than anything can be.
    EXPECT_FALSE(HasRightSize(*FindReceived(1, 1), Payload("ff ff ff ff 1:4 00*36")));
}

// The guards of the bytes of a message, one letter each.
std::string GuardsOf(const MessageRow &stMessage, ByteView stPayload) {
    std::string strGuards(stPayload.u32Length, '?');
    WalkMessage(
        stMessage, stPayload,
        [&](const FoundField &stFound) {
            if (stFound.eWhat == Found::Field) {
                strGuards.replace(stFound.u32Offset, stFound.stBytes.u32Length,
                                  stFound.stBytes.u32Length,
                                  "pis"[static_cast<uint8_t>(stFound.eGuard)]);
            }
        },
        Walk::Everything);
    return strGuards;
}

TEST(Catalogue, WhatSaysWhoSomebodyIsAndWhatIsSecretIsGuarded) {
    EXPECT_EQ(GuardsOf(*FindSent(11, 1), Payload("00 1a 2b 3c 4d 5e")), "iiiiii");
    // A security parameter, and what lies behind it.
    EXPECT_EQ(GuardsOf(*FindReceived(34, 2), Payload("3:4 2:4 00 | 01 02 03")), "pppppppppsss");
    EXPECT_EQ(GuardsOf(*FindReceived(34, 3), Payload("3:4 2:4 00")), "ppppppppp");
    // A ranging message has an address, a key message keys, a descriptor neither.
    EXPECT_EQ(GuardsOf(*FindReceived(21, 1), Payload("00 0:4 4:4 2:4 0:4 00 | 04 05")),
              "ppppppppppppppppppii");
    EXPECT_EQ(GuardsOf(*FindReceived(21, 1), Payload("00 0:4 9:4 2:4 0:4 00 | 09 05")),
              "ppppppppppppppppppss");
    EXPECT_EQ(GuardsOf(*FindReceived(21, 1), Payload("00 0:4 1:4 2:4 0:4 00 | 01 05")),
              "pppppppppppppppppppp");
    // EAP-SIM: an IMEI behind the head; of other methods all may be one.
    EXPECT_EQ(GuardsOf(*FindReceived(4, 5), Payload("01 01 00 00 00 | 11 22")), "pppppii");
    EXPECT_EQ(GuardsOf(*FindReceived(4, 5), Payload("07 01 00 00 00 | 11 22")), "pppppii");
    EXPECT_EQ(GuardsOf(*FindWrittenBack(34, 4), Payload("00*4 11 22")), "ppppii");
}

TEST(Catalogue, AWalkThroughEverythingLeavesNoByteOut) {
    Bytes aucBytes(500);
    for (size_t i = 0; i < aucBytes.size(); ++i) {
        aucBytes[i] = static_cast<uint8_t>(i * 7 % 5 == 0 ? i : 0);
    }
    for (const MessageRow &stMessage : Messages()) {
        for (const uint32_t u32Length : {0U, 1U, 7U, 30U, 47U, 500U}) {
            std::vector<int> aiSeen(u32Length);
            WalkMessage(
                stMessage, ByteView{aucBytes.data(), u32Length},
                [&](const FoundField &stFound) {
                    if (stFound.eWhat == Found::Field) {
                        for (uint32_t i = 0; i < stFound.stBytes.u32Length; ++i) {
                            ++aiSeen.at(stFound.u32Offset + i);
                        }
                    }
                },
                Walk::Everything);
            EXPECT_EQ(aiSeen, std::vector<int>(u32Length, 1)) << stMessage.stName.pcOwn;
        }
    }
}

// ---- The tables ----

// Every layout that a message leads to, each once.
void CollectLayouts(const Layout &stLayout, std::set<const Layout *> *pastLayouts) {
    if (!pastLayouts->insert(&stLayout).second) {
        return;
    }
    for (const FieldRow &stRow : stLayout.astRows) {
        if (stRow.pstRecord != nullptr) {
            CollectLayouts(*stRow.pstRecord, pastLayouts);
        }
        for (const CaseRow &stCase : stRow.astCases) {
            if (stCase.pstLayout != nullptr) {
                CollectLayouts(*stCase.pstLayout, pastLayouts);
            }
        }
    }
}

std::set<const Layout *> AllLayouts() {
    std::set<const Layout *> astLayouts;
    for (const MessageRow &stMessage : Messages()) {
        CollectLayouts(*stMessage.pstLayout, &astLayouts);
    }
    CollectLayouts(*RegisterRead().pstLayout, &astLayouts);
    return astLayouts;
}

TEST(CatalogueTables, EveryByteOfARecordIsDescribedOnce) {
    for (const Layout *pstLayout : AllLayouts()) {
        uint32_t u32End = 0;
        for (const FieldRow &stRow : pstLayout->astRows) {
            EXPECT_EQ(stRow.stField.u16Offset, u32End)
                << pstLayout->stName.pcOwn << " " << stRow.stName.pcOwn;
            u32End = stRow.stField.u16Offset + stRow.u16Count * ElementSize(stRow);
            EXPECT_TRUE(stRow.u16Count != 0 || &stRow == &pstLayout->astRows.back())
                << pstLayout->stName.pcOwn << " " << stRow.stName.pcOwn;
        }
        if (pstLayout->astRows.empty() || pstLayout->astRows.back().u16Count != 0) {
            EXPECT_EQ(u32End, pstLayout->u32Size) << pstLayout->stName.pcOwn;
        } else {
            EXPECT_LE(u32End, pstLayout->u32Size) << pstLayout->stName.pcOwn;
        }
    }
}

TEST(CatalogueTables, CountersAndSelectorsAreNumbersOfTheirRecord) {
    for (const Layout *pstLayout : AllLayouts()) {
        const auto IsNumber = [&](Field stField) {
            return std::ranges::any_of(pstLayout->astRows, [&](const FieldRow &stRow) {
                return !IsRun(stRow) && stRow.stField.u16Offset == stField.u16Offset &&
                       stRow.stField.eType == stField.eType;
            });
        };
        for (const FieldRow &stRow : pstLayout->astRows) {
            EXPECT_TRUE(stRow.stCounter.eType == FieldType::None || IsNumber(stRow.stCounter))
                << pstLayout->stName.pcOwn << " " << stRow.stName.pcOwn;
            EXPECT_EQ(stRow.astCases.empty(), !IsNumber(stRow.stSelector))
                << pstLayout->stName.pcOwn << " " << stRow.stName.pcOwn;
        }
    }
}

TEST(CatalogueTables, NamesAreUniqueAndMeanSomething) {
    std::set<std::string_view> astrMessages;
    for (const MessageRow &stMessage : Messages()) {
        EXPECT_TRUE(astrMessages.insert(stMessage.stName.Plain()).second) << stMessage.stName.pcOwn;
        EXPECT_STRNE(stMessage.pcMeaning, "") << stMessage.stName.pcOwn;
    }
    for (const Layout *pstLayout : AllLayouts()) {
        std::set<std::string_view> astrFields;
        for (const FieldRow &stRow : pstLayout->astRows) {
            if (!IsReserved(stRow)) {
                EXPECT_TRUE(astrFields.insert(stRow.stName.Plain()).second)
                    << pstLayout->stName.pcOwn << " " << stRow.stName.pcOwn;
                EXPECT_STRNE(stRow.pcMeaning, "") << stRow.stName.pcOwn;
            }
        }
    }
}

TEST(CatalogueTables, AMessageOfOneSizeHasTheSizeOfItsLayout) {
    for (const MessageRow &stMessage : Messages()) {
        const SizeRule &stSize = stMessage.stSize;
        const bool bFixed = stSize.u32Least == stSize.u32Most;
        EXPECT_TRUE(bFixed ? stMessage.pstLayout->u32Size == stSize.u32Least
                           : stMessage.pstLayout->u32Size <= stSize.u32Least)
            << stMessage.stName.pcOwn;
    }
}

TEST(CatalogueTables, ARequestIsAnsweredByAMessageThatIsDescribed) {
    for (const MessageRow &stMessage : Messages()) {
        if (stMessage.u16AnswerSubType != 0) {
            EXPECT_EQ(stMessage.eDirection, Direction::Request) << stMessage.stName.pcOwn;
            EXPECT_NE(FindReceived(stMessage.u16Type, stMessage.u16AnswerSubType), nullptr)
                << stMessage.stName.pcOwn;
        }
    }
}

} // namespace
