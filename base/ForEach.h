#pragma once

// KORVO_FOR_EACH(macro, fixed, a, b, …) expands to macro(fixed, a) macro(fixed, b) … for up to 255 arguments.
// Each scan below takes one step of the recursion further, and each line has four times as many as the last.

#define KORVO_FOR_EACH(macro, fixed, ...)                                                                    \
    __VA_OPT__(KORVO_SCAN_256(KORVO_FOR_EACH_STEP(macro, fixed, __VA_ARGS__)))
#define KORVO_FOR_EACH_STEP(macro, fixed, first, ...)                                                        \
    macro(fixed, first) __VA_OPT__(KORVO_FOR_EACH_AGAIN KORVO_PARENTHESES(macro, fixed, __VA_ARGS__))
#define KORVO_FOR_EACH_AGAIN() KORVO_FOR_EACH_STEP
#define KORVO_PARENTHESES ()

#define KORVO_SCAN_256(...) KORVO_SCAN_64(KORVO_SCAN_64(KORVO_SCAN_64(KORVO_SCAN_64(__VA_ARGS__))))
#define KORVO_SCAN_64(...) KORVO_SCAN_16(KORVO_SCAN_16(KORVO_SCAN_16(KORVO_SCAN_16(__VA_ARGS__))))
#define KORVO_SCAN_16(...) KORVO_SCAN_4(KORVO_SCAN_4(KORVO_SCAN_4(KORVO_SCAN_4(__VA_ARGS__))))
#define KORVO_SCAN_4(...) KORVO_SCAN(KORVO_SCAN(KORVO_SCAN(KORVO_SCAN(__VA_ARGS__))))
#define KORVO_SCAN(...) __VA_ARGS__
