// The run-time figures of an NTP server, the same words on both sides.
// X(word in function names, word in paths).
#pragma once

#define YMAP_NTP_FIGURES(X)                                                                        \
    X(stratum, "stratum")                                                                          \
    X(rootdelay, "root-delay")                                                                     \
    X(rootdispersion, "root-dispersion")                                                           \
    X(offset, "offset")                                                                            \
    X(pollinterval, "poll-interval")
