// The scenario that runs when none is named: scenarios/default.toml.
#ifndef DEFAULT_SCENARIO_H
#define DEFAULT_SCENARIO_H

extern const char *const pcDefaultScenario;

#endif
