// Ratios of powers and their decibels. Nothing here but additions, multiplications and divisions,
// so that every machine has the same last bit; the machines' own logarithms have not.
#ifndef DECIBELS_H
#define DECIBELS_H

// 10 log10 of a ratio, -400 for one of 0 or less.
double Decibels(double fRatio);
// The ratio of so many decibels.
double RatioOf(double fDecibels);

#endif
