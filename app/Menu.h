// Menus as data.
#ifndef MENU_H
#define MENU_H

#include <cstdint>
#include <span>

// The prompt of most menus.
inline constexpr const char *pcMenuPrompt = "\nENTER OPTION : ";
// The choice that leaves a menu which comes again and again.
inline constexpr int32_t iLeaveMenu = -1;

// A menu as it is printed: the banner (with its line end), the lines as they
// stand, the closing line (with its line end), the prompt.
struct Menu {
    const char *pcBanner;
    std::span<const char *const> apcLines;
    const char *pcClosing;
    const char *pcPrompt = pcMenuPrompt;
};

// Prints the menu and reads the choice.
int32_t AskMenu(const Menu &stMenu);
// Prints the lines as they stand.
void PutTexts(std::span<const char *const> apcTexts);

#endif
