// The dialogue that fills a packet classifier rule of a service flow.
#ifndef CLASSIFIER_RULES_H
#define CLASSIFIER_RULES_H

#include <cstdint>

#include "ServiceFlowRecord.h"

// The QoS parameter sets of a record (ServiceFlowRecord) that a request is
// about: those whose bits are set. What is written goes into each of them.
struct SelectedSets {
    ByteSpan stRecord;
    uint32_t u32QoSBits;
};

// Writes to offsets of the set. What lies outside of it is dropped.
void Put(const SelectedSets &stSets, Field stField, uint32_t u32Value, uint32_t u32Base = 0);
void PutBytes(const SelectedSets &stSets, uint32_t u32Offset, ByteView stFrom);
// Writes to a field of the rule of that index (from 0).
void PutInRule(const SelectedSets &stSets, uint32_t u32Rule, Field stField, uint32_t u32Value);

// Asks for a rule of a change request, group by group, each behind the question
// whether to enter it; with bAskAll the questions are left out. u32RuleIndex is
// 0 to 3.
void EnterClassifierRuleParams(ByteSpan stRecord, uint32_t u32RuleIndex, uint32_t u32QoSBits,
                               bool bAskAll);
// Asks for the rule of an add request: priority, protocol and, between them and
// the groups to match, the set's paging preference.
void EnterAddedClassifierRule(const SelectedSets &stSets, uint32_t u32RuleIndex);

// The set's paging preference, which both requests ask for.
void EnterPagingPreference(const SelectedSets &stSets);

#endif
