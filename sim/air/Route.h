// Where the modem is: it stands still, or follows the scenario's way points, or goes where it is
// told to.
#ifndef ROUTE_H
#define ROUTE_H

#include <string>
#include <vector>

#include "scenario/Scenario.h"
#include "time/ModemTime.h"

struct Place {
    double fX; // metres
    double fY;
};
double DistanceBetween(const Place &stOne, const Place &stOther);

// Both coordinates of a section. A scenario is nowhere larger than a million kilometres.
Place PlaceIn(const Section &stSection);

class Route {
  public:
    // Reads [[way-point]] and [route].
    explicit Route(const Section &stRoot);

    Place At(ModemTime iNow) const;
    // How many metres of way are behind the modem.
    double Travelled(ModemTime iNow) const;
    // Leaves the route: to a place, straight on, in the course of iDuration.
    void Go(const Place &stTo, ModemTime iNow, ModemTime iDuration);

  private:
    struct Point {
        ModemTime iAt;
        Place stPlace;
        double fTravelled = 0; // until here
    };
    void Add(ModemTime iAt, const Place &stPlace);
    void ReadFile(const Section &stRoute);
    // The last point that is not after iNow, and how much of the way to the next one is done.
    struct Progress {
        const Point *pstFrom;
        const Point *pstTo;
        double fPart;
    };
    Progress ProgressAt(ModemTime iNow) const;

    std::vector<Point> m_astPoints; // one at least, in the order of their times
};

#endif
