// The words of the CPU counters: eight measures of seven counters each, the
// same on both sides. X(word in function names, word in paths).
#pragma once

#define YMAP_CPU_MEASURES(X)                                                                       \
    X(total, "total")                                                                              \
    X(user, "user")                                                                                \
    X(kernel, "kernel")                                                                            \
    X(nice, "nice")                                                                                \
    X(idle, "idle")                                                                                \
    X(wait, "wait")                                                                                \
    X(hardwareinterrupt, "hardware-interrupt")                                                     \
    X(softwareinterrupt, "software-interrupt")

// Y(measure, measure word, counter, counter word)
#define YMAP_CPU_COUNTERS(Y, m, mw)                                                                \
    Y(m, mw, instant, "instant")                                                                   \
    Y(m, mw, avg, "avg")                                                                           \
    Y(m, mw, min, "min")                                                                           \
    Y(m, mw, max, "max")                                                                           \
    Y(m, mw, interval, "interval")                                                                 \
    Y(m, mw, mintime, "min-time")                                                                  \
    Y(m, mw, maxtime, "max-time")
