// A modem on the bench: a scenario as text, requests as bytes, and all messages
// that came out until a moment, as readable lines. Whatever comes out is looked up
// in the catalogue.
#ifndef MODEM_BENCH_H
#define MODEM_BENCH_H

#include <string>
#include <vector>

#include "library/WholeModem.h"

class ModemBench {
  public:
    // The scenario's text; answers come without delay unless it says otherwise.
    explicit ModemBench(const std::string &strScenario);

    // Sends type, subtype and payload, the payload in hexadecimal with repeats such
    // as "00*12". Returns the result.
    int32_t Send(uint32_t u32Type, uint32_t u32SubType, const std::string &strPayload = "");
    // Lets time pass until fSeconds since the start.
    void RunUntil(double fSeconds);
    // Lets so much more time pass: enough of it for what is said over the air by then.
    void Pass(double fSeconds = 0.05);
    // Every message since the last call, as "TYPE/SUBTYPE: hex bytes", runs of five and
    // more equal bytes as "00*12".
    std::vector<std::string> Messages();
    // The same with the second at which each came, as "0.30 TYPE/SUBTYPE: hex".
    std::vector<std::string> TimedMessages();
    Modem &TheModem() { return m_stModem; }

  private:
    struct Arrival {
        double fTime;
        std::string strText;
    };
    void Collect();

    WholeModem m_stModem;
    bool m_bDistorts; // messages are not what a modem sends
    std::vector<Arrival> m_astArrivals;
};

// Expected messages, with whatever runs, as Messages() would write them.
std::vector<std::string> Told(std::vector<std::string> astrTexts);

// Bytes as hexadecimal text, and back.
std::string HexOf(const std::vector<uint8_t> &aucBytes);
std::vector<uint8_t> BytesOfHex(const std::string &strHex);

#endif
