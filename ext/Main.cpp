#include "Client.h"
#include "VendorSpecificMessageApp.h"

int main() { return RunClient(RunExtendedMenu); }
