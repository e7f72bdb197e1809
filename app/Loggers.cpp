#include "Loggers.h"

#include <cstring>
#include <iterator>

#include "Console.h"
#include "Input.h"
#include "Menu.h"
#include "Message.h"

namespace {

constexpr const char *apcLoggersMenuLines[] = {"\n 1. START LOGGER REQUEST",
                                               "\n 2. STOP LOGGER REQUEST"};

constexpr Menu stLoggersMenu = {"\n*********** LOGGER REQUEST MENU ***********",
                                apcLoggersMenuLines,
                                "\n\n*******************************************"};

constexpr const char *apcLoggers[] = {
    "\n 1. IR LOGGER", "\n 2. BR LOGGER", "\n 3. PR LOGGER",  "\n 4. BWL LOGGER",
    "\n 5. CL LOGGER", "\n 6. OL LOGGER", "\n 7. CID LOGGER", "\n 8. CQICH LOGGER",
};

uint32_t SendLoggerRequest(uint32_t u32Type, const char *pcTitle, const char *pcQuestion) {
    PutLine(pcTitle);
    PutLine(pcQuestion);
    ListLoggerTypes();
    const int32_t iKind = AskOption("\n\nENTER YOUR CHOICE : ");
    if (iKind < SUBTYPE_LOG_INITIAL_RANGING || iKind > SUBTYPE_LOG_CQICH) {
        PutLine("\nINVALID SELECTION!!!");
        return 0;
    }
    return static_cast<uint8_t>(SendRequest(u32Type, static_cast<uint32_t>(iKind)));
}

} // namespace

uint32_t LoggerRequests() {
    switch (AskMenu(stLoggersMenu)) {
    case 1:
        return StartLoggerRequest();
    case 2:
        return StopLoggerRequest();
    default:
        return 1;
    }
}

uint32_t StartLoggerRequest() {
    return SendLoggerRequest(TYPE_START_LOGGER, "\nENABLING LOGGER...",
                             "\nPLEASE SELECT ONE OF THE LOGS TO BE ENABLED");
}

uint32_t StopLoggerRequest() {
    return SendLoggerRequest(TYPE_STOP_LOGGER, "\nDISABLING LOGGER...",
                             "\nPLEASE SELECT ONE OF THE LOGS TO BE DISABLED");
}

int32_t ListLoggerTypes() {
    PutTexts(apcLoggers);
    return static_cast<int32_t>(std::strlen(*std::rbegin(apcLoggers)));
}
