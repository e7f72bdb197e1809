#include "Client.h"

int main() { return RunClient(RunMainMenu); }
