// The modem's OMA-DM tree: nodes read and written by path, the interface
// version, the tree image, the IMEI block, and tests of fixed nodes. These
// requests are answered inside the send.
#ifndef OMADM_H
#define OMADM_H

#include <cstdint>
#include <span>
#include <vector>

#include "OMADMRecords.h"

// One step from the tree's root to a node: the node's class and number, and the
// index of the array element (0 for a node that is no array).
struct OMADMNode {
    uint8_t u8Class;
    uint8_t u8Number;
    uint32_t u32Index;
};

// The way to a node; the first ten steps count.
using OMADMNodes = std::span<const OMADMNode>;

// Main menu choice 20: the menu, until -1.
void OMADMRequest();
// The tests of fixed nodes, until -1.
void OMADM_TestMenu();

// Asks for the size of a node's value and prints the answer. Returns the size
// in bytes; 0 is a failure, and so is a size that no message holds: a send
// result comes back as it is.
uint32_t GetOMADMParameterSize(OMADMNodes astPath);
// Reads a node. On success *paucResult is the answered record (OMADMParameter)
// with the node's value and 12 spare bytes. Returns the send result, 0 when the
// node has no size.
int32_t GetOmaParam(OMADMNodes astPath, std::vector<uint8_t> *paucResult);
// Writes the node, size and value of a record (OMADMParameter). A value longer
// than a message holds is cut. Returns the send result.
int32_t SetOmaParam(ByteView stRecord);
// Sends a get request of the record's first 90 bytes. Returns the send result.
int32_t SendOMADMGetRequest(ByteView stRecord);

// Asks whether the library has the application's interface version. Returns the
// send result.
int32_t OMADMGetVersion();
// Reads and prints the IMEI block.
void GetIMEIData();
// Writes the tree image "./OMADMTreeData.bin" and has the modem load it.
void UpdateOMADMTree();

// The tests. None goes on when the node has no size.
void OMADMGetSetNonArrayValueTest();
void OMADMSetGetNonArrayValueWithArrayValueInpath();
void OMADMGetNetworkParameterNode();
void OMADMGetNetworkParameterNode2();
void OMADMGetMACAddress();
// These hope for an error: the request claims a longer value than it carries,
// or names an array element past the end.
void OMADMReadOverflowProtectionTest();
void OMADMWriteOverflowProtectionTest();
void OMADMOutOfBoundArrayAccessTest();

#endif
