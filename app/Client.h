// The life of the client: open the device, run the menus, close the device.
#ifndef CLIENT_H
#define CLIENT_H

// Opens the device (one silent try and up to 20 reported ones, a second apart),
// registers the callback and runs the menus until they return or the client has
// to end; then closes the device. Returns the exit status: 0, -1 without a
// device, 1 when memory has run out, 128 + the number of the signal that ended
// it (SIGPIPE when nobody reads the output).
int RunClient(void (*pfnRunMenus)());

// The main menu, until choice -1.
void RunMainMenu();

#endif
