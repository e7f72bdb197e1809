#include "Menu.h"

#include "Console.h"
#include "Input.h"

void PutTexts(std::span<const char *const> apcTexts) {
    for (const char *pcText : apcTexts) {
        PutText(pcText);
    }
}

int32_t AskMenu(const Menu &stMenu) {
    PutLine(stMenu.pcBanner);
    PutTexts(stMenu.apcLines);
    PutLine(stMenu.pcClosing);
    return AskOption(stMenu.pcPrompt);
}
